#include "app/messageBoxes.h"

#include "app/boxOver.h"
#include "app/shortText.h"
#include "base/mainQueue.h"

#include <QDir>
#include <QEventLoop>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QStandardPaths>
#include <QTextBoundaryFinder>

#include <algorithm>

namespace {

/// The width at which the text's lines come out about equally long. Japanese breaks anywhere, so a
/// line that is a little too long leaves half a word for the next one.
int widthFor(const QString& text, const QFontMetrics& metrics) {
  const int longest = std::min(34 * metrics.height(), 640);
  const int margin = metrics.height();
  int width = 0;
  for (const QString& line : text.split(u'\n')) {
    const int whole = metrics.horizontalAdvance(line) + margin;
    const int lines = whole / longest + 1;
    width = std::max(width, whole / lines + (lines > 1 ? 2 * margin : 0));
  }
  return width;
}

/// The text with places to break in words that no line could hold, such as the name of a file.
QString breakable(const QString& text) {
  constexpr qsizetype longestWord = 40;
  QString result;
  QTextBoundaryFinder finder(QTextBoundaryFinder::Line, text);
  qsizetype start = 0;
  for (qsizetype end = finder.toNextBoundary(); end >= 0; end = finder.toNextBoundary()) {
    while (end - start > longestWord) {
      const bool splitsPair = text.at(start + longestWord - 1).isHighSurrogate();
      const qsizetype count = splitsPair ? longestWord + 1 : longestWord;
      result += text.sliced(start, count) + QChar(0x200b);  // a blank of no width
      start += count;
    }
    result += text.sliced(start, end - start);
    start = end;
  }
  return result;
}

void fill(QMessageBox& box, const QString& title, const QString& informativeText) {
  box.setWindowTitle(title);
  box.setText(QStringLiteral("<b>") + title + QStringLiteral("</b>"));
  box.setTextFormat(Qt::RichText);
  const QString told = breakable(shortened(informativeText, 600));
  box.setInformativeText(told);
  // The text may quote a file name or other foreign text, which must not be read as markup.
  if (auto* label = box.findChild<QLabel*>(QStringLiteral("qt_msgbox_informativelabel"))) {
    label->setTextFormat(Qt::PlainText);
  }
  box.setStyleSheet(QStringLiteral("QLabel#qt_msgbox_informativelabel { min-width: %1px; }")
                        .arg(widthFor(told, box.fontMetrics())));
}

QString filterFor(const QString& type) {
  return QStringLiteral("%1 (*.%1)").arg(type);
}

bool hasType(const QString& path, const QString& type) {
  return QFileInfo(path).suffix().compare(type, Qt::CaseInsensitive) == 0;
}

/// A name as the panel and every file system can take it. A restored file may offer megabytes.
QString nameOfFile(const QString& name, const QString& type) {
  constexpr qsizetype mostCharacters = 100;
  constexpr qsizetype mostBytes = 255;
  const QString ending = u'.' + type;
  QString begun = name.left(mostCharacters - ending.size());
  while (begun.toUtf8().size() + ending.toUtf8().size() > mostBytes) {
    begun.chop(1);
  }
  const bool splitsPair = !begun.isEmpty() && begun.back().isHighSurrogate();
  begun.chop(splitsPair ? 1 : 0);
  return begun + ending;
}

/// Where the first file panel begins.
QString firstFolder() {
  const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
  return QFileInfo(documents).isDir() ? documents : QDir::homePath();
}

void showMessage(QWidget* parent, const QString& text) {
  auto* box = new QMessageBox(parent);
  fill(*box, QStringLiteral("Morvel GPS"), text);
  box->setIcon(QMessageBox::Information);
  box->addButton(QStringLiteral("OK"), QMessageBox::AcceptRole);
  box->setAttribute(Qt::WA_DeleteOnClose);
  new BoxOver(box, parent);  // the box owns it
  box->show();
}

/// Returns when the user has closed every message: a question would come to stand before one that
/// may be the reason for its answer.
void awaitMessages(const QWidget* parent) {
  QList<QPointer<QMessageBox>> boxes;
  for (QMessageBox* box : parent->findChildren<QMessageBox*>()) {
    boxes.append(box);
  }
  for (const QPointer<QMessageBox>& box : boxes) {
    if (box && box->isVisible()) {
      QEventLoop reading;
      QObject::connect(box.data(), &QDialog::finished, &reading, &QEventLoop::quit);
      reading.exec();
    }
  }
}

bool ask(QWidget* parent, const QString& title, const QString& text, const QString& action,
         QMessageBox::ButtonRole role) {
  if (parent != nullptr) {
    awaitMessages(parent);
  }
  QMessageBox box(parent);
  fill(box, title, text);
  box.setIcon(QMessageBox::Question);
  QPushButton* cancel = box.addButton(QStringLiteral("キャンセル"), QMessageBox::RejectRole);
  const QPushButton* act = box.addButton(action, role);
  box.setDefaultButton(cancel);
  box.setEscapeButton(cancel);
  runOver(box, parent);  // closing the window meanwhile means to cancel
  return box.clickedButton() == act;
}

}  // namespace

void MessageBoxes::setWindow(QWidget* window) {
  parent_ = window;
}

void MessageBoxes::message(const QString& text) {
  performOnMainThread([window = parent_, text] { showMessage(window, text); });
}

bool MessageBoxes::confirmErase(const QString& text) {
  const QString erase = QStringLiteral("消去");
  return ask(parent_, erase, text, erase, QMessageBox::DestructiveRole);
}

bool MessageBoxes::confirm(const QString& text, const QString& action) {
  return ask(parent_, QStringLiteral("Morvel GPS"), text, action, QMessageBox::AcceptRole);
}

QString MessageBoxes::folderToBeginIn() const {
  return QFileInfo(lastFolder_).isDir() ? lastFolder_ : firstFolder();
}

QString MessageBoxes::chosen(const QString& path) {
  lastFolder_ = QFileInfo(path).path();
  return path;
}

QString MessageBoxes::fileToSave(const QString& title, const QString& name, const QString& type) {
  QFileDialog panel(parent_, title);
  panel.setAcceptMode(QFileDialog::AcceptSave);
  panel.setNameFilter(filterFor(type));
  panel.setDefaultSuffix(type);
  panel.setDirectory(folderToBeginIn());
  panel.selectFile(nameOfFile(name, type));
  while (runOver(panel, parent_)) {
    const QString path = panel.selectedFiles().value(0);
    if (hasType(path, type)) {
      return chosen(path);
    }
    const QString typed = path + u'.' + type;
    if (!QFileInfo::exists(typed)) {
      return chosen(typed);
    }
    panel.selectFile(typed);  // the panel asks before an existing file is replaced
  }
  return {};
}

QString MessageBoxes::fileToOpen(const QString& title, const QString& type) {
  QFileDialog panel(parent_, title);
  panel.setFileMode(QFileDialog::ExistingFile);
  panel.setNameFilter(filterFor(type));
  panel.setDirectory(folderToBeginIn());
  while (runOver(panel, parent_)) {
    const QString path = panel.selectedFiles().value(0);
    if (hasType(path, type)) {
      return chosen(path);
    }
  }
  return {};
}

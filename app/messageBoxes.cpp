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

void fill(QMessageBox& box, const QString& title, const QString& informativeText) {
  box.setWindowTitle(title);
  box.setText(QStringLiteral("<b>") + title + QStringLiteral("</b>"));
  box.setTextFormat(Qt::RichText);
  const QString told = shortened(informativeText, 600);
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

/// Where the file panels begin.
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

}  // namespace

void MessageBoxes::setWindow(QWidget* window) {
  parent_ = window;
}

void MessageBoxes::message(const QString& text) {
  performOnMainThread([window = parent_, text] { showMessage(window, text); });
}

bool MessageBoxes::confirmErase(const QString& text) {
  if (parent_) {
    awaitMessages(parent_);
  }
  QMessageBox box(parent_);
  fill(box, QStringLiteral("消去"), text);
  box.setIcon(QMessageBox::Question);
  QPushButton* cancel = box.addButton(QStringLiteral("キャンセル"), QMessageBox::RejectRole);
  QPushButton* erase = box.addButton(QStringLiteral("消去"), QMessageBox::DestructiveRole);
  box.setDefaultButton(cancel);
  box.setEscapeButton(cancel);
  runOver(box, parent_);  // closing the window meanwhile means to keep the data
  return box.clickedButton() == erase;
}

QString MessageBoxes::fileToSave(const QString& title, const QString& name, const QString& type) {
  QFileDialog panel(parent_, title);
  panel.setAcceptMode(QFileDialog::AcceptSave);
  panel.setNameFilter(filterFor(type));
  panel.setDefaultSuffix(type);
  panel.setDirectory(firstFolder());
  panel.selectFile(name + u'.' + type);
  while (runOver(panel, parent_)) {
    QString chosen = panel.selectedFiles().value(0);
    if (hasType(chosen, type)) {
      return chosen;
    }
    QString typed = chosen + u'.' + type;
    if (!QFileInfo::exists(typed)) {
      return typed;
    }
    panel.selectFile(typed);  // the panel asks before an existing file is replaced
  }
  return {};
}

QString MessageBoxes::fileToOpen(const QString& title, const QString& type) {
  QFileDialog panel(parent_, title);
  panel.setFileMode(QFileDialog::ExistingFile);
  panel.setNameFilter(filterFor(type));
  panel.setDirectory(firstFolder());
  while (runOver(panel, parent_)) {
    QString chosen = panel.selectedFiles().value(0);
    if (hasType(chosen, type)) {
      return chosen;
    }
  }
  return {};
}

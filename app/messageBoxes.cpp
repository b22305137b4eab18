#include "app/messageBoxes.h"

#include "app/mainQueue.h"

#include <QFileDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QStandardPaths>

namespace {

void fill(QMessageBox& box, const QString& title, const QString& informativeText) {
  box.setWindowTitle(title);
  box.setText(QStringLiteral("<b>") + title + QStringLiteral("</b>"));
  box.setTextFormat(Qt::RichText);
  // The text may quote a file name or other foreign text, which must not be read as markup.
  box.setInformativeText(informativeText.toHtmlEscaped());
  // The style's own width breaks Japanese sentences after a few words.
  box.setStyleSheet(QStringLiteral("QLabel#qt_msgbox_informativelabel { min-width: 22em; }"));
}

QString filterFor(const QString& type) {
  return QStringLiteral("%1 (*.%1)").arg(type);
}

void showMessage(QWidget* parent, const QString& text) {
  auto* box = new QMessageBox(parent);
  fill(*box, QStringLiteral("Morvel GPS"), text);
  box->setIcon(QMessageBox::Information);
  box->addButton(QStringLiteral("OK"), QMessageBox::AcceptRole);
  box->setAttribute(Qt::WA_DeleteOnClose);
  box->setModal(true);
  box->show();
}

}  // namespace

void MessageBoxes::setWindow(QWidget* window) {
  parent = window;
}

void MessageBoxes::message(const QString& text) {
  performOnMainThread([window = parent, text] { showMessage(window, text); });
}

bool MessageBoxes::confirmErase(const QString& text) {
  QMessageBox box(parent);
  fill(box, QStringLiteral("消去"), text);
  box.setIcon(QMessageBox::Question);
  QPushButton* cancel = box.addButton(QStringLiteral("キャンセル"), QMessageBox::RejectRole);
  QPushButton* erase = box.addButton(QStringLiteral("消去"), QMessageBox::DestructiveRole);
  box.setDefaultButton(cancel);
  box.setEscapeButton(cancel);
  box.exec();
  return box.clickedButton() == erase;
}

QString MessageBoxes::fileToSave(const QString& title, const QString& name, const QString& type) {
  QFileDialog panel(parent, title);
  panel.setAcceptMode(QFileDialog::AcceptSave);
  panel.setNameFilter(filterFor(type));
  panel.setDefaultSuffix(type);
  panel.setDirectory(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
  panel.selectFile(name + u'.' + type);
  return panel.exec() == QDialog::Accepted ? panel.selectedFiles().value(0) : QString();
}

QString MessageBoxes::fileToOpen(const QString& title, const QString& type) {
  QFileDialog panel(parent, title);
  panel.setFileMode(QFileDialog::ExistingFile);
  panel.setNameFilter(filterFor(type));
  panel.setDirectory(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
  return panel.exec() == QDialog::Accepted ? panel.selectedFiles().value(0) : QString();
}

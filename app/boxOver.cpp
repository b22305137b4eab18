#include "app/boxOver.h"

#include <QApplication>
#include <QDialog>
#include <QEvent>
#include <QEventLoop>

BoxOver::BoxOver(QDialog* dialog, QWidget* window)
    : QObject(dialog), dialog_(dialog), window_(window) {
  dialog->setWindowModality(Qt::NonModal);
  if (window != nullptr) {
    qApp->installEventFilter(this);
  }
}

bool BoxOver::eventFilter(QObject* watched, QEvent* event) {
  switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseButtonRelease:
    case QEvent::Wheel:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::Shortcut:
    case QEvent::ShortcutOverride:
    case QEvent::ContextMenu:
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::DragEnter:
    case QEvent::Drop:
      break;
    default:
      return false;
  }
  const auto* widget = qobject_cast<const QWidget*>(watched);
  if (widget == nullptr || !dialog_->isVisible() || widget->window() != window_) {
    return false;
  }
  if (event->type() == QEvent::MouseButtonPress) {
    dialog_->raise();
    dialog_->activateWindow();
  }
  return true;
}

bool runOver(QDialog& dialog, QWidget* window) {
  const BoxOver over(&dialog, window);
  QEventLoop answering;
  QObject::connect(&dialog, &QDialog::finished, &answering, &QEventLoop::quit);
  dialog.setResult(QDialog::Rejected);
  dialog.show();
  // The loop ends with the program, too; the dialog is unanswered then.
  if (dialog.isVisible()) {
    answering.exec();
  }
  return dialog.result() == QDialog::Accepted;
}

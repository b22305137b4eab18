#include "app/boxOver.h"

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QEvent>
#include <QEventLoop>
#include <QKeyEvent>

namespace {

/// The window's command that ends the program, when the event is its key.
QAction* quitCommand(const QWidget* window, const QEvent& event) {
  if (window == nullptr || event.type() != QEvent::ShortcutOverride) {
    return nullptr;
  }
  const QKeySequence pressed(static_cast<const QKeyEvent&>(event).keyCombination());
  for (QAction* action : window->findChildren<QAction*>()) {
    if (action->menuRole() == QAction::QuitRole && action->shortcut() == pressed) {
      return action;
    }
  }
  return nullptr;
}

}  // namespace

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
  if (widget == nullptr || !dialog_->isVisible()) {
    return false;
  }
  // Also where the dialog has a question of its own above it.
  if (QAction* quit = quitCommand(window_, *event)) {
    quit->trigger();
    return true;
  }
  if (widget->window() != window_) {
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

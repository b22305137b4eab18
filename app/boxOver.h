#pragma once

#include <QObject>
#include <QPointer>
#include <QWidget>

class QDialog;

/// Keeps mouse and keyboard from a window as long as a dialog stands over it, as a modal dialog
/// does, except that the window can still be closed, also by the key of its action with the quit
/// role: the desktop hands a close request to no window that a modal one blocks. Lives as long as
/// the dialog. Main thread.
class BoxOver : public QObject {
  Q_OBJECT

 public:
  /// Makes `dialog`, which is not shown yet, stand over `window` (nullptr: over nothing).
  BoxOver(QDialog* dialog, QWidget* window);

  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QDialog* dialog_;
  QPointer<QWidget> window_;
};

/// Shows the dialog over the window and returns when it was answered, or when the program is to
/// end; QDialog::Rejected in that case. True when it was accepted.
bool runOver(QDialog& dialog, QWidget* window);

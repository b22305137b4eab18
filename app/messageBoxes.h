#pragma once

#include "app/dialogs.h"

#include <QPointer>
#include <QWidget>

/// The program's questions and messages as boxes and file panels over the main window.
class MessageBoxes : public Dialogs {
 public:
  /// Boxes appear over this window, which may go away. Main thread, before the first box.
  void setWindow(QWidget* window);

  void message(const QString& text) override;
  bool confirmErase(const QString& text) override;
  bool confirm(const QString& text, const QString& action) override;
  QString fileToSave(const QString& title, const QString& name, const QString& type) override;
  QString fileToOpen(const QString& title, const QString& type) override;

 private:
  QPointer<QWidget> parent_;
  QString lastFolder_;  ///< That of the last file chosen in a panel; empty before.

  QString folderToBeginIn() const;
  QString chosen(const QString& path);
};

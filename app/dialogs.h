#pragma once

#include "base/messenger.h"

#include <QString>

/// What the window asks of and tells the user. MessageBoxes does it with boxes and file panels;
/// tests answer by themselves.
class Dialogs : public Messenger {
 public:
  /// Asks `text` in a box titled "消去" with the buttons "キャンセル" (the default) and "消去";
  /// true only for "消去". Messages shown before are read first. Main thread; returns when
  /// answered.
  virtual bool confirmErase(const QString& text) = 0;

  /// Asks `text` in a box titled "Morvel GPS" with the buttons "キャンセル" (the default) and
  /// `action`; true only for the latter. Messages shown before are read first. Main thread; returns
  /// when answered.
  virtual bool confirm(const QString& text, const QString& action) = 0;

  /// A file to write, restricted to the extension `type` ("TCX", "GPX", "db3"), with the panel's
  /// title and a preset name without extension. Null when cancelled. Main thread.
  virtual QString fileToSave(const QString& title, const QString& name, const QString& type) = 0;

  /// An existing file with the extension `type`. Null when cancelled. Main thread.
  virtual QString fileToOpen(const QString& title, const QString& type) = 0;
};

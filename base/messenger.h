#pragma once

#include <QString>

/// Tells the user something. What has a message for the user but no window takes one of these; the
/// window shows a box, tests take the text down.
class Messenger {
 public:
  virtual ~Messenger() = default;

  /// Shows `text` in a box titled "Morvel GPS" with the single button "OK". Any thread; returns at
  /// once, the box appears on the main thread.
  virtual void message(const QString& text) = 0;
};

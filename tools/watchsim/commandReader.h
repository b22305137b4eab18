#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

/// What the computer can ask of the watch.
enum class WatchCommand { link, downloadAll, erase, agpsStart, disconnect, unknown };

/// "link", "download", "erase", "agps", "disconnect", "unknown".
QString nameOf(WatchCommand command);

/// Finds the 32-byte commands in a stream of bytes, however the stream is cut into pieces. Bytes
/// that belong to no command are skipped and answered as one `unknown`.
class CommandReader {
 public:
  /// Takes the next bytes; the commands that they complete, in order.
  QList<WatchCommand> take(const QByteArray& bytes);

 private:
  QByteArray pending_;
  bool isSkipping_ = false;
};

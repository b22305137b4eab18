#pragma once

#include "device/deviceEnvironment.h"

#include <QHash>
#include <QString>

#include <atomic>
#include <memory>
#include <mutex>

/// An object that may have a serial port open. Its functions are called with the table locked.
class PortHolder {
 public:
  virtual ~PortHolder() = default;
  /// True while a command runs on the object, whatever became of its line.
  virtual bool isConversing() const = 0;
  /// True when the line went away under the holder (unplugged): nothing there to protect.
  virtual bool lineLost() const = 0;
  /// Closes the port and returns when the receive thread has ended.
  virtual void giveWay() = 0;
};

/// Which object of this process uses which serial port.
///
/// A port left open by a conversation that is over gives way to the next opening; a conversation
/// that still runs keeps it.
class PortTable {
 public:
  /// The table of the process.
  static PortTable& instance();

  /// Makes `holder` the user of the port at `node` and returns true; an earlier user has given way
  /// then. False when the port belongs to another living session or to an object on which a command
  /// runs, unless its line was lost. Any thread.
  bool claim(const QString& node, const std::shared_ptr<PortHolder>& holder,
             const std::shared_ptr<WatchSession>& session);

  /// Counts one more command that runs on a holder. No claim is decided meanwhile: the holder's
  /// port is either safe from then on or has been given away before. Any thread.
  void beginCommand(std::atomic<int>& commands);

 private:
  struct Use {
    std::weak_ptr<PortHolder> holder;
    std::weak_ptr<WatchSession> session;
  };
  std::mutex mutex_;
  QHash<quint64, Use> uses_;  ///< By device number: a port may have several names.
};

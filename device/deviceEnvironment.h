#pragma once

#include <QString>

#include <memory>

class Messenger;
class UsbRegistry;

/// Why a command had no port to talk through. What the last search and opening of an object saw.
enum class LinkObstacle {
  none,          ///< The port was opened, or nothing was tried yet.
  noDevice,      ///< No USB device with the watch's ids.
  noSerialPort,  ///< The device is there, but no serial port belongs to it.
  noPermission,  ///< The port is there, this user may not open it.
  portInUse,     ///< Another program has the port.
  conversing,    ///< Another conversation of this program has the port.
  otherError,    ///< Anything else; the log has the text.
};

/// One conversation with the watch: the link and the download of one download command share it.
///
/// While a session lives, no object outside it gets the port that the session has used, not even
/// between its link and its download. It carries nothing; its lifetime is what counts, so its owner
/// keeps it exactly as long as the conversation lasts. usbOperating refers to it weakly.
struct WatchSession {
  WatchSession() = default;
  ~WatchSession() = default;
  WatchSession(const WatchSession&) = delete;
  WatchSession& operator=(const WatchSession&) = delete;
};

/// What the device link needs of its surroundings; every object keeps a copy.
struct DeviceEnvironment {
  std::shared_ptr<UsbRegistry> registry;  ///< USB devices and serial ports; required.
  std::shared_ptr<Messenger> messenger;   ///< Shows the alerts; without it they are only logged.
  double answerLimit = 5.0;               ///< Limit of one wait for a block, in seconds.
  QString lastDownloadPath;  ///< File that keeps the lines of the last download; empty: none.
  /// A download of this many blocks is given up: far more than a watch holds (fewer than 100,000),
  /// and some 250 MB of lines.
  qsizetype mostBlocks = 1'000'000;
};

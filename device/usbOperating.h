#pragma once

#include "data/records.h"
#include "device/deviceEnvironment.h"
#include "device/portTable.h"
#include "device/usbRegistry.h"

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>

#include <atomic>
#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <termios.h>
#include <thread>

class SerialPort;

/// A message box as it was asked for.
struct WatchAlert {
  QString title;
  QString button;
  QString informativeText;
};

/// The link to the watch: finds it on USB, opens its serial port and holds one conversation.
///
/// Make a fresh object for each task (linking, downloading); erasing goes through the object that
/// has downloaded. Commands run on the caller's thread, one at a time per object; each opening of
/// the port starts one receive thread, which keeps the object alive until it ends. The atomic
/// members are where the two threads meet.
class usbOperating : public PortHolder, public std::enable_shared_from_this<usbOperating> {
  struct CreateKey {};

 public:
  /// A new object without a port. `session` ties the objects of one conversation together and is
  /// referred to weakly; without one the port is protected only while a command runs.
  static std::shared_ptr<usbOperating> create(
      const DeviceEnvironment& environment, const std::shared_ptr<WatchSession>& session = nullptr);
  usbOperating(CreateKey key, const DeviceEnvironment& environment,
               const std::shared_ptr<WatchSession>& session);
  ~usbOperating() override;
  usbOperating(const usbOperating&) = delete;
  usbOperating& operator=(const usbOperating&) = delete;

  // Port and detection.

  /// Number of the open port's descriptor, -1 for none. Only a number: after a link it stays what
  /// it was although the port is closed. Nothing is ever read or written through it.
  std::atomic<qint32> serialFileDescriptor{-1};
  termios gOriginalTTYAttrs{};                 ///< The port's attributes as found when opened.
  std::atomic<bool> readThreadRunning{false};  ///< The receive thread lives.
  std::atomic<bool> checkUSB{false};           ///< The search with the other product id was made.
  /// Why the last search or opening of this object left it without a port.
  std::atomic<LinkObstacle> linkObstacle{LinkObstacle::none};
  std::optional<WatchAlert> alert;  ///< The last alert shown. Thread of the commands.
  QString storage;                  ///< Not used.
  QStringList chCount;              ///< Not used.

  // Protocol.

  std::atomic<qint32> checkGetDataType{-1};     ///< Receive mode, see docs/protocol.md.
  std::atomic<qint32> BUFFER_SIZE{36};          ///< Bytes asked of each read.
  std::atomic<qint32> getDataType{0};           ///< Requested transfer; 1 = all data.
  std::atomic<bool> getDataOK{false};           ///< A block arrived since the wait began.
  std::atomic<bool> downloadDataFinish{false};  ///< The end marker arrived.
  std::atomic<bool> downloadFail{false};        ///< A wait ran out.
  std::atomic<bool> checkStop{false};           ///< The transfer ended, well or badly.
  std::atomic<bool> getAllDataOK{false};        ///< Cleared when a download starts; never set.
  std::atomic<bool> CheckLinkCommand{false};    ///< An identity block was decoded.
  std::atomic<bool> checkAGPSST{false};         ///< Not used.
  /// Received lines of one download. Guarded by chStrMutex while a receive thread runs.
  QStringList chStr;
  std::mutex chStrMutex;

  // The watch's identity. Written by getWatchInfo() only.

  QString idNoStr;  ///< Null until an identity block was decoded.
  QString modelStr;
  QString verStr;
  qint32 checkAlti = 0;  ///< 1 when the watch records altitude.
  qint32 checkUnit = 1;  ///< Read nowhere.

  // What the last download was decoded into. Thread of the commands.

  QStringList runArr;
  RunDictionary runMD;
  LapDictionary lapMD;
  PointDictionary pointMD;
  qint64 cnumber = 0;           ///< Activity number in hand.
  qsizetype newRuns = 0;        ///< Runs that the headers announced and that were not stored yet.
  qsizetype runsNotStored = 0;  ///< How many of these are still not in the database.
  qsizetype knownRuns = 0;      ///< How many runs of the download were stored before.
  qsizetype strayLines = 0;     ///< How many laps and points came without a header before them.

  // Where the lines of the last download are when the watch is erased.

  /// They are in DeviceEnvironment::lastDownloadPath, until the next download of more than two
  /// lines.
  std::atomic<bool> linesKept{false};
  /// File that holds them for good because runs were not stored, blocks stayed short, headers were
  /// missing or points may be mixed (downloadResult::mixesPoints); null when that is not so or the
  /// file could not be made. Thread of the commands.
  QString lastingPath;

  // How the transfer went.

  /// Lines of the download whose block had fewer bytes than it was to have when the line fell
  /// quiet.
  std::atomic<qint32> shortBlocks{0};
  /// The download was given up because DeviceEnvironment::mostBlocks came without an end marker.
  std::atomic<bool> endless{false};
  std::atomic<bool> cancelled{false};  ///< cancel() was called.
  /// Called by getAllData() on its thread after each wait, with the number of lines received and
  /// whether the wait brought a block. Set before the command.
  std::function<void(qsizetype blocks, bool came)> onWait;
  bool eraseSent = false;  ///< The last deleteAllData() wrote its command as a whole.

  // Assistance data for the GPS receiver. Thread of the commands.

  QByteArray agpsData;     ///< The file as fetched.
  QStringList alpBuffStr;  ///< Packets as hexadecimal texts.
  qint32 agpsCount = 0;    ///< Not used.

  /// While one lives, the object counts as conversing and its port does not give way. Every command
  /// makes one; they nest.
  class Operation {
   public:
    explicit Operation(usbOperating& usb);
    ~Operation();
    Operation(const Operation&) = delete;
    Operation& operator=(const Operation&) = delete;

   private:
    usbOperating& usb_;
  };

  // Detection and port.

  /// Searches for the watch with this product id (and once per object with 60001 when nothing
  /// matched); opens its port and starts the receive thread. Success shows in serialFileDescriptor.
  void findDevice(qint32 product);
  /// The matching of one search.
  void DeviceAdded(const QList<UsbDevice>& iterator);
  /// Opens a port given by its call-out name, raw and for this process alone. A null text on
  /// success, else the error text; nothing is shown to the user. Does not start the receive thread.
  QString openSerialPort(const QString& path, qint32 baud);
  /// Closes an open port and sets serialFileDescriptor to -1.
  void closeMyDevice();
  /// Serial number text of the first USB device with these ids, null when there is none.
  QString find_serial(qint32 vendor, qint32 pID) const;
  /// Clears checkUSB.
  void setCUSB();
  /// Shows a message to the user; returns at once.
  void alertUSB(const QString& message);

  // Commands.

  /// Asks the watch for a sign of life. False when no port could be opened; true says only that one
  /// could: what the watch answered, or whether, does not count. Shows its failures. Up to
  /// `answerLimit`. The object is spent for further commands afterwards.
  bool linkCommand();
  /// Downloads, decodes and stores everything; returns a result code of downloadResult. Blocks for
  /// the whole transfer; a watch that falls silent before its end marker blocks it until cancel().
  qint32 getAllData();
  /// Ends the command in hand, closes the port and lets the next opening have it; the command
  /// answers notStored or false soon after. What is being stored already is stored to the end. The
  /// object is spent afterwards. Any thread.
  void cancel();
  /// Tells the watch to erase its records; awaits nothing and leaves the port open. eraseSent tells
  /// whether the command went out.
  void deleteAllData();
  /// Sends the disconnect command if a port is open.
  void lostLink();
  /// Waits for one block, up to `answerLimit`; getDataOK tells the outcome.
  void checkTransmission();
  /// Sends a text of hexadecimal digits as a command of 32 bytes if a port is open; see
  /// commandBytes(). A failed write is only logged.
  void writeString(const QString& hex);
  /// Writes a single byte if a port is open.
  void writeByte(const quint8* byte);

  /// Body of the receive thread; the argument is ignored.
  void incomingTextUpdateThread(std::thread::id ignored);
  /// Does nothing.
  void appendToIncomingText(const QString& text);

  /// getAllData() on a thread of its own; the result is lost.
  void threadGetAllData();
  /// SendCommandStr() on a thread of its own.
  void tempSendThread();
  /// Starts a download without waiting for it when getDataType is 1; else sends 32 zero bytes.
  void SendCommandStr();
  /// Decodes and stores when more than two lines arrived; else tells the user that there is none.
  void DataFinishCheck();
  /// Decodes and stores when `code` is 1.
  void alertEnded(const WatchAlert& ended, qint32 code, const void* context);

  /// Decodes an identity block of at least 30 bytes; a shorter one is ignored. `commandType` is not
  /// used.
  void getWatchInfo(std::span<const quint8> block, qint32 commandType);
  /// Binary digits of the number that the text begins with; empty for a negative one.
  static QString turn10to2(const QString& decimal);

  /// Decodes chStr and stores the new runs: stored, notStored or noRunCompleted of downloadResult.
  /// Fills the batch members and the counts behind them.
  qint32 convertChstr();

  // Assistance data.

  /// Fetches the assistance file, converts it and announces it; without data nothing happens.
  /// Blocks until the server answered.
  void downLoad();
  /// Links, and announces assistance data when that succeeded.
  void sendAgpsData();
  /// Builds the packet texts from agpsData into alpBuffStr.
  void convertAGPSStr();
  /// Two-digit checksum of a text of hexadecimal digits: with it the bytes add up to 0xFF.
  static QString getCheckSum(const QString& hex);
  /// Announces assistance data and waits for the watch. Shows its failures.
  void startAgpsCommand();

 private:
  bool isConversing() const override;
  bool lineLost() const override;
  void giveWay() override;

  bool portIsOpen() const;
  void ensurePort();
  QString openNode(const QString& node, qint32 baud);
  void startReceiveThread();
  void closePort();
  std::shared_ptr<SerialPort> currentPort() const;

  void receiveBlocks(SerialPort& port);
  bool actOnLine(const QString& line, bool isShort, SerialPort& port);
  void takeLine(const QString& line, bool isShort, SerialPort& port);
  void finishDownload(SerialPort& port);
  void clearLines();
  QStringList receivedLines();
  qsizetype lineCount();
  void forgetLastDownload();
  void awaitEnd();
  qint32 endCancelled();
  qint32 storeLines(const QDateTime& end);
  void keepLines();
  void keepDoubtfulLines(const QDateTime& end);

  void request(const QString& command);
  void awaitBlock();
  bool write(std::span<const std::byte> bytes);

  const DeviceEnvironment environment_;
  const std::weak_ptr<WatchSession> session_;
  std::atomic<int> operations_{0};
  std::atomic<bool> lineLost_{false};
  mutable std::mutex portMutex_;
  std::shared_ptr<SerialPort> port_;  ///< A new one for each opening. Guarded by portMutex_.
};

/// Called with the devices that a search registered for. They go to the object in `reference`; the
/// searches register without one, so a watch plugged in later reaches no object.
void deviceAdded(usbOperating* reference, const QList<UsbDevice>& iterator);

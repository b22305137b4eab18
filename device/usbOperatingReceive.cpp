// The receive thread: turns blocks into lines and acts on them by receive mode.

#include "device/receiveMode.h"
#include "device/receivedLine.h"
#include "device/serialPort.h"
#include "device/usbOperating.h"

#include <QLoggingCategory>
#include <QScopeGuard>

#include <algorithm>
#include <sys/resource.h>
#include <unistd.h>
#include <vector>

Q_LOGGING_CATEGORY(lcReceive, "trakko.device.receive", QtInfoMsg)

namespace {

/// Ordinary users may not raise a priority; the thread keeps up at the usual one as well.
void raisePriority() {
  constexpr int highest = -20;
  if (::setpriority(PRIO_PROCESS, static_cast<id_t>(::gettid()), highest) != 0) {
    qCDebug(lcReceive, "the receive thread keeps the usual priority");
  }
}

}  // namespace

void usbOperating::incomingTextUpdateThread(std::thread::id /*ignored*/) {
  readThreadRunning = true;
  const std::shared_ptr<SerialPort> port = currentPort();
  const auto atEnd = qScopeGuard([this, &port] {
    if (port) {
      port->close();  // nobody listens any more: leave it to the next opening
    }
    readThreadRunning = false;
  });
  if (!port) {
    return;
  }
  raisePriority();
  try {
    receiveBlocks(*port);
  } catch (...) {
    lineLost_ = true;  // for others it is as if the plug had been pulled
    throw;
  }
}

void usbOperating::receiveBlocks(SerialPort& port) {
  std::vector<std::byte> buffer(static_cast<std::size_t>(std::max(0, BUFFER_SIZE.load())));
  for (;;) {
    const ssize_t count = port.read(buffer);
    if (count <= 0) {
      if (port.isOpen()) {
        lineLost_ = true;
      }
      return;
    }
    // All positions: behind a short read stand the bytes of an earlier one.
    const bool isShort = static_cast<std::size_t>(count) < buffer.size();
    if (!actOnLine(hexLine(buffer, BUFFER_SIZE), isShort, port)) {
      return;
    }
  }
}

/// False when the thread is to end.
bool usbOperating::actOnLine(const QString& line, bool isShort, SerialPort& port) {
  switch (checkGetDataType) {
    case receiveMode::link:
      getDataOK = true;
      port.close();  // serialFileDescriptor keeps the number: the object is spent
      return false;
    case receiveMode::download:
      getDataOK = true;
      if (isEndMarker(line)) {
        finishDownload(port);
      } else {
        takeLine(line, isShort, port);
      }
      return true;
    default:
      return true;
  }
}

void usbOperating::takeLine(const QString& line, bool isShort, SerialPort& port) {
  if (isShort) {
    ++shortBlocks;
  }
  {
    const std::lock_guard lock(chStrMutex);
    chStr.append(line);
    endless = chStr.size() >= environment_.mostBlocks;
  }
  if (endless) {
    finishDownload(port);
  }
}

void usbOperating::finishDownload(SerialPort& port) {
  port.close();
  checkStop = true;
  serialFileDescriptor = -1;
  // In this order: a wait that sees the last getDataOK finds the download finished.
  downloadDataFinish = true;
  getDataOK = true;
}

void usbOperating::appendToIncomingText(const QString& /*text*/) {}

void usbOperating::clearLines() {
  const std::lock_guard lock(chStrMutex);
  chStr = QStringList();
}

/// A list of its own: one that shared its array would let go of it outside the lock while the
/// receive thread appends.
QStringList usbOperating::receivedLines() {
  const std::lock_guard lock(chStrMutex);
  return {chStr.cbegin(), chStr.cend()};
}

qsizetype usbOperating::lineCount() {
  const std::lock_guard lock(chStrMutex);
  return chStr.size();
}

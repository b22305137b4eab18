// An identity block, the size that the bytes are written in, and any bytes as a download through a
// pseudo-terminal. The identity sets how many bytes a read asks for, so it is asked for a size of
// its own.

#include "base/detachThread.h"
#include "device/usbOperating.h"
#include "tests/device/fakeRegistry.h"
#include "tests/device/pseudoTerminal.h"
#include "tests/fuzz/fuzz.h"

#include <thread>

namespace {

constexpr size_t identitySize = 30;
constexpr qsizetype mostBlocks = 40;

/// Whole blocks, so that no read waits for the rest of one, and the end marker.
QByteArray download(const uint8_t* data, size_t size, qsizetype block) {
  QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
  bytes.truncate(mostBlocks * block);
  bytes.append(QByteArray((block - bytes.size() % block) % block, '\0'));
  return bytes + QByteArray(block, '\xEE');
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  quiet();
  if (size <= identitySize) {
    return 0;
  }
  const PseudoTerminal line;
  const auto registry = std::make_shared<FakeRegistry>();
  registry->plugWatch(line.path);
  const auto usb = usbOperating::create({registry, nullptr, 0.2, {}});
  usb->getWatchInfo(std::span(data, identitySize), 0);
  require(usb->CheckLinkCommand && usb->BUFFER_SIZE > 0);
  if (usb->BUFFER_SIZE < 4) {
    usb->BUFFER_SIZE = 36;  // too short for an end marker: such a download never ends
  }
  const QByteArray bytes =
      download(data + identitySize + 1, size - identitySize - 1, usb->BUFFER_SIZE);
  const qsizetype piece = 1 + data[identitySize];
  std::thread watch([&] {
    line.receive(32);
    for (qsizetype at = 0; at < bytes.size(); at += piece) {
      line.send(bytes.mid(at, piece));
    }
  });
  const qint32 code = usb->getAllData();
  watch.join();
  while (detachedThreadCount() > 0) {
    std::this_thread::yield();
  }
  require(code >= -1 && (code <= 4 || code == 88) && !usb->readThreadRunning);
  return 0;
}

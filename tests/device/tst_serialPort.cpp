#include "device/serialPort.h"
#include "pseudoTerminal.h"
#include "tests/columns.h"

#include <QtTest>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <numeric>
#include <optional>
#include <sys/ioctl.h>
#include <thread>
#include <vector>

namespace {

constexpr qint32 baud = 115200;

QByteArray readBlock(SerialPort& port, std::size_t size = 36) {
  std::vector<std::byte> buffer(size);
  const ssize_t count = port.read(buffer);
  return count <= 0 ? QByteArray()
                    : QByteArray(reinterpret_cast<const char*>(buffer.data()), count);
}

bool writeAll(SerialPort& port, const QByteArray& bytes) {
  return port.write(std::as_bytes(std::span(bytes.constData(), std::size_t(bytes.size()))));
}

/// Every byte value.
const QByteArray all = [] {
  QByteArray bytes(256, '\0');
  std::iota(bytes.begin(), bytes.end(), '\0');
  return bytes;
}();

}  // namespace

class tst_serialPort : public QObject {
  Q_OBJECT

  std::optional<PseudoTerminal> line_;
  std::optional<SerialPort> port_;

 private Q_SLOTS:
  void init() {
    line_.emplace();
    port_.emplace();
    QVERIFY(port_->open(line_->path, baud).isNull());
  }

  void gathersBlocks_data() {
    // Bytes sent at a time, a negative number is a pause in milliseconds; bytes read at a time.
    const auto row = columns<QList<int>, QList<qsizetype>>("pieces", "reads");
    row("small pieces", {1, 20, 14, 1}, {36});
    row("two at once", {72}, {36, 36});
    row("cut elsewhere", {50, 22}, {36, 36});
    row("short pause", {20, -300, 16}, {36});
    row("long pause", {40, -1300, 36}, {36, 4, 36});
  }
  void gathersBlocks() {
    QFETCH(QList<int>, pieces);
    QFETCH(QList<qsizetype>, reads);
    std::thread sender([&] {
      QByteArray left = all;
      for (const int piece : pieces) {
        std::this_thread::sleep_for(std::chrono::milliseconds(std::max(1, -piece)));
        line_->send(left.first(std::max(piece, 0)));
        left.remove(0, std::max(piece, 0));
      }
    });
    QByteArray received;
    QList<qsizetype> sizes;
    while (sizes.size() < reads.size()) {
      const QByteArray block = readBlock(*port_);
      sizes << block.size();
      received += block;
    }
    sender.join();
    QCOMPARE(sizes, reads);
    QCOMPARE(received, all.first(received.size()));
  }

  void onlyWhatComesAfterOpeningAndAllOfIt() {
    const PseudoTerminal line;
    line.send("left over from before\n");
    SerialPort port;
    QVERIFY(port.open(line.path, baud).isNull());
    line.receive(100, 100);  // what the line discipline echoed
    line.send(all);
    QCOMPARE(readBlock(port, 256), all);
    QVERIFY(writeAll(port, all));
    QCOMPARE(line.receive(256), all);
  }

  void hangUpEndsReading() {
    line_->send(all.first(10));
    line_->hangUp();
    const qsizetype first = readBlock(*port_).size();
    QVERIFY(first == 10 || first == 0);  // the kernel may drop what was not read yet
    QVERIFY(readBlock(*port_).isEmpty());
    QVERIFY(!writeAll(*port_, all.first(32)));
    QVERIFY(port_->isOpen());
  }

  /// A reader that is left behind in read() would take the first block of the next opening.
  void closingWakesTheReader() {
    for (int round = 0; round < 50; ++round) {
      std::atomic<bool> reading{false};
      std::thread reader([&] {
        reading = true;
        QVERIFY(readBlock(*port_).isEmpty());
        QVERIFY(!port_->isOpen());  // else the port of a living session is taken for unplugged
      });
      while (!reading) {
        std::this_thread::yield();
      }
      port_->close();
      reader.join();
      port_.emplace();
      QVERIFY(port_->open(line_->path, baud).isNull());
      line_->send(all.first(36));
      QCOMPARE(readBlock(*port_), all.first(36));
    }
  }

  void aClosedNumberBelongsToOthers() {
    const QTemporaryDir folder;
    const int number = port_->descriptor;
    port_->close();
    QFile file(folder.filePath("gpsData.db3"));
    QVERIFY(file.open(QIODevice::ReadWrite));
    QCOMPARE(file.handle(), number);
    QVERIFY(!writeAll(*port_, all.first(32)));
    QVERIFY(readBlock(*port_).isEmpty());
    port_->close();
    QCOMPARE(file.size(), 0);
    QCOMPARE(file.write("still open"), 10);
  }

  void oneUserAtATime() {
    SerialPort second;
    // The superuser gets as far as the lock, everybody else is stopped at the door.
    QCOMPARE(second.open(line_->path, baud), ::geteuid() == 0
                                                 ? "Error: couldn't obtain lock on serial port"
                                                 : "Error: couldn't open serial port");
    QVERIFY(!second.isOpen());
    int exclusive = 0;
    QCOMPARE(::ioctl(port_->descriptor, TIOCGEXCL, &exclusive), 0);
    QCOMPARE(exclusive, 1);  // the refusal has not taken it away
    line_->send(all.first(36));
    QCOMPARE(readBlock(*port_), all.first(36));
    port_->close();
    SerialPort third;
    QVERIFY(third.open(line_->path, baud).isNull());
  }

  void refusals_data() {
    const auto row = columns<QString, qint32, QString, int>("path", "speed", "error", "code");
    row("none", "/dev/cu.nothing", baud, "Error: couldn't open serial port", ENOENT);
    row("no terminal", "/dev/null", baud, "Error: couldn't obtain lock on serial port", ENOTTY);
    row("no speed", {}, 0, "Error: Baud Rate out of bounds", EINVAL);
    row("good", {}, baud, {}, 0);
  }
  void refusals() {
    QFETCH(QString, path);
    QFETCH(qint32, speed);
    QFETCH(QString, error);
    port_.emplace();
    QCOMPARE(port_->open(path.isNull() ? line_->path : path, speed), error);
    QTEST(port_->openError, "code");
    QCOMPARE(port_->isOpen(), error.isNull());
  }

  void aPeerThatDoesNotReadBlocksNobody() {
    std::atomic<bool> failed{false};
    std::thread writer([&] {
      while (port_->isOpen()) {
        failed = !writeAll(*port_, all.first(32)) || failed;
      }
    });
    QTRY_VERIFY(failed);
    port_->close();
    writer.join();
  }
};

QTEST_GUILESS_MAIN(tst_serialPort)
#include "tst_serialPort.moc"

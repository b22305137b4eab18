#include "device/serialPort.h"
#include "pseudoTerminal.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <atomic>
#include <chrono>
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

QByteArray pattern(int size) {
  QByteArray bytes;
  for (int index = 0; index < size; ++index) {
    bytes += static_cast<char>(index * 7);
  }
  return bytes;
}

}  // namespace

class tst_serialPort : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void gathersBlocks_data() {
    QTest::addColumn<QList<int>>("pieces");  // sizes as sent; 0 is a pause of 300 ms
    QTest::addColumn<QList<qsizetype>>("reads");
    QTest::newRow("whole") << QList<int>{36} << QList<qsizetype>{36};
    QTest::newRow("cut up") << QList<int>{1, 20, 14, 1} << QList<qsizetype>{36};
    QTest::newRow("two at once") << QList<int>{72} << QList<qsizetype>{36, 36};
    QTest::newRow("across the cut") << QList<int>{50, 22} << QList<qsizetype>{36, 36};
    QTest::newRow("short, then whole") << QList<int>{20, 0, 36} << QList<qsizetype>{20, 36};
    QTest::newRow("one and a bit") << QList<int>{40, 0, 36} << QList<qsizetype>{36, 4, 36};
  }
  void gathersBlocks() {
    QFETCH(QList<int>, pieces);
    QFETCH(QList<qsizetype>, reads);
    const PseudoTerminal line;
    SerialPort port;
    QVERIFY(port.open(line.path, baud).isNull());
    const QByteArray sent = pattern(200);
    std::thread sender([&] {
      int at = 0;
      for (const int piece : pieces) {
        std::this_thread::sleep_for(std::chrono::milliseconds(piece == 0 ? 300 : 1));
        line.send(sent.sliced(at, piece));
        at += piece;
      }
    });
    QByteArray received;
    QList<qsizetype> sizes;
    for (qsizetype index = 0; index < reads.size(); ++index) {
      const QByteArray block = readBlock(port);
      sizes << block.size();
      received += block;
    }
    sender.join();
    QCOMPARE(sizes, reads);
    QCOMPARE(received, sent.first(received.size()));
  }

  void everyByteValuePasses() {
    const PseudoTerminal line;
    SerialPort port;
    QVERIFY(port.open(line.path, baud).isNull());
    QByteArray all;
    for (int value = 0; value < 256; ++value) {
      all += static_cast<char>(value);
    }
    line.send(all);
    QCOMPARE(readBlock(port, 256), all);
    QVERIFY(writeAll(port, all));
    QCOMPARE(line.receive(256), all);
  }

  void earlierInputIsDiscarded() {
    const PseudoTerminal line;
    line.send("left over from before\n");
    SerialPort port;
    QVERIFY(port.open(line.path, baud).isNull());
    line.receive(100, 100);  // what the line discipline echoed
    line.send(pattern(36));
    QCOMPARE(readBlock(port), pattern(36));
  }

  void hangUpEndsReading() {
    PseudoTerminal line;
    SerialPort port;
    QVERIFY(port.open(line.path, baud).isNull());
    line.send(pattern(10));
    std::thread plug([&line] {
      std::this_thread::sleep_for(std::chrono::milliseconds(30));
      line.hangUp();
    });
    std::vector<std::byte> buffer(36);
    const ssize_t first = port.read(buffer);
    plug.join();
    QVERIFY(first == 10 || first == 0);  // the kernel may drop what was not read yet
    QVERIFY(port.read(buffer) <= 0);
    QVERIFY(!writeAll(port, pattern(32)));
    QVERIFY(port.isOpen());
  }

  /// A reader that is left behind in read() would take the first block of the next opening.
  void closingWakesTheReader() {
    const PseudoTerminal line;
    for (int round = 0; round < 50; ++round) {
      auto port = std::make_shared<SerialPort>();
      QVERIFY(port->open(line.path, baud).isNull());
      std::atomic<bool> reading{false};
      std::thread reader([&] {
        reading = true;
        std::vector<std::byte> buffer(36);
        QCOMPARE(port->read(buffer), -1);
      });
      while (!reading) {
        std::this_thread::yield();
      }
      port->close();
      reader.join();
      SerialPort next;
      QVERIFY(next.open(line.path, baud).isNull());
      line.send(pattern(36));
      QCOMPARE(readBlock(next), pattern(36));
    }
  }

  void aClosedNumberBelongsToOthers() {
    const PseudoTerminal line;
    const QTemporaryDir folder;
    SerialPort port;
    QVERIFY(port.open(line.path, baud).isNull());
    const int number = port.descriptor;
    port.close();
    QFile file(folder.filePath(QStringLiteral("gpsData.db3")));
    QVERIFY(file.open(QIODevice::ReadWrite));
    QCOMPARE(file.handle(), number);
    QVERIFY(!writeAll(port, pattern(32)));
    QVERIFY(readBlock(port).isEmpty());
    port.close();
    QCOMPARE(file.size(), 0);
    QCOMPARE(file.write("still open"), 10);
  }

  void oneUserAtATime() {
    const PseudoTerminal line;
    SerialPort first;
    SerialPort second;
    SerialPort third;
    QVERIFY(first.open(line.path, baud).isNull());
    const QString refused = second.open(line.path, baud);
    // The superuser gets as far as the lock, everybody else is stopped at the door.
    QCOMPARE(refused, ::geteuid() == 0
                          ? QStringLiteral("Error: couldn't obtain lock on serial port")
                          : QStringLiteral("Error: couldn't open serial port"));
    QVERIFY(!second.isOpen());
    line.send(pattern(36));
    QCOMPARE(readBlock(first), pattern(36));
    first.close();
    QVERIFY(third.open(line.path, baud).isNull());
  }

  void refusals_data() {
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("error");
    QTest::addColumn<int>("code");
    QTest::newRow("no such file") << QStringLiteral("/dev/cu.nothing")
                                  << QStringLiteral("Error: couldn't open serial port") << ENOENT;
    QTest::newRow("no terminal") << QStringLiteral("/dev/null")
                                 << QStringLiteral("Error: couldn't obtain lock on serial port")
                                 << ENOTTY;
  }
  void refusals() {
    QFETCH(QString, path);
    SerialPort port;
    QTEST(port.open(path, baud), "error");
    QTEST(port.openError, "code");
    QCOMPARE(port.descriptor.load(), -1);
  }

  void impossibleSpeed() {
    const PseudoTerminal line;
    SerialPort port;
    QCOMPARE(port.open(line.path, 0), QStringLiteral("Error: Baud Rate out of bounds"));
    SerialPort again;
    QVERIFY(again.open(line.path, baud).isNull());
  }

  void aPeerThatDoesNotReadBlocksNobody() {
    const PseudoTerminal line;
    SerialPort port;
    QVERIFY(port.open(line.path, baud).isNull());
    std::atomic<int> failures{0};
    std::thread writer([&] {
      while (writeAll(port, pattern(32))) {
      }
      ++failures;
      while (port.isOpen()) {
        writeAll(port, pattern(32));
      }
    });
    QTRY_COMPARE(failures.load(), 1);
    port.close();
    writer.join();
  }
};

QTEST_GUILESS_MAIN(tst_serialPort)
#include "tst_serialPort.moc"

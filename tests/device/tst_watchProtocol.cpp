#include "device/lastDownload.h"
#include "device/receivedLine.h"
#include "device/usbOperating.h"
#include "device/watchCommands.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <csignal>
#include <sys/resource.h>

namespace {

QByteArray sent(const QString& hex) {
  const auto bytes = commandBytes(hex);
  return QByteArray(reinterpret_cast<const char*>(bytes.data()), qsizetype(bytes.size())).toHex();
}

QByteArray fileContents(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("missing");
}

}  // namespace

class tst_watchProtocol : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void commandTexts_data() {
    QTest::addColumn<QString>("hex");
    QTest::addColumn<QByteArray>("bytes");  // as far as not zero
    const auto row = [](const char* hex, const char* bytes) {
      QTest::newRow(hex) << QString::fromLatin1(hex) << QByteArray(bytes);
    };
    row("0A", "ea");  // the low digit's case is judged by the high digit
    row("0a", "0a");
    row("AA", "aa");
    row("aA", "8a");
    row("Aa", "ca");
    row("fffd", "fffd");
    row("12345", "1234");
    row("", "");
    row("0102030405060708091011121314151617181920212223242526272829303132FF",
        "0102030405060708091011121314151617181920212223242526272829303132");
  }
  void commandTexts() {
    QFETCH(QString, hex);
    QFETCH(QByteArray, bytes);
    QCOMPARE(sent(hex), bytes.leftJustified(64, '0'));
  }

  void lines_data() {
    QTest::addColumn<QByteArray>("block");
    QTest::addColumn<qsizetype>("count");
    QTest::addColumn<QString>("line");
    QTest::addColumn<bool>("isEnd");
    QTest::newRow("digits") << QByteArray("\x00\x0a\xff", 3) << qsizetype(3)
                            << QStringLiteral("00 0A FF") << false;
    QTest::newRow("beyond the buffer")
        << QByteArray("\x7f") << qsizetype(2) << QStringLiteral("7F 00") << false;
    QTest::newRow("nothing") << QByteArray("\x7f") << qsizetype(0) << QString() << false;
    QTest::newRow("negative") << QByteArray("\x7f") << qsizetype(-1) << QString() << false;
    QTest::newRow("end") << QByteArray("\xee\xee\xee\xee\x01") << qsizetype(5)
                         << QStringLiteral("EE EE EE EE 01") << true;
    QTest::newRow("not quite") << QByteArray("\xee\xee\xee\xed") << qsizetype(4)
                               << QStringLiteral("EE EE EE ED") << false;
  }
  void lines() {
    QFETCH(QByteArray, block);
    QFETCH(qsizetype, count);
    QFETCH(bool, isEnd);
    const QString line =
        hexLine(std::as_bytes(std::span(block.data(), size_t(block.size()))), count);
    QTEST(line, "line");
    QCOMPARE(isEndMarker(line), isEnd);
  }

  void binaryDigits_data() {
    QTest::addColumn<QString>("digits");
    QTest::newRow("0") << QStringLiteral("0");
    QTest::newRow("5") << QStringLiteral("101");
    QTest::newRow("200") << QStringLiteral("11001000");
    QTest::newRow("-3") << QString();
    QTest::newRow("x") << QStringLiteral("0");
  }
  void binaryDigits() {
    QTEST(usbOperating::turn10to2(QString::fromLatin1(QTest::currentDataTag())), "digits");
  }

  void identity_data() {
    QTest::addColumn<QByteArray>("block");
    QTest::addColumn<QStringList>("texts");
    QTest::addColumn<qint32>("blockSize");
    QTest::addColumn<qint32>("checkAlti");
    const QByteArray start(
        "Z\x01\x0c\xc8\x0a\xff\x00"
        "ABCDEF"
        "V1.2.3"
        "unused.",
        26);
    const QString number = QStringLiteral("Z 01 12 200 0a ff 00");
    const QString version = QStringLiteral("V1.2.3");
    QTest::newRow("digit") << start + QByteArray(
                                          "\x24-\x80"
                                          "7",
                                          4)
                           << QStringList{number, QStringLiteral("ABCDEF7D"), version} << 36 << 1;
    QTest::newRow("letter") << start + QByteArray(
                                           "\x00-\x7f"
                                           "K",
                                           4)
                            << QStringList{number, QStringLiteral("ABCDEFK"), version} << 32 << 0;
    QTest::newRow("small letter") << start + QByteArray(
                                                 "\xff-\x00"
                                                 "k",
                                                 4)
                                  << QStringList{number, QStringLiteral("ABCDEk"), version} << 255
                                  << 0;
    QTest::newRow("none") << start + QByteArray(
                                         "\x40-\xc1"
                                         "\x00",
                                         4)
                          << QStringList{number, QStringLiteral("ABCDE"), version} << 64 << 1;
  }
  void identity() {
    QFETCH(QByteArray, block);
    QFETCH(QStringList, texts);
    const auto usb = usbOperating::create({});
    usb->getWatchInfo(std::span(reinterpret_cast<const quint8*>(block.constData()), 29), 0);
    QVERIFY(!usb->CheckLinkCommand && usb->idNoStr.isNull());
    usb->getWatchInfo(std::span(reinterpret_cast<const quint8*>(block.constData()), 30), 0);
    QCOMPARE((QStringList{usb->idNoStr, usb->modelStr, usb->verStr}), texts);
    QTEST(usb->BUFFER_SIZE.load(), "blockSize");
    QTEST(usb->checkAlti, "checkAlti");
    QVERIFY(usb->CheckLinkCommand);
  }

  void aFailedDownloadFileLeavesTheOldOne() {
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("lastDownload.txt"));
    QVERIFY(keepDownload(path, {QStringLiteral("00 01"), QStringLiteral("02 03")}).isNull());
    QCOMPARE(fileContents(path), QByteArray("00 01\n02 03\n"));

    // A disk that takes only a part.
    rlimit before{};
    ::getrlimit(RLIMIT_FSIZE, &before);
    const rlimit small{100, before.rlim_max};
    std::signal(SIGXFSZ, SIG_IGN);
    ::setrlimit(RLIMIT_FSIZE, &small);
    const QString error = keepDownload(path, QStringList(100, QStringLiteral("FF FF")));
    ::setrlimit(RLIMIT_FSIZE, &before);
    QVERIFY(!error.isNull());
    QCOMPARE(fileContents(path), QByteArray("00 01\n02 03\n"));
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files).size(), 1);

    QVERIFY(keepDownload(path, {QStringLiteral("04")}).isNull());
    QCOMPARE(fileContents(path), QByteArray("04\n"));
    QVERIFY(!keepDownload(folder.filePath(QStringLiteral("no/such/folder")), {}).isNull());
  }
};

QTEST_GUILESS_MAIN(tst_watchProtocol)
#include "tst_watchProtocol.moc"

#include "device/receivedLine.h"
#include "device/usbOperating.h"
#include "device/watchCommands.h"
#include "tests/columns.h"

#include <QtTest>

class tst_watchProtocol : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void commandTexts_data() {
    const auto row = columns<QByteArray>("bytes");
    const QByteArray digits("0102030405060708091011121314151617181920212223242526272829303132");
    row("0A", "ea");  // the low digit's case is judged by the high digit
    row("0a", "0a");
    row("AA", "aa");
    row("aA", "8a");
    row("Aa", "ca");
    row("fffd", "fffd");
    row("12345", "1234");
    row("", "");
    row(digits + "FF", digits);
  }
  void commandTexts() {
    QFETCH(QByteArray, bytes);
    const auto sent = commandBytes(QString(QTest::currentDataTag()));
    QCOMPARE(QByteArray(reinterpret_cast<const char*>(sent.data()), sent.size()).toHex(),
             bytes.leftJustified(64, '0'));
  }

  void lines_data() {
    const auto row =
        columns<QByteArray, qsizetype, QString, bool>("block", "count", "line", "isEnd");
    row("capital letters", QByteArray("\x00\x0a\xff", 3), 3, "00 0A FF", false);
    row("beyond the buffer", "\x7f", 2, "7F 00", false);
    row("none", "\x7f", 0, "", false);
    row("fewer than none", "\x7f", -1, "", false);
    row("end", "\xee\xee\xee\xee\x01", 5, "EE EE EE EE 01", true);
    row("almost the end", "\xee\xee\xee\xed", 4, "EE EE EE ED", false);
  }
  void lines() {
    QFETCH(QByteArray, block);
    QFETCH(qsizetype, count);
    QFETCH(QString, line);
    QCOMPARE(hexLine(std::as_bytes(std::span(block.constData(), size_t(block.size()))), count),
             line);
    QTEST(isEndMarker(line), "isEnd");
  }

  void identity_data() {
    // Bytes 26 to 29; what they tell.
    const auto row = columns<QString, qint32, qint32>("model", "blockSize", "altitude");
    row("24008037", "ABCDEF7D", 36, 1);  // a digit
    row("00007f4b", "ABCDEFK", 32, 0);   // a letter
    row("ff00006b", "ABCDEk", 255, 0);   // a small letter
    row("4000c100", "ABCDE", 64, 1);     // none
  }
  void identity() {
    const QByteArray bytes = "Z\x01\x0c\xc8\x0a\xff" + QByteArray(1, '\0') + "ABCDEFV1.2.3unused." +
                             QByteArray::fromHex(QTest::currentDataTag());
    const std::span block(reinterpret_cast<const quint8*>(bytes.constData()), 30);
    const auto usb = usbOperating::create({});
    usb->getWatchInfo(block.first(29), 0);
    QVERIFY(!usb->CheckLinkCommand && usb->idNoStr.isNull());
    usb->getWatchInfo(block, 0);
    QCOMPARE(usb->idNoStr, "Z 01 12 200 0a ff 00");
    QTEST(usb->modelStr, "model");
    QCOMPARE(usb->verStr, "V1.2.3");
    QTEST(usb->BUFFER_SIZE.load(), "blockSize");
    QTEST(usb->checkAlti, "altitude");
    QVERIFY(usb->CheckLinkCommand);
  }
};

QTEST_GUILESS_MAIN(tst_watchProtocol)
#include "tst_watchProtocol.moc"

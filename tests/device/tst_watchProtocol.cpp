#include "device/lastDownload.h"
#include "device/receivedLine.h"
#include "device/usbOperating.h"
#include "device/watchCommands.h"
#include "tests/files.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <tuple>

class tst_watchProtocol : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void commandTexts() {
    const QByteArray digits("0102030405060708091011121314151617181920212223242526272829303132");
    const QList<std::pair<QByteArray, QByteArray>> rows{
        {"0A", "ea"},  // the low digit's case is judged by the high digit
        {"0a", "0a"},     {"AA", "aa"},      {"aA", "8a"}, {"Aa", "ca"},
        {"fffd", "fffd"}, {"12345", "1234"}, {"", ""},     {digits + "FF", digits}};
    for (const auto& [hex, bytes] : rows) {
      const auto sent = commandBytes(QString(hex));
      QCOMPARE(QByteArray(reinterpret_cast<const char*>(sent.data()), sent.size()).toHex(),
               bytes.leftJustified(64, '0'));
    }
  }

  void lines() {
    const QList<std::tuple<QByteArray, qsizetype, QString, bool>> rows{
        {QByteArray("\x00\x0a\xff", 3), 3, "00 0A FF", false},
        {"\x7f", 2, "7F 00", false},  // beyond the buffer
        {"\x7f", 0, "", false},
        {"\x7f", -1, "", false},
        {"\xee\xee\xee\xee\x01", 5, "EE EE EE EE 01", true},
        {"\xee\xee\xee\xed", 4, "EE EE EE ED", false}};
    for (const auto& [block, count, line, isEnd] : rows) {
      QCOMPARE(hexLine(std::as_bytes(std::span(block.data(), size_t(block.size()))), count), line);
      QCOMPARE(isEndMarker(line), isEnd);
    }
  }

  void identity() {
    const QByteArray start = "Z\x01\x0c\xc8\x0a\xff" + QByteArray(1, '\0') + "ABCDEFV1.2.3unused.";
    // Bytes 26 to 29, the model, the size of blocks, altitude.
    const QList<std::tuple<QByteArray, QString, qint32, qint32>> rows{
        {QByteArray::fromHex("24008037"), "ABCDEF7D", 36, 1},  // a digit
        {QByteArray::fromHex("00007f4b"), "ABCDEFK", 32, 0},   // a letter
        {QByteArray::fromHex("ff00006b"), "ABCDEk", 255, 0},   // a small letter
        {QByteArray::fromHex("4000c100"), "ABCDE", 64, 1}};    // none
    for (const auto& [end, model, blockSize, checkAlti] : rows) {
      const QByteArray bytes = start + end;
      const std::span block(reinterpret_cast<const quint8*>(bytes.constData()), 30);
      const auto usb = usbOperating::create({});
      usb->getWatchInfo(block.first(29), 0);
      QVERIFY(!usb->CheckLinkCommand && usb->idNoStr.isNull());
      usb->getWatchInfo(block, 0);
      QCOMPARE(usb->idNoStr, "Z 01 12 200 0a ff 00");
      QCOMPARE(usb->modelStr, model);
      QCOMPARE(usb->verStr, "V1.2.3");
      QCOMPARE(usb->BUFFER_SIZE.load(), blockSize);
      QCOMPARE(usb->checkAlti, checkAlti);
      QVERIFY(usb->CheckLinkCommand);
    }
  }

  void aFailedDownloadFileLeavesTheOldOne() {
    const QTemporaryDir folder;
    const QString path = folder.filePath("lastDownload.txt");
    QVERIFY(keepDownload(path, {"00 01", "02 03"}).isNull());

    // A disk that takes only a part.
    {
      const FullDisk full(100);
      QVERIFY(!keepDownload(path, QStringList(100, "FF FF")).isNull());
    }
    QCOMPARE(bytesOf(path), "00 01\n02 03\n");
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files).size(), 1);

    QVERIFY(keepDownload(path, {"04"}).isNull());
    QCOMPARE(bytesOf(path), "04\n");
    QVERIFY(!keepDownload(folder.filePath("no/such/folder"), {}).isNull());
  }
};

QTEST_GUILESS_MAIN(tst_watchProtocol)
#include "tst_watchProtocol.moc"

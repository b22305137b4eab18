#include "device/downloadDecoder.h"

#include <QLoggingCategory>
#include <QTest>
#include <random>

using namespace Qt::StringLiterals;

namespace {

/// Texts of bytes by the position of the first of them: {{8, "00 01"}}.
using Pieces = QList<std::pair<int, QByteArray>>;

/// A line of 36 bytes, 00 where nothing is placed.
QString line(const QByteArray& type, int sequence, const QByteArray& key,
             const Pieces& placed = {}) {
  QByteArray text = QByteArray("00 ").repeated(36).chopped(1);
  const auto place = [&text](int byte, const QByteArray& part) {
    text.replace(qsizetype{3} * byte, part.size(), part);
  };
  place(32, QByteArray::number(sequence, 16).rightJustified(4, '0').toUpper().insert(2, ' '));
  place(34, key);
  place(35, type);
  for (const auto& [byte, part] : placed) {
    place(byte, part);
  }
  return QString::fromUtf8(text);
}

QString runLine(int sequence, const QByteArray& key, const Pieces& placed = {}) {
  return line("FD", sequence, key, placed);
}

QString pointLine(int sequence, const QByteArray& key, const Pieces& placed = {}) {
  return line("FA", sequence, key, placed);
}

/// 2014-05-17 07:30:05; `day` (hexadecimal) tells runs apart.
QString header(const QByteArray& key, const QByteArray& day = "11") {
  return runLine(0, key, {{0, "05 1E 07 " + day + " 05 0E"}, {6, "00 04"}});
}

DecodeContext utcContext() {
  DecodeContext context;
  context.isStored = [](const QString&) { return false; };
  context.zone = QTimeZone::utc();
  return context;
}

QStringList sortedKeys(const auto& dictionary) {
  QStringList keys = dictionary.keys();
  keys.sort();
  return keys;
}

}  // namespace

class tst_downloadDecoder : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void initTestCase() { QLoggingCategory::setFilterRules(u"trakko.*=false"_s); }
  void wholeDownload_data();
  void wholeDownload();
  void laps_data();
  void laps();
  void runEnd_data();
  void runEnd();
  void whichRunsComplete_data();
  void whichRunsComplete();
  void numbers();
  void pointsFollowTheIndex_data();
  void pointsFollowTheIndex();
  void coordinates_data();
  void coordinates();
  void oddLines_data();
  void oddLines();
  void anyText();
  void isPureIntReadsWholeTexts();
};

void tst_downloadDecoder::wholeDownload_data() {
  QTest::addColumn<qint32>("checkAlti");
  QTest::addColumn<QStringList>("altitude");  // run flag, ascent, descent, lap altitude
  QTest::addRow("no altitude") << 0 << QStringList{u"1"_s, u"0"_s, u"0"_s, u"0"_s};
  QTest::addRow("altitude") << 1 << QStringList{u"0"_s, u"197121"_s, u"-263685"_s, u"16909060"_s};
  QTest::addRow("other flag") << 2 << QStringList{u"1"_s, u"0"_s, u"0"_s, u"0"_s};
}

void tst_downloadDecoder::wholeDownload() {
  QFETCH(qint32, checkAlti);
  QFETCH(QStringList, altitude);
  DecodeContext context = utcContext();
  context.checkAlti = checkAlti;
  context.highestNumber = 41;
  const QStringList lines{runLine(0, "0A",
                                  {{0, "05 1E 07 11 05 0E 00 02 01 02 00 9A B4 50 00 01 05 06"},
                                   {18, "52 75 6E E9 00 27 00 78 01 02 04 01 02 03"}}),
                          runLine(1, "0A",
                                  {{0, "01 02 03 04 00 01 86 A0 00 09 27 C0 00 B4 00 78"},
                                   {16, "00 00 01 2C 00 02 B4 50 09 08 07 00 04 03 02 01"}}),
                          pointLine(0, "00"),
                          pointLine(1, "0A",
                                    {{0, "40 E2 01 00 02 58 05 1E 07 00 02 EE 01 02 03"},
                                     {15, "35 41 23 45 4E 01 39 45 17 56 45 10 27 34 12 00 00"}})};
  const DecodedDownload decoded = decodeDownload(lines, context);
  QCOMPARE(decoded.cnumber, 42);
  QCOMPARE(decoded.batch.runArr, QStringList{u"0A"_s});
  const runData run(u"2014-05-17 07:30:05"_s, u"2014-05-17 08:32:08"_s, u"01:02:03.04"_s,
                    u"100000"_s, u"600000"_s, 1, u"258"_s, u"154"_s, u"180"_s, u"120"_s, u"80"_s,
                    u"09:08:07"_s, 1, u"0"_s, u"Runé'"_s, QString::number(checkAlti), altitude[0],
                    altitude[1], altitude[2], 42, {}, {});
  QVERIFY(decoded.batch.runMD.value(u"0A"_s) == run);
  QVERIFY(decoded.batch.runMD.value(u"0A"_s).T_IdNumber.isNull());
  const lapData lap(u"01:02:03.04"_s, u"100000"_s, u"600000"_s, u"Lap 1"_s, 1, u"180"_s, u"120"_s,
                    u"180"_s, u"150"_s, u"80"_s, u"09:08:07"_s, altitude[3], u"0"_s, u"0"_s, 42);
  QVERIFY(decoded.batch.lapMD == LapDictionary({{u"0A-00001"_s, lap}}));
  const trackPointData point(u"07:30:05"_s, u"139°45.1756"_s, u"E"_s, u"35°41.2345"_s, u"N"_s,
                             u"139.752927"_s, u"35.687242"_s, u"600"_s, u"750"_s, u"4660"_s,
                             u"01:02:03"_s, u"123456"_s, u"10000"_s, 1, 42);
  QVERIFY(decoded.batch.pointMD == PointDictionary({{u"0A-00001"_s, point}}));
}

void tst_downloadDecoder::laps_data() {
  QTest::addColumn<QList<Pieces>>("placed");
  QTest::addColumn<QStringList>("second");  // of the last lap: time, distance, cal, HR, zone, type
  const Pieces first{{0, "00 05 00 32 00 00 03 E8 00 00 00 64"}, {16, "00 00 03 E8 00 0A"}};
  const auto row = [](const char* name, const QList<Pieces>& placed, const char* expected) {
    QTest::newRow(name) << placed << QString::fromLatin1(expected).split(u' ');
  };
  row("differences to the lap before",
      {first, {{0, "01 0A 1E 63 00 00 07 D1 00 00 01 2C"}, {16, "10 00 0B B8 00 19"}}},
      "01:05:30.00 1001 200 133 01:05:30 AutoLap_2");
  row("no new heart rate samples",
      {first, {{0, "00 06 00 00 00 00 07 D0 00 00 00 C8"}, {16, "0F 00 0B B8 00 0A"}}},
      "00:01:00.00 1000 100 0 00:01:00 Lap_2");
  row("fewer samples than before", {first, {{0, "00 06 00"}, {16, "00 00 00 01 00 09"}}},
      "00:01:00.00 -1000 -100 0 00:01:00 Lap_2");
  row("a lap without samples does not move the reference",
      {first, {{16, "00 00 07 D0 00 0A"}}, {{0, "00 06 00"}, {16, "00 00 0B B8 00 0E"}}},
      "00:06:00.00 0 0 500 00:06:00 Lap_3");
  row("falling heart rate sum wraps", {first, {{0, "00 05 01"}, {16, "00 00 03 E7 00 0B"}}},
      "00:00:01.00 -1000 -100 18446744073709551615 00:00:01 Lap_2");
  row("counters at zero before",
      {Pieces{}, {{0, "00 4B 02 07 00 00 07 D0 00 00 00 C8"}, {24, "09 08 07"}}},
      "00:75:02.07 2000 200 0 00:75:02 Lap_2");
  row("no time between two laps", {first, first}, "00:00:00.00 0 0 0 00:00:00 Lap_2");
  row("clock running backwards", {first, {{0, "00 03 3B"}}},
      "00:-1:-1.00 -1000 -100 0 00:-1:-1 Lap_2");
  row("hundredths beyond a second", {first, {{0, "00 05 01 C8"}}},
      "00:00:03.00 -1000 -100 0 00:00:03 Lap_2");
}

void tst_downloadDecoder::laps() {
  QFETCH(QList<Pieces>, placed);
  QFETCH(QStringList, second);
  QStringList lines{header("1F")};
  for (const Pieces& pieces : placed) {
    lines.append(runLine(static_cast<int>(lines.size()), "1F", pieces));
  }
  const DecodedDownload decoded = decodeDownload(lines, utcContext());
  const QString key = u"1F-"_s + QString::number(placed.size()).rightJustified(5, u'0');
  const lapData lap = decoded.batch.lapMD.value(key);
  QCOMPARE(QStringList({lap.T_LapTime, lap.T_LapDistance, lap.T_LapCal, lap.T_LapAvgHR,
                        lap.T_LapTimeZone, QString(lap.T_LapType).replace(u' ', u'_')}),
           second);
  QCOMPARE(lap.T_LapNo, static_cast<qint32>(placed.size()));
  QCOMPARE(decoded.batch.lapMD.size(), placed.size());
}

void tst_downloadDecoder::runEnd_data() {
  QTest::addColumn<QByteArray>("zone");
  QTest::addColumn<QByteArray>("start");    // bytes 0-5 of the header
  QTest::addColumn<QByteArray>("elapsed");  // bytes 0-2 of the lap
  QTest::addColumn<QString>("startText");
  QTest::addColumn<QString>("endText");  // null: no such date
  QTest::newRow("over new year") << QByteArray("Asia/Tokyo") << QByteArray("00 00 17 1F 0C 0D")
                                 << QByteArray("01 00 01") << u"2013-12-31 23:00:00"_s
                                 << u"2014-01-01 00:00:01"_s;
  QTest::newRow("clocks go forward")
      << QByteArray("Europe/Berlin") << QByteArray("00 1E 01 1F 03 18") << QByteArray("01 00 00")
      << u"2024-03-31 01:30:00"_s << u"2024-03-31 03:30:00"_s;
  QTest::newRow("clocks go back") << QByteArray("America/New_York")
                                  << QByteArray("00 1E 00 03 0B 18") << QByteArray("03 00 00")
                                  << u"2024-11-03 00:30:00"_s << u"2024-11-03 02:30:00"_s;
  QTest::newRow("start skipped by the clock")
      << QByteArray("Europe/Berlin") << QByteArray("00 1E 02 1F 03 18") << QByteArray("01 00 00")
      << u"2024-03-31 02:30:00"_s << QString();
  QTest::newRow("longest") << QByteArray("UTC") << QByteArray("3B 3B 17 1F 0C 63")
                           << QByteArray("FF FF FF") << u"2099-12-31 23:59:59"_s
                           << u"2100-01-11 19:19:14"_s;
  QTest::newRow("30 February") << QByteArray("UTC") << QByteArray("00 00 00 1E 02 0E")
                               << QByteArray("00 00 01") << u"2014-02-30 00:00:00"_s << QString();
  QTest::newRow("hour 24") << QByteArray("UTC") << QByteArray("00 00 18 01 01 0E")
                           << QByteArray("00 00 01") << u"2014-01-01 24:00:00"_s << QString();
  QTest::newRow("all bits") << QByteArray("UTC") << QByteArray("FF FF FF FF FF FF")
                            << QByteArray("FF FF FF") << u"20255-255-255 255:255:255"_s
                            << QString();
}

void tst_downloadDecoder::runEnd() {
  QFETCH(QByteArray, zone);
  QFETCH(QByteArray, start);
  QFETCH(QByteArray, elapsed);
  DecodeContext context = utcContext();
  context.zone = QTimeZone(zone);
  const DecodedDownload decoded =
      decodeDownload({runLine(0, "00", {{0, start}}), runLine(1, "00", {{0, elapsed}})}, context);
  const runData run = decoded.batch.runMD.value(u"00"_s);
  QTEST(run.T_RunStartTime, "startText");
  QTEST(run.T_RunEndTime, "endText");
  QFETCH(QString, endText);
  QCOMPARE(run.T_RunEndTime.isNull(), endText.isNull());
}

void tst_downloadDecoder::whichRunsComplete_data() {
  QTest::addColumn<QStringList>("lines");
  QTest::addColumn<QStringList>("stored");
  QTest::addColumn<QStringList>("runArr");
  QTest::addColumn<QStringList>("laps");
  QTest::addColumn<qint32>("code");  // only looked at without runs
  const QString lapA = runLine(1, "0A");
  const QString lapB = runLine(1, "0B");
  const QStringList none;
  const QStringList dayA{u"2014-05-17 07:30:05"_s};
  QTest::newRow("nothing") << none << none << none << none << -1;
  QTest::newRow("no run line") << QStringList{pointLine(0, "00"), pointLine(1, "00")} << none
                               << none << none << -1;
  QTest::newRow("laps before any header") << QStringList{lapA, lapB} << none << none << none << 88;
  QTest::newRow("only headers complete one another")
      << QStringList{header("0A"), header("0B", "12")} << none << QStringList{u"0A"_s} << none
      << 88;
  QTest::newRow("header last") << QStringList{header("0A")} << none << none << none << 88;
  QTest::newRow("stored already") << QStringList{header("0A"), lapA} << dayA << none << none << 88;
  QTest::newRow("stored run between new ones")
      << QStringList{header("0B", "12"), lapB, header("0A"), lapA, header("0C", "13"),
                     runLine(1, "0C")}
      << dayA << QStringList{u"0B"_s, u"0C"_s} << QStringList{u"0B-00001"_s, u"0C-00001"_s} << 88;
  QTest::newRow("stored run last")
      << QStringList{header("0B", "12"), lapB, header("0A"), lapA} << dayA << QStringList{u"0B"_s}
      << QStringList{u"0B-00001"_s} << 88;
  // At the next header the key is that of the line before, at the end that of the header.
  QTest::newRow("foreign key in laps")
      << QStringList{header("0A"), runLine(1, "1A"), header("0B", "12"), runLine(1, "1B")} << none
      << QStringList{u"1A"_s, u"0B"_s} << QStringList{u"0A-00001"_s, u"0B-00001"_s} << 88;
  QTest::newRow("same key twice") << QStringList{header("0A"), lapA, header("0A", "12"), lapA}
                                  << none << QStringList{u"0A"_s, u"0A"_s}
                                  << QStringList{u"0A-00001"_s} << 88;
}

void tst_downloadDecoder::whichRunsComplete() {
  QFETCH(QStringList, lines);
  QFETCH(QStringList, stored);
  QFETCH(qint32, code);
  DecodeContext context = utcContext();
  context.isStored = [&stored](const QString& start) { return stored.contains(start); };
  const DecodedDownload decoded = decodeDownload(lines, context);
  QTEST(decoded.batch.runArr, "runArr");
  QTEST(sortedKeys(decoded.batch.lapMD), "laps");
  if (decoded.batch.runArr.isEmpty()) {
    QCOMPARE(decoded.code, code);
  }
}

void tst_downloadDecoder::numbers() {
  DecodeContext context = utcContext();
  context.highestNumber = std::numeric_limits<qint64>::max() - 1;
  context.idNoStr = u"A 01"_s;
  const DecodedDownload decoded = decodeDownload(
      {header("0A"), runLine(1, "0A"), header("0B", "12"), runLine(1, "0B")}, context);
  QCOMPARE(decoded.batch.runMD.value(u"0A"_s).T_Cnumber, std::numeric_limits<qint64>::max());
  QCOMPARE(decoded.batch.lapMD.value(u"0A-00001"_s).T_Cnumber, std::numeric_limits<qint64>::max());
  QCOMPARE(decoded.batch.runMD.value(u"0B"_s).T_Cnumber, std::numeric_limits<qint64>::min());
  QCOMPARE(decoded.batch.runMD.value(u"0B"_s).T_IdNumber, u"A 01"_s);
}

void tst_downloadDecoder::pointsFollowTheIndex_data() {
  QTest::addColumn<QStringList>("runs");
  QTest::addColumn<QStringList>("points");
  QTest::addColumn<QStringList>("expected");  // key=number, in the order of the keys
  const QStringList two{header("0A"), runLine(1, "0A"), header("0B", "12"), runLine(1, "0B")};
  // The last run has no lap, so the last completion is one by a header.
  const QStringList open{header("0A"), runLine(1, "0A"), header("0B", "12")};
  const QString a1 = pointLine(1, "0A");
  const QString b1 = pointLine(1, "0B");
  const QString b2 = pointLine(2, "0B");
  const auto row = [](const char* name, const QStringList& runs, const QStringList& points,
                      const QStringList& expected) {
    QTest::newRow(name) << runs << points << expected;
  };
  row("index", two, {pointLine(0, "01"), b1, b2, pointLine(0, "00"), a1},
      {u"0A-00001=1"_s, u"0B-00001=2"_s, u"0B-00002=2"_s});
  row("key of the line, number of the header", two, {pointLine(0, "00"), b1}, {u"0B-00001=1"_s});
  row("index beyond the list keeps the run", two, {pointLine(0, "00"), pointLine(0, "02"), a1},
      {u"0A-00001=1"_s});
  row("index beyond the list first: the last run header's", two, {pointLine(0, "FF"), a1},
      {u"0A-00001=2"_s});
  row("index beyond the list first, last run header not completed", open, {pointLine(0, "FF"), a1},
      {});
  row("no header, last completion at the end", two, {a1, b1}, {});
  row("no header, last completion at a header", open, {a1, b1}, {u"0A-00001=1"_s, u"0B-00001=1"_s});
  row("later line replaces", two, {pointLine(0, "00"), a1, pointLine(0, "01"), a1},
      {u"0A-00001=2"_s});
  row("points first in the download", {pointLine(0, "01"), b1}, two, {u"0B-00001=2"_s});
}

void tst_downloadDecoder::pointsFollowTheIndex() {
  QFETCH(QStringList, runs);
  QFETCH(QStringList, points);
  const DecodedDownload decoded = decodeDownload(runs + points, utcContext());
  QStringList found;
  for (const QString& key : sortedKeys(decoded.batch.pointMD)) {
    found.append(key + u'=' + QString::number(decoded.batch.pointMD.value(key).T_Cnumber));
  }
  QTEST(found, "expected");
}

void tst_downloadDecoder::coordinates_data() {
  QTest::addColumn<QByteArray>("latitude");  // bytes 15-19
  QTest::addColumn<QByteArray>("longitude");
  QTest::addColumn<QString>("expected");  // texts, signs and numbers
  const auto row = [](const char* name, const char* latitude, const char* longitude,
                      const QString& expected) {
    QTest::newRow(name) << QByteArray(latitude) << QByteArray(longitude) << expected;
  };
  row("thirds round to nearest", "35 00 00 01 4E", "01 39 00 00 02 45",
      u"35°00.0001 N 35.000002 139°00.0002 E 139.000003"_s);
  row("small numbers", "05 09 99 99 53", "00 07 59 99 99 57",
      u"5°09.9999 S 5.166665 7°59.9999 W 7.999998"_s);
  row("minutes beyond sixty", "99 99 99 99 4E", "99 99 99 99 99 45",
      u"99°99.9999 N 100.666665 9999°99.9999 E 10000.666665"_s);
  row("no position fix", "00 00 00 00 30", "00 00 00 00 00 30",
      u"0°00.0000 0 0.000000 0°00.0000 0 0.000000"_s);
  row("hexadecimal letters end a number", "4C 30 00 00 4E", "0A 39 4C 17 56 45",
      u"4°30.0000 N 4.500000 0°4C.1756 E 0.066667"_s);
  row("exponents", "35 41 2E 01 4E", "1E 02 00 00 00 45",
      u"35°41.2E01 N 41.866667 1°00.0000 E 100.000000"_s);
  row("zero and high characters as signs", "00 00 00 00 00", "00 00 00 00 00 E5",
      u"0°00.0000  0.000000 0°00.0000 å 0.000000"_s);
}

void tst_downloadDecoder::coordinates() {
  QFETCH(QByteArray, latitude);
  QFETCH(QByteArray, longitude);
  const DecodedDownload decoded =
      decodeDownload({header("0A"), runLine(1, "0A"), pointLine(0, "00"),
                      pointLine(1, "0A", {{15, latitude}, {20, longitude}})},
                     utcContext());
  const trackPointData point = decoded.batch.pointMD.value(u"0A-00001"_s);
  const QStringList found{point.T_PointLatitude,  point.T_PointLatSign, point.T_PointLatitudeN,
                          point.T_PointLongitude, point.T_PointLogSign, point.T_PointLongitudeN};
  QTEST(found.join(u' '), "expected");
  QVERIFY(!point.T_PointLatSign.isNull());  // a zero character is no absent value
}

void tst_downloadDecoder::oddLines_data() {
  QTest::addColumn<QString>("lap");
  QTest::addColumn<QString>("expected");  // key=distance; empty: line dropped
  const QString good = runLine(1, "0A", {{4, "00 00 03 E8"}});
  QTest::newRow("whole") << good << u"0A-00001=1000"_s;
  QTest::newRow("no blanks") << QString(good).remove(u' ') << u"0A-00001=1000"_s;
  QTest::newRow("many blanks") << u"  "_s + QString(good).replace(u' ', u"   "_s) + u"  "_s
                               << u"0A-00001=1000"_s;
  QTest::newRow("35 pieces are enough") << good.chopped(6) + u" FD"_s << u"0A-00001=1000"_s;
  QTest::newRow("34 pieces") << good.chopped(9) + u" FD"_s << QString();
  QTest::newRow("type behind more pieces") << good + u" 00 11 FD"_s << u"0A-00001=1000"_s;
  QTest::newRow("type at an odd place") << good.chopped(2) + u"0FD"_s << u"0A-00001=1000"_s;
  QTest::newRow("lower case type") << good.chopped(2) + u"fd"_s << QString();
  QTest::newRow("lower case digits")
      << QString(good).replace(u"E8"_s, u"e8"_s) << u"0A-00001=1000"_s;
  QTest::newRow("number ends at another character")
      << QString(good).replace(u"E8"_s, u"EX"_s) << u"0A-00001=62"_s;
  QTest::newRow("number does not begin")
      << QString(good).replace(12, 2, u"-1"_s) << u"0A-00001=0"_s;
  QTest::newRow("beyond Latin-1")
      << QString(good).replace(102, 2, u"走る"_s).replace(12, 2, u"走0"_s) << u"0A-00001=0"_s;
  QTest::newRow("one character") << u"F"_s << QString();
  QTest::newRow("type only") << u"FD"_s << QString();
  QTest::newRow("blanks only") << QString(200, u' ') << QString();
}

void tst_downloadDecoder::oddLines() {
  QFETCH(QString, lap);
  QStringList found;
  const DecodedDownload decoded = decodeDownload({header("0A"), lap}, utcContext());
  for (auto it = decoded.batch.lapMD.cbegin(); it != decoded.batch.lapMD.cend(); ++it) {
    found.append(it.key() + u'=' + it->T_LapDistance);
  }
  QTEST(found.join(u' '), "expected");
}

void tst_downloadDecoder::anyText() {
  const QStringList good{header("0A"),       runLine(1, "0A"),   runLine(2, "0A"),
                         header("0B", "12"), runLine(1, "0B"),   pointLine(0, "00"),
                         pointLine(1, "0A"), pointLine(0, "01"), pointLine(1, "0B")};
  const QString characters = u"0123456789ABCDEFx -+.°走"_s + QChar(0) + QChar(0xD800);
  std::mt19937 random(20140517);
  const auto pick = [&random](qsizetype count) {
    return static_cast<qsizetype>(random() % static_cast<size_t>(count));
  };
  for (int round = 0; round < 3000; ++round) {
    QStringList lines;
    for (qsizetype i = pick(12); i >= 0; --i) {
      QString text = good.at(pick(good.size()));
      for (qsizetype change = pick(8); change > 0; --change) {
        text[pick(text.size())] = characters.at(pick(characters.size()));
      }
      lines.append(pick(10) == 0 ? text.first(pick(text.size())) : text);
    }
    DecodeContext context = utcContext();
    context.checkAlti = static_cast<qint32>(pick(2));
    context.isStored = [&pick](const QString&) { return pick(3) == 0; };
    const DecodedDownload decoded = decodeDownload(lines, context);
    // Points and laps only ever belong to numbers that runs of this download were given.
    for (const trackPointData& point : decoded.batch.pointMD) {
      QVERIFY(point.T_Cnumber >= 1 && point.T_Cnumber <= lines.size());
    }
    for (const QString& key : decoded.batch.runArr) {
      QVERIFY(decoded.batch.runMD.contains(key));
    }
  }
}

void tst_downloadDecoder::isPureIntReadsWholeTexts() {
  for (const QString& text : {u"0"_s, u"12"_s, u"-5"_s, u"+5"_s}) {
    QVERIFY2(isPureInt(text), qPrintable(text));
  }
  for (const QString& text : {QString(), u""_s, u"-"_s, u"A"_s, u"1A"_s, u"1.0"_s, u"٣"_s}) {
    QVERIFY2(!isPureInt(text), qPrintable(text));
  }
  QCOMPARE(getStrArray(u"0A1BF"_s), QStringList({u"0A"_s, u"1B"_s}));
}

QTEST_APPLESS_MAIN(tst_downloadDecoder)
#include "tst_downloadDecoder.moc"

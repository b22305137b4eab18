#include "device/downloadDecoder.h"
#include "tests/columns.h"

#include <QtTest>

#include <array>
#include <limits>

namespace {

/// Texts of bytes by the position of the first of them: {{8, "00 01"}}.
using Pieces = QList<std::pair<int, QByteArray>>;

/// A line of 36 bytes, 00 where nothing is placed.
QString line(const QByteArray& type, int sequence, const QByteArray& key, const Pieces& placed) {
  QByteArray text = QByteArray("00 ").repeated(36).chopped(1);
  const QByteArray number = QByteArray::number(0x10000 + sequence, 16).toUpper();
  const Pieces frame{{32, number.mid(1, 2) + ' ' + number.mid(3)}, {34, key}, {35, type}};
  for (const auto& [byte, part] : frame + placed) {
    text.replace(qsizetype{3} * byte, part.size(), part);
  }
  return text;
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

/// The run of 30 May is stored.
DecodeContext utcContext() {
  DecodeContext context;
  context.isStored = [](const QString& start) { return start == "2014-05-30 07:30:05"; };
  context.zone = QTimeZone::utc();
  return context;
}

/// The completed runs in their order, or the code without any; then the laps with their distances
/// and the points with the numbers of their runs.
QString summary(const DecodedDownload& decoded) {
  const DownloadBatch& batch = decoded.batch;
  QStringList laps;
  for (auto lap = batch.lapMD.cbegin(); lap != batch.lapMD.cend(); ++lap) {
    const QString calories = lap->T_LapCal == "0" ? QString() : '/' + lap->T_LapCal;
    laps << lap.key() + ':' + lap->T_LapDistance + calories;
  }
  QStringList points;
  for (auto point = batch.pointMD.cbegin(); point != batch.pointMD.cend(); ++point) {
    points << point.key() + '=' + QString::number(point->T_Cnumber);
  }
  laps.sort();
  points.sort();
  const QStringList code{QString::number(decoded.code)};
  return ((batch.runArr.isEmpty() ? code : batch.runArr) + laps + points).join(' ');
}

}  // namespace

class tst_downloadDecoder : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void initTestCase() {
    QLoggingCategory::setFilterRules("trakko.*=false");
    // The system's zone is invalid for such a value; local time is not.
    qputenv("TZ", "/usr/share/zoneinfo/Europe/Berlin");
  }

  /// Only the run that the last line completes is logged, as the whole's end.
  void theLastRunIsLogged() {
    static int logged = 0;
    QLoggingCategory::setFilterRules({});
    const auto before =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& text) {
          logged += text == "run ok";
        });
    QStringList lines;
    for (const char* key : {"01", "02", "03"}) {
      lines << runLine(0, key, {}) << runLine(1, key, {});
    }
    decodeDownload(lines, utcContext());
    qInstallMessageHandler(before);
    initTestCase();
    QCOMPARE(logged, 1);
  }

  void wholeDownload() {
    const QStringList lines{
        runLine(0, "0A",
                {{0, "05 1E 07 11 05 0E 00 02 01 02 00 9A B4 50 00 01 05 06"},
                 {18, "52 75 6E E9 00 27 00 78 01 02 04 01 02 03"}}),
        runLine(1, "0A",
                {{0, "01 02 03 04 00 01 86 A0 00 09 27 C0 00 B4 00 78"},
                 {16, "00 00 01 2C 00 02 B4 50 09 08 07 00 04 03 02 01"}}),
        pointLine(0, "00"),
        pointLine(1, "0A",
                  {{0, "40 E2 01 00 02 58 05 1E 07 00 02 EE 01 02 03"},
                   {15, "35 41 23 45 4E 01 39 45 17 56 45 10 27 34 12 00 00"}})};
    // Flag of the watch; run flag, ascent, descent, lap altitude.
    const QStringList without{"1", "0", "0", "0"};
    const QStringList with{"0", "197121", "-263685", "16909060"};
    for (const auto& [checkAlti, altitude] : {std::pair(0, without), {1, with}, {2, without}}) {
      DecodeContext context = utcContext();
      context.checkAlti = checkAlti;
      context.highestNumber = 41;
      context.idNoStr = "A 01";
      const DecodedDownload decoded = decodeDownload(lines, context);
      QCOMPARE(decoded.cnumber, 42);
      QCOMPARE(decoded.batch.runArr, QStringList{"0A"});
      const runData run("2014-05-17 07:30:05", "2014-05-17 08:32:08", "01:02:03.04", "100000",
                        "600000", 1, "258", "154", "180", "120", "80", "09:08:07", 1, "0", "Runé'",
                        QString::number(checkAlti), altitude[0], altitude[1], altitude[2], 42, {},
                        "A 01");
      QVERIFY(decoded.batch.runMD.value("0A") == run);
      const lapData lap("01:02:03.04", "100000", "600000", "Lap 1", 1, "180", "120", "180", "150",
                        "80", "09:08:07", altitude[3], "0", "0", 42);
      QVERIFY(decoded.batch.lapMD == LapDictionary({{"0A-00001", lap}}));
      const trackPointData point("07:30:05", "139°45.1756", "E", "35°41.2345", "N", "139.752927",
                                 "35.687242", "600", "750", "4660", "01:02:03", "123456", "10000",
                                 1, 42);
      QVERIFY(decoded.batch.pointMD == PointDictionary({{"0A-00001", point}}));
    }
  }

  void laps() {
    const Pieces first{{0, "00 05 00 32 00 00 03 E8 00 00 00 64"}, {16, "00 00 03 E8 00 0A"}};
    // Laps; of the last one time, distance, calories, heart rate, time zone, type.
    const QList<std::pair<QList<Pieces>, QString>> rows{
        {{first, {{0, "01 0A 1E 63 00 00 07 D1 00 00 01 2C"}, {16, "10 00 0B B8 00 19"}}},
         "01:05:30.00 1001 200 133 01:05:30 AutoLap 2"},
        // Without new heart rate samples, with fewer than before.
        {{first, {{0, "00 06 00 00 00 00 07 D0 00 00 00 C8"}, {16, "0F 00 0B B8 00 0A"}}},
         "00:01:00.00 1000 100 0 00:01:00 Lap 2"},
        {{first, {{0, "00 06 00"}, {16, "00 00 00 01 00 09"}}},
         "00:01:00.00 -1000 -100 0 00:01:00 Lap 2"},
        // A lap without samples does not move the reference; a falling sum wraps.
        {{first, {{16, "00 00 07 D0 00 0A"}}, {{0, "00 06 00"}, {16, "00 00 0B B8 00 0E"}}},
         "00:06:00.00 0 0 500 00:06:00 Lap 3"},
        {{first, {{0, "00 05 01"}, {16, "00 00 03 E7 00 0B"}}},
         "00:00:01.00 -1000 -100 18446744073709551615 00:00:01 Lap 2"},
        // Counters at zero before, a clock running backwards, hundredths beyond a second.
        {{Pieces{}, {{0, "00 4B 02 07 00 00 07 D0 00 00 00 C8"}, {24, "09 08 07"}}},
         "00:75:02.07 2000 200 0 00:75:02 Lap 2"},
        {{first, {{0, "00 03 3B"}}}, "00:-1:-1.00 -1000 -100 0 00:-1:-1 Lap 2"},
        {{first, {{0, "00 05 01 C8"}}}, "00:00:03.00 -1000 -100 0 00:00:03 Lap 2"}};
    for (const auto& [placed, last] : rows) {
      QStringList lines{header("1F")};
      for (const Pieces& pieces : placed) {
        lines << runLine(static_cast<int>(lines.size()), "1F", pieces);
      }
      const LapDictionary laps = decodeDownload(lines, utcContext()).batch.lapMD;
      const lapData lap = laps.value("1F-0000" + QString::number(placed.size()));
      const QStringList found{lap.T_LapTime,  lap.T_LapDistance, lap.T_LapCal,
                              lap.T_LapAvgHR, lap.T_LapTimeZone, lap.T_LapType};
      QCOMPARE(found.join(' '), last);
      QCOMPARE(lap.T_LapNo, static_cast<qint32>(placed.size()));
      QCOMPARE(laps.size(), placed.size());
    }
  }

  void runEnd() {
    // Zone, bytes 0-5 of the header, 0-2 of the lap, start, end (null: no such date).
    const QList<std::array<const char*, 5>> rows{
        {"Asia/Tokyo", "00 00 17 1F 0C 0D", "01 00 01", "2013-12-31 23:00:00",
         "2014-01-01 00:00:01"},
        {"Europe/Berlin", "00 1E 01 1F 03 18", "01 00 00", "2024-03-31 01:30:00",
         "2024-03-31 03:30:00"},  // clocks go forward
        {"America/New_York", "00 1E 00 03 0B 18", "03 00 00", "2024-11-03 00:30:00",
         "2024-11-03 02:30:00"},  // clocks go back
        {"Europe/Berlin", "00 1E 02 1F 03 18", "01 00 00", "2024-03-31 02:30:00", nullptr},
        {"", "00 1E 01 1F 03 18", "01 00 00", "2024-03-31 01:30:00", "2024-03-31 03:30:00"},
        {"", "00 1E 02 1F 03 18", "01 00 00", "2024-03-31 02:30:00", nullptr},
        {"UTC", "00 00 00 1E 02 0E", "00 00 01", "2014-02-30 00:00:00", nullptr},
        {"UTC", "FF FF FF FF FF FF", "FF FF FF", "20255-255-255 255:255:255", nullptr}};
    for (const auto& [zone, start, elapsed, startText, endText] : rows) {
      DecodeContext context = utcContext();
      context.zone = *zone == '\0' ? QTimeZone() : QTimeZone(zone);
      const QStringList lines{runLine(0, "00", {{0, start}}), runLine(1, "00", {{0, elapsed}})};
      const runData run = decodeDownload(lines, context).batch.runMD.value("00");
      QCOMPARE(run.T_RunStartTime, startText);
      QCOMPARE(run.T_RunEndTime, QString(endText));
      QCOMPARE(run.T_RunEndTime.isNull(), endText == nullptr);
    }
  }

  void whatBelongsTogether_data() {
    // "expected": see summary()
    const auto row = columns<QStringList, QString>("lines", "expected");
    const QString headA = header("0A");
    const QString headB = header("0B", "12");
    const QString lapA = runLine(1, "0A");
    const QString lapB = runLine(1, "0B");
    row("nothing", {}, "-1");
    row("laps before any header", {lapA, lapB}, "88");
    row("only headers complete one another", {headA, headB}, "0A");
    row("header last", {headA}, "88");
    const QString stored = header("0D", "1E");
    row("stored already", {stored, lapA}, "88");
    row("stored run between new ones", {headB, lapB, stored, lapA, header("0C", "13"), lapA},
        "0B 0C 0B-00001:0 0C-00001:0");
    // At the next header the key is that of the line before, at the end that of the header.
    row("foreign key in laps", {headA, runLine(1, "1A"), headB, runLine(1, "1B")},
        "1A 0B 0A-00001:0 0B-00001:0");

    const QString a1 = pointLine(1, "0A");
    const QString b1 = pointLine(1, "0B");
    const auto points = [&](const char* name, const QStringList& lines, const QString& expected) {
      row(name, QStringList{headA, lapA, headB, lapB} + lines,
          ("0A 0B 0A-00001:0 0B-00001:0" + expected).toUtf8());
    };
    points("index",
           {pointLine(0, "01"), b1, pointLine(0, "00"), a1, pointLine(0, "01"), pointLine(2, "0B")},
           " 0A-00001=1 0B-00001=2 0B-00002=2");
    points("key of the line, number of the header", {pointLine(0, "00"), b1}, " 0B-00001=1");
    points("index beyond the list keeps the run", {pointLine(0, "00"), pointLine(0, "02"), a1},
           " 0A-00001=1");
    points("index beyond the list first: the last run", {pointLine(0, "FF"), a1}, " 0A-00001=2");
    points("no header, last completion at the end", {a1, b1}, "");
    // The last run has no lap, so the last completion is one by a header.
    row("no header, last completion at a header", {headA, lapA, headB, a1, b1},
        "0A 0A-00001:0 0A-00001=1 0B-00001=1");

    row("counters begin anew with each run",
        {headA, runLine(1, "0A", {{4, "00 00 03 E8 00 00 00 64"}}), headB,
         runLine(1, "0B", {{4, "00 00 03 E9 00 00 00 65"}})},
        "0A 0B 0A-00001:1000/100 0B-00001:1001/101");

    const QString good = runLine(1, "0A", {{4, "00 00 03 E8"}});
    const auto lap = [&](const char* name, const QString& text, const char* distance) {
      row(name, {headA, text}, distance ? QByteArray("0A 0A-00001:").append(distance) : "88");
    };
    lap("many blanks", "  " + QString(good).replace(' ', "   ") + "  ", "1000");
    lap("35 pieces are enough", good.chopped(6) + " FD", "1000");
    lap("34 pieces", good.chopped(9) + " FD", nullptr);
    lap("type behind more pieces", good + " 00 11 FD", "1000");
    lap("type at an odd place", good.chopped(2) + "0FD", "1000");
    lap("number ends at another character", QString(good).replace("E8", "EX"), "62");
    lap("beyond Latin-1", QString(good).replace(12, 2, "走0"), "0");
  }
  void whatBelongsTogether() {
    QFETCH(QStringList, lines);
    QTEST(summary(decodeDownload(lines, utcContext())), "expected");
  }

  void coordinates() {
    // Bytes 15-19, 20-25; texts, signs and numbers.
    const QList<std::array<const char*, 3>> rows{
        {"35 00 00 01 4E", "01 39 00 00 02 45",  // thirds round to nearest
         "35°00.0001 N 35.000002 139°00.0002 E 139.000003"},
        {"05 09 99 99 53", "00 07 59 99 99 57", "5°09.9999 S 5.166665 7°59.9999 W 7.999998"},
        {"99 99 99 99 4E", "99 99 99 99 99 45",
         "99°99.9999 N 100.666665 9999°99.9999 E 10000.666665"},
        {"00 00 00 00 30", "00 00 00 00 00 30",  // no position fix
         "0°00.0000 0 0.000000 0°00.0000 0 0.000000"},
        {"4C 30 00 00 4E", "0A 39 4C 17 56 45",  // letters end a number
         "4°30.0000 N 4.500000 0°4C.1756 E 0.066667"},
        {"35 41 2E 01 4E", "1E 02 00 00 00 45",  // read as exponents
         "35°41.2E01 N 41.866667 1°00.0000 E 100.000000"},
        {"00 00 00 00 00", "00 00 00 00 00 E5", "0°00.0000  0.000000 0°00.0000 å 0.000000"}};
    for (const auto& [latitude, longitude, expected] : rows) {
      const QStringList lines{header("0A"), runLine(1, "0A"), pointLine(0, "00"),
                              pointLine(1, "0A", {{15, latitude}, {20, longitude}})};
      const trackPointData point =
          decodeDownload(lines, utcContext()).batch.pointMD.value("0A-00001");
      const QStringList found{point.T_PointLatitude,  point.T_PointLatSign,
                              point.T_PointLatitudeN, point.T_PointLongitude,
                              point.T_PointLogSign,   point.T_PointLongitudeN};
      QCOMPARE(found.join(' '), expected);
      QVERIFY(!point.T_PointLatSign.isNull());  // a zero character is no absent value
    }
  }
};

QTEST_APPLESS_MAIN(tst_downloadDecoder)
#include "tst_downloadDecoder.moc"

#include "base/text.h"
#include "tests/columns.h"

#include <QtTest>

#include <clocale>
#include <cmath>
#include <limits>
#include <random>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 most = std::numeric_limits<qint64>::max();
constexpr qint64 least = std::numeric_limits<qint64>::min();

}  // namespace

class tst_text : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  // Numbers must not follow the user's locale; this one has decimal commas where it is installed.
  static void initTestCase() { std::setlocale(LC_ALL, "de_DE.UTF-8"); }

  static void numbers_data() {
    const auto row = columns<qint64, double>("integer", "decimal");
    row({}, 0, 0.0);
    row(" \t+12.5km", 12, 12.5);
    row("-7.25", -7, -7.25);
    for (const char* none : {"--7", "+-7", "-", ".e5", "nan", "-inf", "\uff11\u0661"}) {
      row(none, 0, 0.0);
    }
    row("4C.1", 4, 4.0);
    row(".5", 0, 0.5);
    row("5.", 5, 5.0);
    row("1,5", 1, 1.0);
    row("1E05", 1, 100000.0);
    row("25e-1x", 25, 2.5);
    row("3e+", 3, 3.0);
    row("0x1F", 0, 0.0);
    row("9223372036854775807", most, 9223372036854775807.0);
    row("9223372036854775808", most, 9223372036854775808.0);
    row("-99999999999999999999", least, -1e20);
    row("-1e999", -1, -INFINITY);
    row("1e-999", 1, 0.0);
    row("0." + QByteArray(400, '3'), 0, 1.0 / 3.0);
  }
  static void numbers() {
    QFETCH(const qint64, integer);
    const QString value = QString::fromUtf8(QTest::currentDataTag());
    constexpr qint64 most32 = std::numeric_limits<qint32>::max();
    QCOMPARE(text::toInteger(value), integer);
    QCOMPARE(qint64{text::toInt32(value)}, std::clamp(integer, -most32 - 1, most32));
    QFETCH(const double, decimal);
    QVERIFY(text::toDouble(value) == decimal);
  }

  static void fixedAsPrintf() {
    std::setlocale(LC_NUMERIC, "C");
    std::mt19937_64 random(4);
    std::vector<double> values{0.0,    -0.0, 0.5,     2.5,      0.0005,    1e23, 1e300,
                               -1e308, 1e15, 99.9995, INFINITY, -INFINITY, NAN,  5e-324};
    for (int i = 0; i < 2000; ++i) {
      values.push_back(std::ldexp(static_cast<double>(random() >> 11), i % 200 - 120));
    }
    std::array<char, 512> printed{};
    for (const double value : values) {
      for (const int decimals : {0, 2, 3, 6, 20}) {
        std::snprintf(printed.data(), printed.size(), "%.*f", decimals, value);
        QCOMPARE(text::fixed(value, decimals), printed.data());
      }
    }
  }

  static void shown() {
    QByteArray out("x");
    for (const QString& value : {QString(), u""_s, u"a'b"_s, QString(u"A\0\0B"_s), u"35\u00b0"_s,
                                 QString(u"\u6771\0\u4eac"_s)}) {
      text::appendShown(out, value);
      out.append('|');
    }
    text::appendNumber(out, least);
    QCOMPARE(out, "x(null)||a'b|AB|35\u00b0|\u6771\u4eac|-9223372036854775808");
  }
};

QTEST_GUILESS_MAIN(tst_text)
#include "tst_text.moc"

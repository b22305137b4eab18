#include "data/text.h"

#include <QtTest>
#include <clocale>
#include <cmath>
#include <limits>
#include <random>

using namespace Qt::StringLiterals;

class TextTest : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  // Numbers must not follow the user's locale; this one has decimal commas where it is installed.
  static void initTestCase() { std::setlocale(LC_ALL, "de_DE.UTF-8"); }
  static void numbers_data();
  static void numbers();
  static void fixedAsPrintf();
  static void padded();
  static void shown();
};

void TextTest::numbers_data() {
  QTest::addColumn<QString>("value");
  QTest::addColumn<qint64>("integer");
  QTest::addColumn<double>("decimal");
  constexpr qint64 most = std::numeric_limits<qint64>::max();
  constexpr qint64 least = std::numeric_limits<qint64>::min();
  constexpr double infinite = std::numeric_limits<double>::infinity();

  QTest::newRow("absent") << QString() << qint64{0} << 0.0;
  QTest::newRow("empty") << u""_s << qint64{0} << 0.0;
  QTest::newRow("blanks and signs") << u" \t+12.5km"_s << qint64{12} << 12.5;
  QTest::newRow("negative") << u"-7.25"_s << qint64{-7} << -7.25;
  QTest::newRow("two signs") << u"--7"_s << qint64{0} << 0.0;
  QTest::newRow("sign alone") << u"-"_s << qint64{0} << 0.0;
  QTest::newRow("letters behind") << u"4C.1"_s << qint64{4} << 4.0;
  QTest::newRow("no digit before the point") << u".5"_s << qint64{0} << 0.5;
  QTest::newRow("no digit behind the point") << u"5."_s << qint64{5} << 5.0;
  QTest::newRow("point alone") << u".e5"_s << qint64{0} << 0.0;
  QTest::newRow("comma") << u"1,5"_s << qint64{1} << 1.0;
  QTest::newRow("exponent") << u"1E05"_s << qint64{1} << 100000.0;
  QTest::newRow("signed exponent") << u"25e-1x"_s << qint64{25} << 2.5;
  QTest::newRow("incomplete exponent") << u"3e+"_s << qint64{3} << 3.0;
  QTest::newRow("no number words") << u"nan"_s << qint64{0} << 0.0;
  QTest::newRow("infinity word") << u"-inf"_s << qint64{0} << 0.0;
  QTest::newRow("hexadecimal") << u"0x1F"_s << qint64{0} << 0.0;
  QTest::newRow("other digits") << u"\uff11\u0661"_s << qint64{0} << 0.0;
  QTest::newRow("most") << u"9223372036854775807"_s << most << 9223372036854775807.0;
  QTest::newRow("more") << u"9223372036854775808"_s << most << 9223372036854775808.0;
  QTest::newRow("least") << u"-9223372036854775808"_s << least << -9223372036854775808.0;
  QTest::newRow("less") << u"-99999999999999999999"_s << least << -1e20;
  QTest::newRow("too large") << u"-1e999"_s << qint64{-1} << -infinite;
  QTest::newRow("too small") << u"1e-999"_s << qint64{1} << 0.0;
  QTest::newRow("long") << u"0."_s + QString(400, u'3') << qint64{0} << 1.0 / 3.0;
}

void TextTest::numbers() {
  QFETCH(const QString, value);
  QFETCH(const qint64, integer);
  QTEST(text::toInteger(value), "integer");
  QCOMPARE(text::toInt32(value),
           static_cast<qint32>(std::clamp<qint64>(integer, std::numeric_limits<qint32>::min(),
                                                  std::numeric_limits<qint32>::max())));
  QFETCH(const double, decimal);
  QVERIFY2(text::toDouble(value) == decimal, qPrintable(QString::number(text::toDouble(value))));
}

void TextTest::fixedAsPrintf() {
  std::setlocale(LC_NUMERIC, "C");
  std::mt19937_64 random(4);
  std::vector<double> values{0.0,   -0.0,   0.5,    2.5,  0.0005, 1e23,
                             1e300, -1e308, 5e-324, 1e15, 99.9995};
  values.insert(values.end(), {std::numeric_limits<double>::max(), INFINITY, -INFINITY, NAN});
  for (int i = 0; i < 2000; ++i) {
    values.push_back(
        std::ldexp(static_cast<double>(random() >> 11), static_cast<int>(i % 200) - 120));
  }
  for (const double value : values) {
    for (const int decimals : {0, 2, 3, 6, 20}) {
      std::array<char, 512> printed{};
      std::snprintf(printed.data(), printed.size(), "%.*f", decimals, value);
      QCOMPARE(text::fixed(value, decimals), QString::fromLatin1(printed.data()));
    }
  }
}

void TextTest::padded() {
  for (const qint64 value : {0LL, 7LL, -7LL, 123456LL, std::numeric_limits<qint64>::min() + 0LL}) {
    for (const int width : {0, 2, 5}) {
      QCOMPARE(text::padded(value, width), QString::asprintf("%0*lld", width, value));
    }
  }
}

void TextTest::shown() {
  QByteArray out("x");
  for (const QString& value :
       {QString(), u""_s, u"a'b"_s, QString(u"A\0\0B"_s), u"35\u00b0"_s, u"\u6771\0\u4eac"_s}) {
    text::appendShown(out, value);
    out.append('|');
  }
  text::appendNumber(out, std::numeric_limits<qint64>::min());
  QCOMPARE(QString::fromUtf8(out), u"x(null)||a'b|AB|35\u00b0|\u6771\u4eac|-9223372036854775808"_s);
}

QTEST_GUILESS_MAIN(TextTest)
#include "tst_text.moc"

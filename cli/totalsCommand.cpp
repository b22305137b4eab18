#include "base/text.h"
#include "cli/command.h"
#include "cli/options.h"
#include "stats/totals.h"

#include <QJsonArray>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace {

totals::Period periodOf(const QString& name) {
  if (name == u"week") {
    return totals::Period::week;
  }
  if (name == u"month") {
    return totals::Period::month;
  }
  if (name == u"year") {
    return totals::Period::year;
  }
  throw UsageError{u"--by: week、month、year のいずれかを指定して下さい: %1"_s.arg(name)};
}

QStringList rowOf(const totals::Totals& sum, totals::Period period) {
  return {totals::nameOf(sum.first, period),
          QString::number(sum.runs),
          text::fixed(sum.kilometres, 3),
          sum.time(),
          sum.averagePace(),
          text::fixed(sum.longest, 3)};
}

QJsonValue dayValue(QDate day) {
  return day.isValid() ? QJsonValue(day.toString(Qt::ISODate)) : QJsonValue();
}

QJsonObject objectOf(const totals::Totals& sum, totals::Period period) {
  const QDate last = sum.first.isValid() ? totals::lastDay(sum.first, period) : QDate();
  return {{u"from"_s, dayValue(sum.first)},
          {u"to"_s, dayValue(last)},
          {u"runs"_s, sum.runs},
          {u"distanceKm"_s, sum.kilometres},
          {u"seconds"_s, sum.seconds},
          {u"averagePace"_s, sum.averagePace()},
          {u"longestKm"_s, sum.longest}};
}

class TotalsCommand : public Command {
 public:
  QString name() const override { return u"totals"_s; }
  QString summary() const override { return u"週、月、年ごとの集計を新しい順に表示します。"_s; }
  Needs needs() const override { return Needs::toRead; }

  void declare(QCommandLineParser& parser) const override {
    parser.addOption({u"by"_s, u"集計の単位: week、month、year。"_s, u"PERIOD"_s});
  }

  ExitCode run(const QCommandLineParser& parser, Output& output) const override {
    options::noArguments(parser);
    const totals::Period period = periodOf(parser.value(u"by"_s));
    dataControl store;
    const RunDictionary runs = store.getRunData(u"All"_s, u""_s);
    options::requireAnswer(store);
    const totals::Table table = totals::count(runs, store.runKeyArray, period);
    if (parser.isSet(u"json"_s)) {
      QJsonArray periods;
      for (const totals::Totals& sum : table.periods) {
        periods.append(objectOf(sum, period));
      }
      output.json(QJsonDocument(
          QJsonObject{{u"periods"_s, periods}, {u"all"_s, objectOf(table.all, period)}}));
      return ExitCode::done;
    }
    output.row(
        {u"期間"_s, u"ラン"_s, u"距離 (km)"_s, u"時間"_s, u"平均ペース (/km)"_s, u"最長 (km)"_s});
    for (const totals::Totals& sum : table.periods) {
      output.row(rowOf(sum, period));
    }
    output.row(rowOf(table.all, period));
    return ExitCode::done;
  }
};

}  // namespace

std::unique_ptr<Command> makeTotalsCommand() {
  return std::make_unique<TotalsCommand>();
}

#include "cli/command.h"
#include "cli/options.h"
#include "cli/runFields.h"

#include <QJsonArray>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/// A run with its laps and, where they are asked for, its points.
struct WholeRun {
  runData run;
  QList<lapData> laps;
  QList<trackPointData> points;
};

/// The records of a dictionary by ascending `number`.
template <typename Record, typename Number>
QList<Record> inOrder(const QHash<QString, Record>& records, Number Record::*number) {
  QList<Record> list = records.values();
  std::stable_sort(list.begin(), list.end(),
                   [number](const Record& a, const Record& b) { return a.*number < b.*number; });
  return list;
}

void printJson(const WholeRun& whole, bool withPoints, Output& output) {
  QJsonObject object = runObject(whole.run);
  QJsonArray laps;
  for (const lapData& lap : whole.laps) {
    laps.append(lapObject(lap));
  }
  object.insert(u"lapList"_s, laps);
  if (withPoints) {
    QJsonArray points;
    for (const trackPointData& point : whole.points) {
      points.append(pointObject(point));
    }
    object.insert(u"pointList"_s, points);
  }
  output.json(QJsonDocument(object));
}

void printSummary(const WholeRun& whole, Output& output) {
  const QStringList titles = runTitles();
  const QStringList values = runRow(whole.run);
  for (qsizetype i = 0; i < titles.size(); ++i) {
    output.row({titles.at(i), values.at(i)});
  }
  output.row({u"平均心拍"_s, whole.run.T_RunAvgHR});
  output.row({u"最大心拍"_s, whole.run.T_RunMaxHR});
  output.row({});
  output.row(lapTitles());
  for (const lapData& lap : whole.laps) {
    output.row(lapRow(lap));
  }
}

void printPoints(const WholeRun& whole, Output& output) {
  output.csvRow(pointTitles());
  for (const trackPointData& point : whole.points) {
    output.csvRow(pointRow(point));
  }
}

class ShowCommand : public Command {
 public:
  QString name() const override { return u"show"_s; }
  QString summary() const override { return u"1件のランの概要とラップを表示します。"_s; }
  Needs needs() const override { return Needs::toRead; }

  void declare(QCommandLineParser& parser) const override {
    parser.addPositionalArgument(u"RUN"_s, u"ランの番号 (list の1列目)。"_s);
    parser.addOption(
        {u"points"_s, u"トラックポイントをすべて CSV で表示します (--json と併用できます)。"_s});
  }

  ExitCode run(const QCommandLineParser& parser, Output& output) const override {
    const bool withPoints = parser.isSet(u"points"_s);
    const qint32 number =
        options::runNumber(options::singleArgument(parser, u"ランの番号を指定して下さい。"_s));
    dataControl store;
    WholeRun whole;
    whole.run = options::storedRun(store, number);
    whole.laps = inOrder(store.getLapData(number), &lapData::T_LapNo);
    if (withPoints) {
      whole.points = inOrder(store.getTrackData(number), &trackPointData::T_Setid);
    }
    options::requireAnswer(store);
    if (parser.isSet(u"json"_s)) {
      printJson(whole, withPoints, output);
    } else if (withPoints) {
      printPoints(whole, output);
    } else {
      printSummary(whole, output);
    }
    return ExitCode::done;
  }
};

}  // namespace

std::unique_ptr<Command> makeShowCommand() {
  return std::make_unique<ShowCommand>();
}

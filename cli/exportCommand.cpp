#include "cli/command.h"
#include "cli/options.h"
#include "export/exportMany.h"
#include "export/exportWords.h"
#include "export/fileWriter.h"
#include "export/offsetText.h"
#include "export/runExport.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace {

const QString standardOutput = u"-"_s;

/// What the arguments ask for.
struct Request {
  ExportFormat format = ExportFormat::Tcx;
  QList<qint64> numbers;   ///< Runs named one by one.
  bool all = false;        ///< Every run,
  options::Period period;  ///< or those of a period.
  QString folder;          ///< A file for each run in this folder,
  QString file;            ///< or one run in this file; "-" for standard output.
  bool force = false;

  bool hasPeriod() const { return !period.from.isEmpty() || !period.to.isEmpty(); }
};

ExportFormat formatOf(const QString& name) {
  if (name.toLower() == u"gpx") {
    return ExportFormat::Gpx;
  }
  if (name.toLower() == u"tcx") {
    return ExportFormat::Tcx;
  }
  throw UsageError{u"--format: gpx か tcx を指定して下さい: %1"_s.arg(name)};
}

/// --to stands for the last day of the period and for the folder: what reads as a day is the day.
void readTo(const QStringList& values, Request& request) {
  for (const QString& value : values) {
    QString& place = options::isDay(value) ? request.period.to : request.folder;
    if (!place.isEmpty()) {
      throw UsageError{u"--to が多すぎます: %1"_s.arg(value)};
    }
    place = value;
  }
}

void readArguments(const QStringList& arguments, Request& request) {
  for (const QString& argument : arguments) {
    if (argument == standardOutput) {
      request.file = standardOutput;
    } else {
      request.numbers.append(options::runNumber(argument));
    }
  }
}

void check(const Request& request) {
  const int selections =
      int{!request.numbers.isEmpty()} + int{request.all} + int{request.hasPeriod()};
  if (selections != 1) {
    throw UsageError{
        u"ランの番号、--all、--from/--to のどれか一つで書き出すランを指定して下さい。"_s};
  }
  if (request.folder.isEmpty() == request.file.isEmpty()) {
    throw UsageError{u"--to フォルダ、--output ファイル、- のどれか一つを指定して下さい。"_s};
  }
  if (!request.file.isEmpty() && request.numbers.size() != 1) {
    throw UsageError{u"一つのファイルには1件のランだけを書き出せます。"_s};
  }
}

Request requestOf(const QCommandLineParser& parser) {
  Request request;
  request.format = formatOf(parser.value(u"format"_s));
  request.all = parser.isSet(u"all"_s);
  request.force = parser.isSet(u"force"_s);
  request.period.from = parser.value(u"from"_s);
  if (parser.isSet(u"from"_s) && !options::isDay(request.period.from)) {
    throw UsageError{
        u"--from: 日付を yyyy-MM-dd の形で指定して下さい: %1"_s.arg(request.period.from)};
  }
  readTo(parser.values(u"to"_s), request);
  readArguments(parser.positionalArguments(), request);
  if (parser.isSet(u"output"_s)) {
    if (!request.file.isEmpty()) {
      throw UsageError{u"--output と - は同時に指定できません。"_s};
    }
    request.file = parser.value(u"output"_s);
  }
  check(request);
  return request;
}

Failure failure(const QString& reason) {
  return Failure{ExitCode::failed, reason};
}

void writeOne(const Request& request, Output& output) {
  const qint64 number = request.numbers.first();
  dataControl store;
  const RunDocument document =
      exportRun(readRun(store, number, request.format), request.format, offsetNow());
  if (document.failure != ExportFailure::None) {
    throw failure(u"ラン %1: %2"_s.arg(number).arg(exportWords::reason(document.failure)));
  }
  if (request.file == standardOutput) {
    output.bytes(document.bytes);
    return;
  }
  if (!request.force && QFileInfo::exists(request.file)) {
    throw failure(
        u"「%1」は既にあります。置き換えるには --force を付けて下さい。"_s.arg(request.file));
  }
  if (!writeFileAtomically(request.file, document.bytes)) {
    throw failure(u"「%1」に保存できませんでした。"_s.arg(request.file));
  }
  output.message(u"「%1」に保存しました。"_s.arg(request.file));
}

QList<qint64> selectedRuns(const Request& request) {
  if (!request.numbers.isEmpty()) {
    return request.numbers;
  }
  dataControl store;
  const RunDictionary runs = options::runsOf(request.period, store);
  options::requireAnswer(store);
  QList<qint64> numbers;
  for (const QString& key : std::as_const(store.runKeyArray)) {
    numbers.append(runs.value(key).T_Cnumber);
  }
  return numbers;
}

void requireFolder(const QString& path) {
  const QFileInfo folder(path);
  if (!folder.exists()) {
    throw failure(u"フォルダ「%1」がありません。"_s.arg(path));
  }
  if (!folder.isDir()) {
    throw failure(u"「%1」はフォルダではありません。"_s.arg(path));
  }
  if (!folder.isWritable()) {
    throw failure(u"フォルダ「%1」に書き込めません。"_s.arg(path));
  }
}

QJsonObject objectOf(const ManyRunsResult& result) {
  QJsonArray failed;
  for (const auto& [number, reason] : result.failed) {
    failed.append(QJsonObject{{u"number"_s, number}, {u"reason"_s, exportWords::reason(reason)}});
  }
  return {{u"written"_s, result.written}, {u"skipped"_s, result.skipped}, {u"failed"_s, failed}};
}

ExitCode writeMany(const Request& request, bool json, Output& output) {
  requireFolder(request.folder);
  const ManyRuns runs{selectedRuns(request), request.format, request.folder, request.force};
  const ManyRunsResult result = exportMany(runs, offsetNow(), [&](qsizetype done) {
    output.progress(u"書き出しています... %1/%2"_s.arg(done).arg(runs.numbers.size()));
    return true;
  });
  if (json) {
    output.json(QJsonDocument(objectOf(result)));
  }
  output.message(exportWords::ending(result));
  return result.failed.isEmpty() && !result.brokenOff ? ExitCode::done : ExitCode::failed;
}

class ExportCommand : public Command {
 public:
  QString name() const override { return u"export"_s; }
  QString summary() const override { return u"ランを GPX または TCX ファイルに書き出します。"_s; }
  Needs needs() const override { return Needs::toRead; }

  void declare(QCommandLineParser& parser) const override {
    parser.addPositionalArgument(
        u"RUN"_s, u"ランの番号。「-」は1件のランを標準出力に書き出します。"_s, u"[RUN...] [-]"_s);
    parser.addOptions(
        {{u"all"_s, u"すべてのラン。"_s},
         {u"from"_s, u"この日以降のラン (yyyy-MM-dd)。"_s, u"DAY"_s},
         {u"to"_s, u"この日までのラン (yyyy-MM-dd)、または書き出し先のフォルダ。"_s, u"DAY|DIR"_s},
         {u"format"_s, u"gpx または tcx。"_s, u"FORMAT"_s},
         {u"output"_s, u"1件のランの書き出し先のファイル。"_s, u"FILE"_s},
         {u"force"_s, u"同じ名前のファイルを置き換えます。"_s}});
  }

  ExitCode run(const QCommandLineParser& parser, Output& output) const override {
    const Request request = requestOf(parser);
    if (!request.folder.isEmpty()) {
      return writeMany(request, parser.isSet(u"json"_s), output);
    }
    writeOne(request, output);
    return ExitCode::done;
  }
};

}  // namespace

std::unique_ptr<Command> makeExportCommand() {
  return std::make_unique<ExportCommand>();
}

#include "cli/options.h"

#include "base/text.h"
#include "cli/command.h"

#include <QDate>

using namespace Qt::StringLiterals;

namespace options {

void addPeriod(QCommandLineParser& parser) {
  parser.addOptions({{u"from"_s, u"この日以降のラン (yyyy-MM-dd)。"_s, u"DAY"_s},
                     {u"to"_s, u"この日までのラン (yyyy-MM-dd)。"_s, u"DAY"_s}});
}

bool isDay(const QString& text) {
  return QDate::fromString(text, u"yyyy-MM-dd"_s).isValid();
}

Period periodOf(const QCommandLineParser& parser) {
  for (const QString& option : {u"from"_s, u"to"_s}) {
    if (parser.isSet(option) && !isDay(parser.value(option))) {
      throw UsageError{
          u"--%1: 日付を yyyy-MM-dd の形で指定して下さい: %2"_s.arg(option, parser.value(option))};
    }
  }
  return {parser.value(u"from"_s), parser.value(u"to"_s)};
}

RunDictionary runsOf(const Period& period, dataControl& store) {
  if (period.from.isEmpty() && period.to.isEmpty()) {
    return store.getRunData(u"All"_s, u""_s);
  }
  return store.getRunData((period.from.isEmpty() ? u"0000-01-01"_s : period.from) + u" 00:00:00"_s,
                          (period.to.isEmpty() ? u"9999-12-31"_s : period.to) + u" 23:59:59"_s);
}

void requireAnswer(const dataControl& store) {
  if (store.queryFailed) {
    throw Failure{ExitCode::failed, u"データベースを読めません。壊れているか、使用中です。"_s};
  }
}

qint32 runNumber(const QString& argument) {
  bool isNumber = false;
  const qint32 number = argument.toInt(&isNumber);
  if (!isNumber || number < 1) {
    throw UsageError{u"ランの番号ではありません: %1"_s.arg(argument)};
  }
  return number;
}

runData storedRun(dataControl& store, qint32 number) {
  const RunDictionary runs = store.getRunData(u"All"_s, u""_s);
  requireAnswer(store);
  const auto run = runs.constFind(text::padded(number, 2));
  if (run == runs.constEnd()) {
    throw Failure{ExitCode::failed, u"番号 %1 のランはありません。"_s.arg(number)};
  }
  return *run;
}

void noArguments(const QCommandLineParser& parser) {
  if (!parser.positionalArguments().isEmpty()) {
    throw UsageError{u"引数が多すぎます: %1"_s.arg(parser.positionalArguments().first())};
  }
}

QString singleArgument(const QCommandLineParser& parser, const QString& missing) {
  const QStringList arguments = parser.positionalArguments();
  if (arguments.isEmpty()) {
    throw UsageError{missing};
  }
  if (arguments.size() > 1) {
    throw UsageError{u"引数が多すぎます: %1"_s.arg(arguments.at(1))};
  }
  return arguments.first();
}

}  // namespace options

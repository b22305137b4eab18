#include "cli/command.h"
#include "cli/dataFolder.h"
#include "cli/session.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLoggingCategory>
#include <QTranslator>

#include <algorithm>
#include <csignal>
#include <cstdlib>

using namespace Qt::StringLiterals;

namespace {

const QString programName = u"trakko-cli"_s;

void printHelp(const Commands& commands, Output& output) {
  output.bytes((u"使い方: %1 コマンド [オプション] [引数]\n\n"_s.arg(programName) +
                u"GPSランニングウォッチのランを、ウィンドウなしで扱います。\n\nコマンド:\n"_s)
                   .toUtf8());
  for (const auto& command : commands) {
    output.bytes(
        (u"  "_s + command->name().leftJustified(10) + command->summary() + u'\n').toUtf8());
  }
  output.bytes((u"\n各コマンドの説明: %1 コマンド --help\n"_s.arg(programName) +
                u"終了コード: 0 完了、1 失敗、2 使い方の誤り、3 時計がない、"
                u"4 データベースが使用中\n"_s)
                   .toUtf8());
}

void addCommonOptions(QCommandLineParser& parser) {
  parser.addOptions(
      {{{u"h"_s, u"help"_s}, u"この説明を表示します。"_s},
       {u"data"_s, u"データのフォルダ (標準: %1)。"_s.arg(defaultDataFolder()), u"DIR"_s},
       {u"json"_s, u"結果を JSON で表示します。"_s}});
}

ExitCode runCommand(const Command& command, const QStringList& arguments, Output& output) {
  QCommandLineParser parser;
  parser.setApplicationDescription(command.summary());
  addCommonOptions(parser);
  command.declare(parser);
  if (!parser.parse(arguments)) {
    throw UsageError{parser.errorText()};
  }
  if (parser.isSet(u"help"_s)) {
    // The parser knows the program only by the name it was started with.
    output.bytes(parser.helpText()
                     .replace(QCoreApplication::arguments().constFirst(), arguments.constFirst())
                     .toUtf8());
    return ExitCode::done;
  }
  setDataFolder(parser.isSet(u"data"_s) ? parser.value(u"data"_s) : defaultDataFolder());
  const Session session(command.needs());
  return command.run(parser, output);
}

/// The first argument is the command; the parser takes its name for the program's.
ExitCode dispatch(QStringList arguments, Output& output) {
  const Commands commands = allCommands();
  const QString first = arguments.value(1);
  if (first.isEmpty() || first == u"--help" || first == u"-h" || first == u"help") {
    printHelp(commands, output);
    return first.isEmpty() ? ExitCode::wrongUsage : ExitCode::done;
  }
  if (first == u"--version" || first == u"-v") {
    output.row({programName + u' ' + QCoreApplication::applicationVersion()});
    return ExitCode::done;
  }
  const auto command = std::find_if(commands.begin(), commands.end(),
                                    [&](const auto& known) { return known->name() == first; });
  if (command == commands.end()) {
    throw UsageError{u"コマンドがありません: %1"_s.arg(first)};
  }
  arguments.removeFirst();
  arguments.first() = programName + u' ' + first;
  return runCommand(**command, arguments, output);
}

ExitCode guarded(const QStringList& arguments, Output& output) {
  try {
    return dispatch(arguments, output);
  } catch (const UsageError& error) {
    output.message(error.reason);
    output.message(u"説明: %1 --help"_s.arg(programName));
    return ExitCode::wrongUsage;
  } catch (const Failure& failure) {
    output.message(failure.reason);
    return failure.code;
  } catch (const std::exception& error) {
    output.message(u"中断しました: %1"_s.arg(QString::fromLocal8Bit(error.what())));
    return ExitCode::failed;
  }
}

}  // namespace

int main(int argc, char* argv[]) {
  std::signal(SIGPIPE, SIG_IGN);  // a closed pipe is told in words
  QCoreApplication application(argc, argv);
  QCoreApplication::setApplicationName(programName);
  QCoreApplication::setApplicationVersion(QStringLiteral(TRAKKO_VERSION));
  QTranslator translator;
  if (translator.load(u"qtbase_ja"_s, QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
    QCoreApplication::installTranslator(&translator);
  }
  // Standard error is for the user; QT_LOGGING_RULES brings the log back.
  QLoggingCategory::setFilterRules(u"trakko.*.info=false\ntrakko.*.warning=false"_s);
  Output output;
  const ExitCode code = output.finish(guarded(QCoreApplication::arguments(), output));
  // As in the window, what still runs in a thread ends with the process.
  std::_Exit(static_cast<int>(code));
}

// backup, restore and replay: the commands on the database as a whole.

#include "cli/command.h"
#include "cli/options.h"
#include "data/bundle.h"
#include "data/databaseFile.h"
#include "data/databaseWords.h"
#include "device/downloadWords.h"
#include "device/replay.h"

#include <QFileInfo>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace {

QString fileArgument(const QCommandLineParser& parser) {
  return QFileInfo(options::singleArgument(parser, u"ファイルを指定して下さい。"_s))
      .absoluteFilePath();
}

/// Throws what became of a copy that failed.
void require(const databaseFile::Result& result, const QString& failed) {
  if (result) {
    return;
  }
  const bool busy = result.failure == databaseFile::Failure::busy;
  throw Failure{busy ? ExitCode::databaseBusy : ExitCode::failed,
                failed + u"："_s + databaseWords::reason(result.failure)};
}

databaseFile::Watcher percentOf(const QString& work, Output& output) {
  return [work, &output](int percent) { output.progress(u"%1 %2%"_s.arg(work).arg(percent)); };
}

void tellPath(const QCommandLineParser& parser, const QString& path, Output& output) {
  if (parser.isSet(u"json"_s)) {
    output.json(QJsonDocument(QJsonObject{{u"file"_s, path}}));
  }
}

class BackupCommand : public Command {
 public:
  QString name() const override { return u"backup"_s; }
  QString summary() const override { return u"データベースを新しいファイルに複写します。"_s; }
  Needs needs() const override { return Needs::toRead; }
  void declare(QCommandLineParser& parser) const override {
    parser.addPositionalArgument(u"FILE"_s,
                                 u"バックアップ先。既にあるファイルは置き換えません。"_s);
  }

  ExitCode run(const QCommandLineParser& parser, Output& output) const override {
    const QString path = fileArgument(parser);
    require(databaseFile::backUp(databasePath(mainBundle()), path,
                                 percentOf(u"バックアップしています..."_s, output)),
            u"バックアップできませんでした"_s);
    tellPath(parser, path, output);
    output.message(u"「%1」にバックアップしました。"_s.arg(path));
    return ExitCode::done;
  }
};

class RestoreCommand : public Command {
 public:
  QString name() const override { return u"restore"_s; }
  QString summary() const override {
    return u"データベースをファイルから復元します。今のデータは別のファイルに残ります。"_s;
  }
  Needs needs() const override { return Needs::toChange; }
  void declare(QCommandLineParser& parser) const override {
    parser.addPositionalArgument(u"FILE"_s, u"バックアップのファイル。"_s);
    parser.addOption({u"force"_s, u"完全なデータベースではないファイルでも復元します。"_s});
  }

  ExitCode run(const QCommandLineParser& parser, Output& output) const override {
    const QString path = fileArgument(parser);
    const QString database = databasePath(mainBundle());
    const QString doubt = databaseWords::doubtAbout(path, databaseFile::inspect(path));
    if (!doubt.isNull() && !parser.isSet(u"force"_s)) {
      throw Failure{ExitCode::failed, doubt + u"それでも復元するには --force を付けて下さい。"_s};
    }
    const auto restored =
        databaseFile::restore(database, path, percentOf(u"復元しています..."_s, output));
    require(restored, u"復元できませんでした"_s);
    tellPath(parser, database, output);
    output.message(u"「%1」から復元しました。"_s.arg(path) + databaseWords::whereKept(restored));
    return ExitCode::done;
  }
};

class ReplayCommand : public Command {
 public:
  QString name() const override { return u"replay"_s; }
  QString summary() const override {
    return u"残してある受信データ (lastDownload*.txt) のランを保存します。"_s;
  }
  Needs needs() const override { return Needs::toChange; }
  void declare(QCommandLineParser& parser) const override {
    parser.addPositionalArgument(u"FILE"_s, u"残してある受信データ。"_s);
  }

  ExitCode run(const QCommandLineParser& parser, Output& output) const override {
    const ReplayOutcome outcome = replayKeptLines(fileArgument(parser));
    if (parser.isSet(u"json"_s)) {
      output.json(QJsonDocument(QJsonObject{{u"code"_s, outcome.code},
                                            {u"newRuns"_s, outcome.newRuns},
                                            {u"notStored"_s, outcome.runsNotStored}}));
    }
    output.message(downloadWords::replayed(outcome));
    const bool hasRuns =
        outcome.code == downloadResult::stored || outcome.code == downloadResult::noRunCompleted;
    const bool complete = hasRuns && outcome.error.isNull() && !outcome.wouldMix &&
                          outcome.runsNotStored == 0 && outcome.strayLines == 0;
    return complete ? ExitCode::done : ExitCode::failed;
  }
};

}  // namespace

std::unique_ptr<Command> makeBackupCommand() {
  return std::make_unique<BackupCommand>();
}

std::unique_ptr<Command> makeRestoreCommand() {
  return std::make_unique<RestoreCommand>();
}

std::unique_ptr<Command> makeReplayCommand() {
  return std::make_unique<ReplayCommand>();
}

#include "base/messenger.h"
#include "cli/command.h"
#include "cli/interruption.h"
#include "cli/options.h"
#include "device/downloadWords.h"
#include "device/udevRegistry.h"
#include "device/watchDownload.h"

#include <QJsonObject>

#include <mutex>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

/// What the link has to say goes to standard error, as lines. The end of the download may be told
/// in the same words: not twice.
class MessengerToOutput : public Messenger {
 public:
  explicit MessengerToOutput(Output& output) : output_(output) {}
  void message(const QString& text) override {
    const std::lock_guard lock(mutex_);
    if (text != std::exchange(last_, text)) {
      output_.message(text);
    }
  }

 private:
  Output& output_;
  std::mutex mutex_;
  QString last_;
};

DeviceEnvironment environmentFor(const QCommandLineParser& parser,
                                 const std::shared_ptr<Messenger>& messenger) {
  return parser.isSet(u"port"_s) ? environmentHere(messenger, parser.value(u"port"_s))
                                 : environmentHere(messenger);
}

ExitCode codeOf(const DownloadOutcome& outcome) {
  if (outcome.cancelled) {
    return ExitCode::failed;
  }
  if (!outcome.linked || outcome.code == downloadResult::noAnswer) {
    return ExitCode::noWatch;
  }
  const bool nothingNew = outcome.code == downloadResult::noRecords ||
                          (outcome.code == downloadResult::noRunCompleted && outcome.newRuns == 0);
  const bool stored = outcome.code == downloadResult::stored && outcome.runsNotStored == 0;
  const bool complete = outcome.shortBlocks == 0 && outcome.strayLines == 0;
  return (stored || nothingNew) && complete ? ExitCode::done : ExitCode::failed;
}

QJsonObject objectOf(const DownloadOutcome& outcome) {
  return {{u"code"_s, outcome.code},
          {u"newRuns"_s, outcome.newRuns},
          {u"stored"_s, outcome.runsStored()},
          {u"notStored"_s, outcome.runsNotStored},
          {u"kept"_s, outcome.linesKept ? QJsonValue(outcome.keptPath) : QJsonValue()},
          {u"keptForGood"_s,
           outcome.lastingPath.isNull() ? QJsonValue() : QJsonValue(outcome.lastingPath)},
          {u"cancelled"_s, outcome.cancelled}};
}

void showProgress(const DownloadProgress& progress, Output& output) {
  output.progress(progress.stalled
                      ? downloadWords::stalled()
                      : u"%1 %2ブロック"_s.arg(downloadWords::running()).arg(progress.blocks));
}

/// Only what is stored and kept may be erased unasked; an empty watch needs no erasing.
ExitCode erase(WatchDownload& download, const DownloadOutcome& outcome, Output& output) {
  if (!outcome.linked || outcome.cancelled || outcome.code == downloadResult::noRecords) {
    return codeOf(outcome);
  }
  if (!outcome.isSafe()) {
    output.message(
        u"すべてが確実に保存されたとは言えないため、時計のデータは消去しませんでした。"_s);
    return ExitCode::failed;
  }
  const LinkObstacle obstacle = download.eraseWatch();
  output.message(downloadWords::erased(obstacle));
  return obstacle == LinkObstacle::none ? ExitCode::done : ExitCode::noWatch;
}

class DownloadCommand : public Command {
 public:
  QString name() const override { return u"download"_s; }
  QString summary() const override { return u"時計からランをダウンロードして保存します。"_s; }
  Needs needs() const override { return Needs::toChange; }

  void declare(QCommandLineParser& parser) const override {
    parser.addOptions({{u"erase"_s, u"すべて保存できたら、時計本体のデータを消去します。"_s},
                       {u"port"_s, u"自動で見つからない時計のシリアルポート。"_s, u"NODE"_s}});
  }

  ExitCode run(const QCommandLineParser& parser, Output& output) const override {
    options::noArguments(parser);
    const auto messenger = std::make_shared<MessengerToOutput>(output);
    WatchDownload download(environmentFor(parser, messenger),
                           [&output](const auto& progress) { showProgress(progress, output); });
    DownloadOutcome outcome;
    {
      const Interruption interruption([&download] { download.cancel(); });
      outcome = download.run();
    }
    if (parser.isSet(u"json"_s)) {
      output.json(QJsonDocument(objectOf(outcome)));
    }
    messenger->message(endOf(outcome));
    const bool isStored = outcome.code == downloadResult::stored;
    if (const QString doubt = downloadWords::warning(outcome); isStored && !doubt.isNull()) {
      messenger->message(doubt);
    }
    return parser.isSet(u"erase"_s) ? erase(download, outcome, output) : codeOf(outcome);
  }

 private:
  static QString endOf(const DownloadOutcome& outcome) {
    return outcome.cancelled ? u"ダウンロードを中止しました。何も保存していません。"_s
                             : downloadWords::ending(outcome);
  }
};

}  // namespace

std::unique_ptr<Command> makeDownloadCommand() {
  return std::make_unique<DownloadCommand>();
}

// The controller's commands on the database as a file: backup and restore.

#include "app/DFView.h"
#include "app/TrakkoAppDelegate.h"
#include "base/detachThread.h"
#include "base/mainQueue.h"
#include "data/bundle.h"
#include "data/databaseWords.h"

#include <QDateTime>
#include <QLoggingCategory>
#include <QScopeGuard>

Q_LOGGING_CATEGORY(lcDatabase, "trakko.database", QtInfoMsg)

namespace {

using databaseFile::Failure;
using databaseFile::Result;
using schemaCheck::Finding;

}  // namespace

void TrakkoAppDelegate::BackupData() {
  if (fileWorkRuns()) {
    return;
  }
  const QString name = QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMddHHmmss"));
  const QString path =
      context_.dialogs->fileToSave(QStringLiteral("Backup Data"), name, QStringLiteral("db3"));
  if (path.isNull()) {
    return;
  }
  startFileWork(
      QStringLiteral("バックアップしています..."),
      [path](const databaseFile::Watcher& watcher) {
        return databaseFile::backUp(databasePath(mainBundle()), path, watcher);
      },
      [this, path](const Result& result) {
        report(result, QStringLiteral("「%1」にバックアップしました。").arg(path),
               QStringLiteral("バックアップできませんでした"));
      });
}

void TrakkoAppDelegate::RecoverData() {
  if (fileWorkRuns()) {
    return;
  }
  const QString path =
      context_.dialogs->fileToOpen(QStringLiteral("Recover Data"), QStringLiteral("db3"));
  if (!path.isNull()) {
    recoverFrom(path);
  }
}

void TrakkoAppDelegate::recoverFrom(const QString& path, const QString& question) {
  if (fileWorkRuns()) {
    return;
  }
  const auto finding = std::make_shared<Finding>(Finding::unreadable);
  startFileWork(
      QStringLiteral("「%1」を調べています...").arg(path),
      [path, finding](const databaseFile::Watcher&) {
        *finding = databaseFile::inspect(path);
        return Result{};
      },
      [this, path, question, finding](const Result&) {
        // Behind a question that stands, such as the one after a download.
        mainQueue::post([this, path, question, doubt = databaseWords::doubtAbout(path, *finding)] {
          askAndRestore(path, question, doubt);
        });
      });
}

// Any file may be chosen; of one that is not a database of this program the user is told before it
// takes the place.
void TrakkoAppDelegate::askAndRestore(const QString& path, const QString& question,
                                      const QString& doubt) {
  const QString asked = doubt.isNull()
                            ? question
                            : doubt + QStringLiteral(
                                          "\n復元すると、今のランは表示されなくなります。"
                                          "今のデータは別のファイルに残ります。\n"
                                          "それでも復元しますか？");
  if (!asked.isNull()) {
    showStatus(QString());  // it is looked at
    if (!context_.dialogs->confirm(asked, QStringLiteral("復元"))) {
      showStatus(QStringLiteral("復元しませんでした。"));
      return;
    }
  }
  if (fileWorkRuns()) {
    return;
  }
  startFileWork(
      QStringLiteral("復元しています..."),
      [path](const databaseFile::Watcher& watcher) {
        return databaseFile::restore(databasePath(mainBundle()), path, watcher);
      },
      [this, path, doubt](const Result& result) {
        report(result,
               doubt.isNull() ? QStringLiteral("「%1」から復元しました。").arg(path)
                              : databaseWords::whereKept(result) + doubt,
               QStringLiteral("復元できませんでした"));
        startRefreshOfNewData();
        viewMonth->update();
      });
}

bool TrakkoAppDelegate::fileWorkRuns() {
  if (fileWorkRuns_) {
    showStatus(QStringLiteral("バックアップ、復元、消去が終わるまでお待ち下さい。"));
  }
  return fileWorkRuns_;
}

void TrakkoAppDelegate::startFileWork(const QString& line,
                                      std::function<Result(const databaseFile::Watcher&)> work,
                                      std::function<void(const Result&)> done) {
  fileWorkRuns_ = true;
  showStatus(line, Verdict::progress);
  const databaseFile::Watcher watcher = [this, line, shown = 0](int percent) mutable {
    constexpr int step = 10;  // percent; whoever has the line read aloud hears each
    if (percent / step != shown) {
      shown = percent / step;
      performOnMainThread([this, text = QStringLiteral("%1 %2%").arg(line).arg(shown * step)] {
        showStatus(text, Verdict::progress);
      });
    }
  };
  const auto task = [this, watcher, work = std::move(work), done = std::move(done)] {
    const auto result = std::make_shared<Result>(Result{Failure::unreadable, {}});
    const auto atAnyEnd = qScopeGuard([&] {
      performOnMainThread([this, result, done] {
        fileWorkRuns_ = false;
        done(*result);
      });
    });
    *result = work(watcher);
  };
  fileWorkRuns_ = detachThread("database-file", task);
}

// Neither command shows a box for its result; it stands in the line at the bottom and in the log.
void TrakkoAppDelegate::report(const Result& result, const QString& done, const QString& failed) {
  if (result) {
    showStatus(done, Verdict::done);
    return;
  }
  qCWarning(lcDatabase).noquote() << failed << result.detail;
  showStatus(failed + QStringLiteral("：") + databaseWords::reason(result.failure),
             Verdict::failure);
}

#include "app/manyExport.h"

#include "app/boxOver.h"
#include "app/statusLine.h"
#include "base/detachThread.h"
#include "base/mainQueue.h"
#include "base/text.h"
#include "export/exportWords.h"

#include <QProgressDialog>
#include <QScopeGuard>

using namespace Qt::StringLiterals;

ManyExport::ManyExport(QWidget* window, StatusLine* line)
    : QObject(window), window_(window), line_(line) {}

void ManyExport::start(const ManyRuns& runs, const QString& offset,
                       const QHash<qint64, QString>& names) {
  if (goesOn_ != nullptr) {
    return;
  }
  goesOn_ = std::make_shared<std::atomic<bool>>(true);
  names_ = names;
  showProgress(runs.numbers.size());
  const auto task = [self = QPointer<ManyExport>(this), runs, offset, goesOn = goesOn_] {
    const auto result = std::make_shared<ManyRunsResult>();
    result->brokenOff = true;
    const auto atAnyEnd = qScopeGuard([&] {
      performOnMainThread([self, result, folder = runs.folder] {
        if (self != nullptr) {
          self->finish(*result, folder);
        }
      });
    });
    const auto tell = [&](qsizetype done) {
      performOnMainThread([self, done] {
        if (self != nullptr && self->progress_ != nullptr) {
          self->progress_->setValue(static_cast<int>(done));
        }
      });
      return goesOn->load();
    };
    *result = exportMany(runs, offset, tell);
  };
  if (!detachThread("export", task)) {
    end();
  }
}

void ManyExport::showProgress(qsizetype all) {
  progress_ = new QProgressDialog(u"ランを書き出しています..."_s, u"中止"_s, 0,
                                  static_cast<int>(all), window_);
  progress_->setWindowTitle(u"まとめて書き出す"_s);
  progress_->setAttribute(Qt::WA_DeleteOnClose);
  progress_->setAutoClose(false);
  progress_->setAutoReset(false);
  new BoxOver(progress_, window_);  // the dialog owns it
  connect(progress_, &QProgressDialog::canceled, this, [goesOn = goesOn_] { *goesOn = false; });
  progress_->show();
}

void ManyExport::end() {
  goesOn_.reset();
  if (progress_ != nullptr) {
    progress_->close();
  }
}

void ManyExport::finish(const ManyRunsResult& result, const QString& folder) {
  end();
  const bool isDone = result.failed.isEmpty() && !result.cancelled && !result.brokenOff;
  line_->tell(outcomeOf(result, folder, names_), isDone ? Verdict::done : Verdict::failure);
}

QList<qint64> runsWithin(const RunDictionary& runs, const QStringList& keys, QDate first,
                         QDate last) {
  constexpr qsizetype dateLength = 10;
  QList<qint64> numbers;
  for (const QString& key : keys) {
    const QDate day =
        QDate::fromString(runs.value(key).T_RunStartTime.left(dateLength), Qt::ISODate);
    if (!first.isValid() || (day.isValid() && first <= day && day <= last)) {
      numbers << text::toInteger(key);
    }
  }
  return numbers;
}

QString outcomeOf(const ManyRunsResult& result, const QString& folder,
                  const QHash<qint64, QString>& names) {
  QStringList parts{u"%1件を「%2」に書き出しました。"_s.arg(result.written).arg(folder)};
  if (result.skipped > 0) {
    parts << u"%1件は同じ名前のファイルがあるため書き出しませんでした。"_s.arg(result.skipped);
  }
  if (!result.failed.isEmpty()) {
    QStringList failed;
    for (const ManyRunsResult::Failed& run : result.failed) {
      failed << u"%1 (%2)"_s.arg(names.value(run.number), exportWords::reason(run.failure));
    }
    // Behind the folder: the line opens the first path in it, and a name comes from the database.
    parts << u"%1件を書き出せませんでした: %2"_s.arg(failed.size()).arg(failed.join(u" "_s));
  }
  if (result.cancelled) {
    parts.prepend(u"途中で中止しました。"_s);
  }
  if (result.brokenOff) {
    parts.prepend(u"内部エラーのため途中で中断しました。"_s);
  }
  return parts.join(QString());
}

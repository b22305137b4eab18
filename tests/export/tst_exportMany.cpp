#include "export/exportMany.h"
#include "tests/columns.h"
#include "tests/data/storeFolder.h"

#include <QtTest>

namespace {

const QString offset = "+09:00";

QString summary(const ManyRunsResult& result) {
  QString text = QString("%1 written, %2 skipped").arg(result.written).arg(result.skipped);
  for (const ManyRunsResult::Failed& failed : result.failed) {
    text += QString(", %1 failed by %2").arg(failed.number).arg(static_cast<int>(failed.failure));
  }
  return text + (result.cancelled ? ", cancelled" : "") + (result.brokenOff ? ", broken off" : "");
}

}  // namespace

class tst_exportMany : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void init() {
    Batch batch;
    for (int number = 1; number <= 6; ++number) {
      batch.add(number, "run", 1, number == 4 ? 2 : 3);
    }
    batch.runs["02"].T_RunStartTime = "2014/05/../../02 07:30:05";
    batch.runs["05"].T_RunStartTime = batch.runs["01"].T_RunStartTime;
    batch.runs["06"].T_RunStartTime = "2014";
    store_ = std::make_unique<StoreFolder>();
    QCOMPARE(batch.store(), 1);
    QVERIFY(QDir(store_->in("")).mkdir("to"));
    writeBytes(store_->in("to/20140503073005.GPX"), "old");
  }

  void runs_data() {
    const auto row = columns<ManyRuns, QString, QString>("runs", "outcome", "files");
    using enum ExportFormat;
    row("files that are there stay", {{1, 3}, Gpx, "to"}, "1 written, 1 skipped",
        "20140501073005.GPX, 20140503073005.GPX old");
    row("files that are there give way", {{1, 3}, Gpx, "to", true}, "2 written, 0 skipped",
        "20140501073005.GPX, 20140503073005.GPX");
    row("none leads out of the folder, and of one name the first stays",
        {{1, 2, 5}, Tcx, "to", true}, "2 written, 1 skipped",
        "201405....02073005.TCX, 20140501073005.TCX, 20140503073005.GPX old");
    row("none to be had", {{99, 6, 4, 3}, Gpx, "to"},
        "0 written, 1 skipped, 99 failed by 2, 6 failed by 3, 4 failed by 4",
        "20140503073005.GPX old");
    row("no folder", {{1}, Gpx, "none"}, "0 written, 0 skipped, 1 failed by 5",
        "20140503073005.GPX old");
    row("out of memory", {{1, 3, 4, 99}, Gpx, "to", true}, "2 written, 0 skipped, broken off",
        "20140501073005.GPX, 20140503073005.GPX");
    row("cancelled", {{1, 3, 4, 99}, Gpx, "to", true}, "2 written, 0 skipped, cancelled",
        "20140501073005.GPX, 20140503073005.GPX");
  }

  void runs() {
    QFETCH(ManyRuns, runs);
    runs.folder = store_->in(runs.folder);
    QFETCH(const QString, outcome);
    const ManyRunsResult result = exportMany(runs, offset, [&](qsizetype done) {
      if (done == 2 && outcome.endsWith("broken off")) {
        throw std::bad_alloc();
      }
      return done < 2 || !outcome.endsWith("cancelled");
    });
    QCOMPARE(summary(result), outcome);
    QStringList files;
    const QDir folder(store_->in("to"));
    for (const QString& file : folder.entryList(QDir::Files | QDir::Hidden)) {
      files.append(bytesOf(folder.filePath(file)) == "old" ? file + " old" : file);
    }
    QTEST(files.join(", "), "files");
  }

 private:
  std::unique_ptr<StoreFolder> store_;
};

QTEST_GUILESS_MAIN(tst_exportMany)
#include "tst_exportMany.moc"

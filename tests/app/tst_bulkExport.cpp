// Many runs at once from the window: what the dialog offers, the files and the line at the end.

#include "app/exportManyDialog.h"
#include "app/totalsPane.h"
#include "tests/app/storedRuns.h"
#include "tests/columns.h"

#include <QAction>
#include <QComboBox>
#include <QLineEdit>
#include <QProgressDialog>
#include <QPushButton>
#include <QTableView>
#include <QTimer>
#include <QToolButton>

class tst_bulkExport : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  static void runs_data() {
    const auto row =
        columns<QString, QStringList, QStringList, QString>("period", "existing", "files", "line");
    const QString third = "20260503073000.GPX";
    const QString fourth = "20260504073000.GPX";
    const QStringList all{"20260501073000.GPX", "20260502073000.GPX", third, fourth};
    row("all", "すべてのラン", QStringList(), all, "4件を「%1」に書き出しました。");
    // Of the week that begins on Monday, the fourth of May.
    row("chosen week", "集計で選んだ期間", QStringList(), {fourth},
        "1件を「%1」に書き出しました。");
    row("one is there", "すべてのラン", {third}, all,
        "3件を「%1」に書き出しました。1件は同じ名前のファイルがあるため書き出しませんでした。");
  }

  static void runs() {
    QFETCH(QString, period);
    QFETCH(QStringList, existing);
    StartedWindow fixture(4);
    chooseNewestWeek(*fixture.window);
    QTemporaryDir folder;
    for (const QString& name : existing) {
      QVERIFY(QFile(folder.filePath(name)).open(QIODevice::WriteOnly));
    }
    QTimer::singleShot(100, [&] {
      auto* dialog = fixture.window->findChild<ExportManyDialog*>();
      const QList<QComboBox*> boxes = dialog->findChildren<QComboBox*>();
      boxes.at(0)->setCurrentText(period);
      boxes.at(1)->setCurrentText("GPX");
      dialog->findChild<QLineEdit*>()->setText(folder.path());
      dialog->accept();
    });
    fixture.window->findChild<QAction*>("actionExportMany")->trigger();
    QVERIFY(fixture.window->findChild<QProgressDialog*>() != nullptr);
    fixture.settle();
    QFETCH(QString, line);
    QCOMPARE(fixture.controller->statusLine->text(), line.arg(folder.path()));
    QTEST(QDir(folder.path()).entryList(QDir::Files, QDir::Name), "files");
    for (const QString& name : existing) {
      QCOMPARE(QFileInfo(folder.filePath(name)).size(), 0);  // the user's own
    }
  }

 private:
  static void chooseNewestWeek(const MainWindow& window) {
    auto* pane = window.findChild<TotalsPane*>();
    pane->findChildren<QToolButton*>().constFirst()->click();
    auto* view = pane->findChild<QTableView*>("totalsView");
    view->selectRow(1);  // behind the line for all
  }
};

QTEST_MAIN(tst_bulkExport)
#include "tst_bulkExport.moc"

// The window's commands, keys and menus.

#include "app/MainWindow.h"
#include "app/TrakkoAppDelegate.h"
#include "app/aboutBox.h"
#include "app/boxOver.h"
#include "app/exportManyDialog.h"
#include "app/manyExport.h"
#include "app/tableKeys.h"
#include "base/detachThread.h"
#include "export/offsetText.h"
#include "ui_MainWindow.h"

#include <QDateTime>
#include <QDir>
#include <QKeyEvent>
#include <QLabel>
#include <QStandardPaths>
#include <QTimer>

#include <functional>
#include <utility>

void MainWindow::connectCommands() {
  // Slots are called in the order of their connections: the highlighted run is the current one
  // before a command acts on it.
  const auto on = [this](QAction* action, void (TrakkoAppDelegate::*command)()) {
    connect(action, &QAction::triggered, controller_, &TrakkoAppDelegate::followSelection);
    connect(action, &QAction::triggered, controller_, [controller = controller_, command] {
      // A failure stays out of the toolkit, which would put nothing in order on its way.
      runGuarded("main", std::bind_front(command, controller));
    });
  };
  on(ui_->actionDownload, &TrakkoAppDelegate::downloadDataBu);
  on(ui_->actionDeleteOne, &TrakkoAppDelegate::deleteOneData);
  on(ui_->actionDeleteAll, &TrakkoAppDelegate::deleteAllData);
  on(ui_->actionExportTcx, &TrakkoAppDelegate::SaveTCXFile);
  on(ui_->actionExportGpx, &TrakkoAppDelegate::saveGPXFile);
  on(ui_->actionBackup, &TrakkoAppDelegate::BackupData);
  on(ui_->actionRecover, &TrakkoAppDelegate::RecoverData);
  connect(ui_->actionQuit, &QAction::triggered, this, &QWidget::close);
  connect(ui_->actionExportMany, &QAction::triggered, this, &MainWindow::exportManyRuns);
  connect(ui_->actionAbout, &QAction::triggered, this, [this] { showAbout(this); });
  // In the tables of laps and points the key would delete more than what is marked there.
  ui_->actionDeleteOne->setShortcutContext(Qt::WidgetShortcut);
  ui_->tView->addAction(ui_->actionDeleteOne);
}

void MainWindow::connectTables() {
  connect(ui_->tView, &QTableView::clicked, controller_, [this](const QModelIndex& cell) {
    // The release before it may have chosen the run already, which reads it.
    if (!std::exchange(releaseChose_, false)) {
      controller_->tableviewClick(cell.row());
    }
  });
  ui_->tView->installEventFilter(this);
  ui_->tView->viewport()->installEventFilter(this);
  // Without runs these three have nothing to do; the others act, or at least ask, at any time.
  const auto greyOut = [this] {
    const bool anyRuns = ui_->tView->model()->rowCount() > 0;
    ui_->actionDeleteOne->setEnabled(anyRuns);
    ui_->actionDeleteAll->setEnabled(anyRuns);
    ui_->actionExportMany->setEnabled(anyRuns);
    showHint();
  };
  connect(ui_->tView->model(), &QAbstractItemModel::modelReset, this, greyOut);
  greyOut();
  connect(ui_->pointView->model(), &QAbstractItemModel::modelReset, this, [this] {
    if (pointsOf_ != controller_->currentNumber) {
      pointsOf_ = controller_->currentNumber;
      ui_->pointView->scrollToTop();
    }
  });
  ui_->tView->setFocus();
}

void MainWindow::connectTotals() {
  connect(ui_->tView->model(), &QAbstractItemModel::modelReset, this, [this] {
    const bool anyRuns = !controller_->runViewData.empty();
    ui_->totalsPane->setRuns(anyRuns ? controller_->runDic : RunDictionary(),
                             anyRuns ? controller_->runKArr : QStringList());
  });
  connect(ui_->totalsPane, &TotalsPane::chosen, this, [this](qsizetype position) {
    const QModelIndex run = ui_->tView->model()->index(static_cast<int>(position), 0);
    if (run.isValid()) {
      ui_->tView->setCurrentIndex(run);
      ui_->tView->scrollTo(run, QAbstractItemView::PositionAtTop);
      controller_->followSelection();
    }
  });
}

void MainWindow::addContextMenus() {
  new TableKeys(ui_->tView, TableKeys::Search::dates);
  new TableKeys(ui_->lapView, TableKeys::Search::none);
  new TableKeys(ui_->pointView, TableKeys::Search::none);
  ui_->tView->addActions({ui_->actionExportTcx, ui_->actionExportGpx});
}

// Keys, typing and dragging choose a run, too, but only once the key or button is up: a key held
// down runs through the list without drawing every run.
bool MainWindow::eventFilter(QObject* watched, QEvent* event) {
  if (watched == ui_->rightSplitter && event->type() == QEvent::Resize && !heightsChosen_) {
    arrangeHeights(static_cast<QResizeEvent*>(event)->size().height());
  }
  if (watched == ui_->tView || watched == ui_->tView->viewport()) {
    const bool isKeyUp =
        event->type() == QEvent::KeyRelease && !static_cast<QKeyEvent*>(event)->isAutoRepeat();
    // The commands of the menu are about the run that is shown.
    if (isKeyUp || event->type() == QEvent::ContextMenu) {
      controller_->followSelection();
    } else if (event->type() == QEvent::MouseButtonPress) {
      releaseChose_ = false;
    } else if (event->type() == QEvent::MouseButtonRelease) {
      const qint64 before = controller_->currentNumber;
      controller_->followSelection();
      releaseChose_ = controller_->currentNumber != before;
    }
  }
  return QMainWindow::eventFilter(watched, event);
}

// Tells what to do when there are no runs, once it is known that there are none.
void MainWindow::showHint() {
  constexpr int again = 200;  // milliseconds
  const bool anyRuns = ui_->tView->model()->rowCount() > 0;
  hint_->setVisible(!anyRuns && controller_->checkFinishGetData);
  if (!anyRuns && !controller_->checkFinishGetData) {
    QTimer::singleShot(again, this, &MainWindow::showHint);
  }
}

void MainWindow::exportManyRuns() {
  QString folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
  ExportManyDialog dialog(this, ui_->totalsPane->chosenDays(),
                          QDir(folder).exists() ? folder : QDir::homePath());
  if (!runOver(dialog, this)) {
    return;
  }
  QHash<qint64, QString> names;
  for (const runData& run : std::as_const(controller_->runDic)) {
    names.insert(run.T_Cnumber, run.T_RunStartTime);
  }
  const auto [first, last] = dialog.days();
  manyExport_->start({.numbers = runsWithin(controller_->runDic, controller_->runKArr, first, last),
                      .format = dialog.format(),
                      .folder = dialog.folder()},
                     offsetNow(), names);
}

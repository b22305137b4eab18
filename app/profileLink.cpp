#include "app/profileLink.h"

#include "app/TrakkoAppDelegate.h"
#include "app/profilePane.h"
#include "base/detachThread.h"
#include "base/mainQueue.h"
#include "map/trackOverlay.h"
#include "web/mapView.h"

#include <QItemSelectionModel>
#include <QScopedValueRollback>
#include <QTableView>

namespace {

using namespace Qt::StringLiterals;

int chosenRow(const QTableView* table) {
  const QModelIndexList rows = table->selectionModel()->selectedRows();
  return rows.isEmpty() ? -1 : rows.constFirst().row();
}

}  // namespace

ProfileLink::ProfileLink(TrakkoAppDelegate* controller, ProfilePane* pane)
    : controller_(controller), pane_(pane) {
  // The tables are filled when a run is shown, each by itself: one reading follows both.
  tablesChanged_.setSingleShot(true);
  connect(&tablesChanged_, &QTimer::timeout, this, &ProfileLink::readRun);
  const auto follow = [this](const QTableView* table, void (ProfileLink::*chosen)()) {
    connect(table->model(), &QAbstractItemModel::modelReset, this,
            [this] { tablesChanged_.start(0); });
    connect(table->selectionModel(), &QItemSelectionModel::selectionChanged, this, chosen);
    connect(table, &QTableView::clicked, this, chosen);  // the row may be chosen already
  };
  follow(controller_->pointView, &ProfileLink::pointFromTable);
  follow(controller_->lapView, &ProfileLink::lapFromTable);
  connect(pane_->view, &ProfileView::pointed, this, &ProfileLink::pointFromProfile);
}

void ProfileLink::readRun() {
  const int reading = ++newestReading_;
  number_ = controller_->currentNumber;
  points_ = controller_->pointViewData.empty() ? PointDictionary() : controller_->pointDic;
  if (number_ <= 0) {
    takeRun(nullptr);
    return;
  }
  detachThread("profile",
               [this, reading, points = points_, laps = controller_->lapDic, number = number_] {
                 performOnMainThread(
                     [this, reading,
                      run = std::make_shared<const RunProfile>(runProfile(points, laps, number))] {
                       if (reading == newestReading_) {
                         takeRun(run);
                       }
                     });
               });
}

void ProfileLink::takeRun(const std::shared_ptr<const RunProfile>& run) {
  run_ = run;
  pane_->showRun(run);  // tells where the cursor is now
}

void ProfileLink::pointFromProfile(int row) {
  showOnMap(row);
  if (row >= 0) {
    showRow(row);
  }
}

void ProfileLink::pointFromTable() {
  const int row = chosenRow(controller_->pointView);
  if (isFollowing_ || !run_ || row >= static_cast<int>(run_->points.size())) {
    return;
  }
  pane_->view->pointTo(row);
  showOnMap(row);
}

void ProfileLink::lapFromTable() {
  // The first row sums up the run.
  const int lap = chosenRow(controller_->lapView) - 1;
  if (!run_ || lap >= static_cast<int>(run_->laps.size())) {
    return;
  }
  const ProfileLap stretch = lap < 0 ? ProfileLap() : run_->laps[static_cast<std::size_t>(lap)];
  pane_->view->markStretch(stretch.first, stretch.end);
  if (stretch.first < stretch.end) {
    pane_->view->pointTo(stretch.first);
    pointFromProfile(stretch.first);
  }
}

void ProfileLink::showRow(int row) {
  const QModelIndex cell = controller_->pointView->model()->index(row, 0);
  const QScopedValueRollback following(isFollowing_, true);
  controller_->pointView->selectionModel()->setCurrentIndex(
      cell, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
  controller_->pointView->scrollTo(cell);
}

void ProfileLink::showOnMap(int row) {
  QString position;
  if (row >= 0) {
    const qint64 sequence = run_->points[static_cast<std::size_t>(row)].sequence;
    position = googlePosition(points_.value(QString::number(static_cast<qint32>(number_)) + u'-' +
                                            QString::number(sequence)));
  }
  const bool isDrawn = controller_->isAvailable && controller_->checkInitMap;
  if (!isDrawn || (position.isNull() && !hasMarker_)) {
    return;
  }
  hasMarker_ = true;
  // 360 stands for no position.
  controller_->theWebView->evaluate(
      u"marker_add_remover(%1);"_s.arg(position.isNull() ? u"360,360"_s : position));
}

void ProfileLink::mapReset() {
  hasMarker_ = false;
}

// The three tables of the controller: loading them from the store and answering what they show.

#include "app/TrakkoAppDelegate.h"
#include "app/startUpCheck.h"
#include "base/detachThread.h"
#include "base/mainQueue.h"
#include "base/text.h"
#include "base/trackTime.h"
#include "data/bundle.h"
#include "data/dataControl.h"
#include "data/pointLocator.h"
#include "web/mapView.h"

#include <QDate>
#include <QItemSelectionModel>
#include <QLoggingCategory>
#include <QTableView>

#include <thread>
#include <utility>

Q_LOGGING_CATEGORY(lcTables, "trakko.tables", QtInfoMsg)

namespace {

void reload(const QTableView* table) {
  if (auto* model = qobject_cast<TableModel*>(table->model())) {
    model->reload();
  }
}

QString cell(const tViewData& row, const QString& column) {
  static const QHash<QString, QString tViewData::*> cells = {
      {QStringLiteral("Collumn1"), &tViewData::nsStrName1},
      {QStringLiteral("Collumn2"), &tViewData::nsStrName2},
      {QStringLiteral("Collumn3"), &tViewData::nsStrName3}};
  const auto member = cells.constFind(column);
  return member == cells.constEnd() ? QString() : row.**member;
}

QString cell(const lViewData& row, const QString& column) {
  static const QHash<QString, QString lViewData::*> cells = {
      {QStringLiteral("l0"), &lViewData::nsStrName1},
      {QStringLiteral("l1"), &lViewData::nsStrName2},
      {QStringLiteral("l2"), &lViewData::nsStrName3},
      {QStringLiteral("l3"), &lViewData::nsStrName4},
      {QStringLiteral("l4"), &lViewData::nsStrName5},
      {QStringLiteral("l5"), &lViewData::nsStrName6},
      {QStringLiteral("l6"), &lViewData::nsStrName7},
      {QStringLiteral("l7"), &lViewData::nsStrName8},
      {QStringLiteral("l8"), &lViewData::nsStrName9},
      {QStringLiteral("l9"), &lViewData::nsStrName10}};
  const auto member = cells.constFind(column);
  return member == cells.constEnd() ? QString() : row.**member;
}

QString cell(const pViewData& row, const QString& column) {
  static const QHash<QString, QString pViewData::*> cells = {
      {QStringLiteral("0"), &pViewData::nsStrName1}, {QStringLiteral("1"), &pViewData::nsStrName2},
      {QStringLiteral("2"), &pViewData::nsStrName3}, {QStringLiteral("3"), &pViewData::nsStrName4},
      {QStringLiteral("4"), &pViewData::nsStrName5}, {QStringLiteral("5"), &pViewData::nsStrName6},
      {QStringLiteral("6"), &pViewData::nsStrName7}, {QStringLiteral("7"), &pViewData::nsStrName8}};
  const auto member = cells.constFind(column);
  return member == cells.constEnd() ? QString() : row.**member;
}

std::vector<tViewData> runRows(const RunDictionary& runs, const QStringList& keys) {
  std::vector<tViewData> rows;
  rows.reserve(static_cast<std::size_t>(keys.size()));
  for (const QString& key : keys) {
    const auto run = runs.constFind(key);
    if (run != runs.constEnd()) {
      rows.push_back(runRow(*run));
    }
  }
  return rows;
}

template <typename Rows>
QString cellAt(const Rows& rows, const QString& column, int row) {
  const auto index = static_cast<std::size_t>(row);
  return row >= 0 && index < rows.size() ? cell(rows[index], column) : QString();
}

}  // namespace

TrakkoAppDelegate::Selection TrakkoAppDelegate::choose() {
  selection_ = std::make_shared<const int>(0);
  return selection_;
}

void TrakkoAppDelegate::forgetLoads() {
  ++newestLoad_;
  choose();
}

void TrakkoAppDelegate::setViewData(const QString& start, const QString& endTimeStr) {
  loadTables(start, endTimeStr, newestLoad_);
}

void TrakkoAppDelegate::loadTables(const QString& start, const QString& end, int load) {
  const bool ofNewData = getNewData == 1;
  dataControl store;
  const bool wantsAll = start.isEmpty() || start.compare(u"all", Qt::CaseInsensitive) == 0;
  dataControl::KnownRuns all;
  const RunDictionary runs = wantsAll ? store.allRuns(all) : store.getRunData(start, end);
  if (runs.isEmpty()) {
    performOnMainThread([this, load] {
      if (load == newestLoad_) {
        runDic = {};
      }
    });
    checkFinishGetData = true;
    if (store.queryFailed) {
      loadFailed(load, ofNewData);
    }
    return;
  }
  const QStringList keys = store.runKeyArray;
  // The runs are on screen before the points of the first one are read.
  auto chosen = std::make_shared<Selection>();
  performOnMainThread([this, load, runs, keys, chosen, all, rows = runRows(runs, keys)]() mutable {
    if (load == newestLoad_) {
      loader_.remember(std::move(all));
      takeRuns(runs, keys, std::move(rows));
      *chosen = selection_;
    }
  });
  // From now on a run is read only where it lies; that takes as long as reading one without it.
  pointLocator::locate(databasePath(mainBundle()));
  const qint64 number = text::toInteger(keys.value(0));
  performOnMainThread([this, chosen, points = store.getTrackData(static_cast<qint32>(number))] {
    if (*chosen == selection_) {
      pointDic = points;
      setPointView();
    }
  });
  std::this_thread::sleep_for(context_.lapPause);
  performOnMainThread([this, chosen, laps = store.getLapData(static_cast<qint32>(number))] {
    if (*chosen == selection_) {
      lapDic = laps;
      setLapView();
    }
  });
  if (store.queryFailed) {
    loadFailed(load, ofNewData);
  }
}

// At the start, a look at the file may tell the cause in a box of its own: one is enough.
void TrakkoAppDelegate::loadFailed(int load, bool ofNewData) {
  constexpr int firstLoad = 1;
  const bool toldAtStart = load == firstLoad && !startUpProblem().isNull();
  performOnMainThread([this, load, toldAtStart, ofNewData] {
    toldUnreadable_ = toldUnreadable_ || toldAtStart;
    if (load == newestLoad_) {
      tellUnreadable(ofNewData);
    }
  });
}

// An empty table would pass for an empty database. A box tells the first time, and the line each
// time, except after a command that brought new data: there it tells what became of that.
void TrakkoAppDelegate::tellUnreadable(bool ofNewData) {
  const QString problem = QStringLiteral(
      "データベースを読めませんでした。壊れているか、他のプログラムが使用しています。");
  if (!ofNewData) {
    showStatus(problem, Verdict::failure);
  }
  if (!std::exchange(toldUnreadable_, true)) {
    alertUSB(problem);
  }
}

void TrakkoAppDelegate::takeRuns(const RunDictionary& runs, const QStringList& keys,
                                 std::vector<tViewData> rows) {
  runDic = runs;
  runKArr = keys;
  runViewData = std::move(rows);
  reload(tView);
  currentNumber = text::toInteger(keys.value(0));
  calltView({0});
  choose();
  // The page may have been ready before there was a run to draw. With new data the refresh draws.
  if (mapLoaded_ && !checkInitMap && getNewData != 1) {
    displayMap();
  }
}

void TrakkoAppDelegate::setPointView() {
  if (currentNumber <= 0) {
    checkFinishGetData = true;
    return;
  }
  detachThread("points", [this, points = pointDic, number = currentNumber, chosen = selection_] {
    performOnMainThread([this, chosen, rows = PointRows(points, number)]() mutable {
      if (chosen == selection_) {
        takePointRows(std::move(rows));
      }
      checkFinishGetData = true;
    });
  });
}

void TrakkoAppDelegate::takePointRows(PointRows rows) {
  pointViewData = std::move(rows);
  reload(pointView);
  checkFinishGetData = true;
}

void TrakkoAppDelegate::setLapView() {
  const auto run = runDic.constFind(text::padded(currentNumber, 2));
  if (currentNumber <= 0 || run == runDic.constEnd()) {
    return;
  }
  lapViewData = lapRows(*run, lapDic, currentNumber);
  reload(lapView);
}

void TrakkoAppDelegate::clearTables() {
  forgetLoads();
  runViewData.clear();
  reload(tView);
  lapViewData.clear();
  reload(lapView);
  pointViewData.clear();
  reload(pointView);
  theWebView->evaluate(QStringLiteral("SetMapNull();"));
}

void TrakkoAppDelegate::calltView(const QList<int>& rows) {
  for (const int row : rows) {
    const QModelIndex first = tView->model()->index(row, 0);
    tView->selectionModel()->select(first, QItemSelectionModel::Select | QItemSelectionModel::Rows);
    tView->selectionModel()->setCurrentIndex(first, QItemSelectionModel::NoUpdate);
  }
}

int TrakkoAppDelegate::numberOfRowsInTableView(const QTableView* table) const {
  if (table == tView) {
    return static_cast<int>(runViewData.size());
  }
  if (table == pointView) {
    return static_cast<int>(pointViewData.size());
  }
  return table == lapView ? static_cast<int>(lapViewData.size()) : -1;
}

QString TrakkoAppDelegate::tableView(const QTableView* table, const QString& columnIdentifier,
                                     int row) const {
  if (table == tView) {
    if (row < 0 || static_cast<std::size_t>(row) >= runViewData.size()) {
      qCInfo(lcTables, "tableView:objectValueForTableColumn:row: objectAtIndex:%d = NULL", row);
    }
    return cellAt(runViewData, columnIdentifier, row);
  }
  if (table == pointView) {
    return cellAt(pointViewData, columnIdentifier, row);
  }
  return table == lapView ? cellAt(lapViewData, columnIdentifier, row) : QString();
}

void TrakkoAppDelegate::editColumn(const QString& identifier, const QString& title,
                                   QTableView* cTableView) {
  if (auto* model = qobject_cast<TableModel*>(cTableView->model())) {
    model->setTitle(identifier, title);
  }
}

void TrakkoAppDelegate::tableviewClick(int clickedRow) {
  if (clickedRow >= 0) {
    currentNumber = text::toInteger(runKArr.value(clickedRow));
    displayMap();
  }
}

void TrakkoAppDelegate::followSelection() {
  const int row = tView->currentIndex().row();
  if (row >= 0 && text::toInteger(runKArr.value(row)) != currentNumber) {
    tableviewClick(row);
  }
}

double TrakkoAppDelegate::trackTimeValue(const QString& time) const {
  return ::trackTimeValue(time);
}

QDate TrakkoAppDelegate::strToDate(const QString& date) const {
  return QDate::fromString(date, QStringLiteral("yyyy-MM-dd"));
}

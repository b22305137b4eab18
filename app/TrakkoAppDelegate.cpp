#include "app/TrakkoAppDelegate.h"

#include "base/detachThread.h"
#include "base/mainQueue.h"

#include <QCoreApplication>
#include <QLoggingCategory>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>

#include <utility>

Q_LOGGING_CATEGORY(lcApp, "trakko.app", QtInfoMsg)

TrakkoAppDelegate::TrakkoAppDelegate(ControllerContext context)
    : context_(std::move(context)), selection_(std::make_shared<const int>(0)) {
  tellThreadFailures();
}

void TrakkoAppDelegate::awakeFromNib() {
  isAvailable = false;
  checkFinishGetData = false;
  checkInitMap = false;
  isAvailable = true;
  setWebView(theWebView);
  currentNumber = 0;
  getNewData = 0;
  editColumn(QStringLiteral("Collumn3"), QStringLiteral("距離 (km)"), tView);
  editColumn(QStringLiteral("l2"), QStringLiteral("距離 (km)"), lapView);
  editColumn(QStringLiteral("l3"), QStringLiteral("平均速度 (km/h)"), lapView);
  editColumn(QStringLiteral("l4"), QStringLiteral("平均ペース (/km)"), lapView);
  editColumn(QStringLiteral("l5"), QStringLiteral("最高速度 (km/h)"), lapView);
  editColumn(QStringLiteral("2"), QStringLiteral("距離 (km)"), pointView);
  editColumn(QStringLiteral("3"), QStringLiteral("平均速度 (km/h)"), pointView);
  editColumn(QStringLiteral("4"), QStringLiteral("平均ペース (/km)"), pointView);
  editColumn(QStringLiteral("7"), QStringLiteral("高度 (m)"), pointView);
  startRefresh();
  getDBu->setVisible(false);
  progressBar->setVisible(false);
}

void TrakkoAppDelegate::applicationDidFinishLaunching() {
  waitForFirstLoad(0);
}

// The map page is loaded once the first load of the tables has ended, at the latest after six
// steps. Each step is a timer, so the window stays live.
void TrakkoAppDelegate::waitForFirstLoad(int counter) {
  constexpr int lastStep = 5;
  if (checkFinishGetData) {
    webLoadStr();
    return;
  }
  QTimer::singleShot(context_.startUpStep, this, [this, passed = counter + 1] {
    if (passed > lastStep || checkFinishGetData) {
      webLoadStr();
      return;
    }
    qCInfo(lcApp, "1");
    waitForFirstLoad(passed);
  });
}

bool TrakkoAppDelegate::windowShouldClose() {
  QCoreApplication::quit();
  return true;
}

void TrakkoAppDelegate::windowDidResize() {}

void TrakkoAppDelegate::startRefresh() {
  forgetLoads();
  detachThread("refresh", [this, load = newestLoad_.load()] { refreshData(load); });
}

void TrakkoAppDelegate::startRefreshOfNewData() {
  getNewData = 1;
  startRefresh();
}

// Of several refreshes under way only the newest draws: it has the newest data, and an older one
// would take the order to draw away from it.
void TrakkoAppDelegate::refreshData(int load) {
  loadTables(QStringLiteral("All"), QStringLiteral(""), load);
  if (getNewData == 1) {
    mainQueue::post([this, load] {
      if (load == newestLoad_) {
        displayMap();
        getNewData = 0;
      }
    });
  }
}

void TrakkoAppDelegate::alertUSB(const QString& message) {
  context_.dialogs->message(message);
}

void TrakkoAppDelegate::showStatus(const QString& line, Verdict verdict) {
  saysNoPositions_ = false;
  statusLine->tell(line, verdict);
}

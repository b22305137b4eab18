#pragma once

#include "app/dialogs.h"
#include "app/runLoader.h"
#include "app/statusLine.h"
#include "app/tableModel.h"
#include "app/tableRows.h"
#include "data/databaseFile.h"
#include "data/records.h"
#include "device/watchDownload.h"
#include "map/mapPages.h"
#include "map/trackOverlay.h"

#include <QByteArray>
#include <QDate>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

class DFView;
class MainWindow;
class MapView;
class QProgressBar;
class QPushButton;
class QTableView;
class dataControl;

/// What the controller works with besides the window.
struct ControllerContext {
  DeviceEnvironment device;
  std::shared_ptr<Dialogs> dialogs;
  MapSettings mapServices = configuredMapSettings();
  /// One step of the wait for the first load of the tables at start-up; six at most.
  std::chrono::milliseconds startUpStep{1000};
  /// Between handing over a run's points and reading its laps.
  std::chrono::milliseconds lapPause{1000};
};

/// The application's single controller: it owns the state that the window shows and offers the
/// window's commands.
///
/// Members and operations belong to the main thread unless they say otherwise. Threads compute into
/// values of their own and hand them over whole. The object must outlive every thread it started;
/// the program never destroys it.
class TrakkoAppDelegate : public QObject, public TableDataSource {
  Q_OBJECT

 public:
  explicit TrakkoAppDelegate(ControllerContext context);

  // Outlets, connected by the main window.
  MainWindow* window = nullptr;
  DFView* viewMonth = nullptr;
  QTableView* tView = nullptr;
  QTableView* lapView = nullptr;
  QTableView* pointView = nullptr;
  QPushButton* getDBu = nullptr;  ///< Hidden at start-up and never shown again.
  QProgressBar* progressBar = nullptr;
  MapView* theWebView = nullptr;
  StatusLine* statusLine = nullptr;  ///< What became of the last command, in one line.

  std::vector<tViewData> runViewData;
  std::vector<lViewData> lapViewData;
  PointRows pointViewData;
  QStringList runKArr;  ///< Run keys in the order of the runs table.
  RunDictionary runDic;
  LapDictionary lapDic;
  PointDictionary pointDic;
  QString breakPointStr;
  QString arrPointStr;  ///< Null until a first arrow pair was found; never cleared afterwards.
  double maxLat = 0;
  double minLat = 0;
  double maxLon = 0;
  double minLon = 0;
  qint64 currentNumber = 0;  ///< Activity number of the run shown, 0 when none.
  QString myTrackName;
  bool isAvailable = false;   ///< Selects the map page.
  bool checkInitMap = false;  ///< The map has been drawn once.

  // Flags between threads.
  std::atomic<qint32> getNewData{0};  ///< 1: the next refresh redraws the map, too.
  std::atomic<bool> checkStop{false};
  std::atomic<bool> checkFinishGetData{false};

  // Start-up and end, refreshes, messages (TrakkoAppDelegate.cpp).
  void awakeFromNib();
  void applicationDidFinishLaunching();
  /// Quits the program; always true.
  bool windowShouldClose();
  void windowDidResize();

  /// Body of a thread. `load` is the number of this load of the tables: what it brings counts only
  /// while it is the newest.
  void refreshData(int load);
  /// A message box with the text. Any thread; returns at once.
  void alertUSB(const QString& message);

  // Download (TrakkoAppDelegateDownload.cpp).
  void downloadDataBu();
  void downloadData();              ///< Body of a thread.
  void controlProgressIndicator();  ///< Body of a thread.

  // Deleting (TrakkoAppDelegateDelete.cpp).
  void deleteOneData();
  void deleteAllData();

  // Tables (TrakkoAppDelegateTables.cpp).
  void tableviewClick(int clickedRow);
  /// Makes the highlighted run the current one when it is not, as a click on it would: a row can be
  /// reached by dragging, by keys and by typing, too.
  void followSelection();
  /// Loads the runs of a period and the first one's laps and points; "" means all. Any thread: the
  /// results are handed to the main thread.
  void setViewData(const QString& start, const QString& endTimeStr);
  /// Rebuilds the rows of the current run's points from `pointDic`, on a thread of its own.
  void setPointView();
  /// Rebuilds the rows of the current run's laps from `runDic` and `lapDic`.
  void setLapView();
  void calltView(const QList<int>& rows);
  int numberOfRowsInTableView(const QTableView* table) const override;
  QString tableView(const QTableView* table, const QString& columnIdentifier,
                    int row) const override;
  void editColumn(const QString& identifier, const QString& title, QTableView* cTableView);
  /// Seconds of "HH:MM:SS".
  double trackTimeValue(const QString& time) const;
  /// Date of "yyyy-MM-dd", invalid when it does not parse.
  QDate strToDate(const QString& date) const;

  // Map (TrakkoAppDelegateMap.cpp).
  void setWebView(MapView* view);
  void webLoadStr();
  QString gethtmlStr() const;
  QString getGDHtmlStr() const;
  /// The page has loaded; nothing hangs on it.
  void webLoadComplete();
  void didReceiveTitle(const QString& title);
  /// The page was lost and loads again: the run is drawn once it is there.
  void pageReset();
  /// The page was lost for good; the user is told.
  void mapGaveUp();
  /// Draws the current run: reads it on a thread of its own, rebuilds its tables and calls the
  /// page.
  void displayMap();
  /// The point-array expression for the page, "" when the run has no usable point; reads the store
  /// on the calling (main) thread and rebuilds the tables.
  QString getGoogleMapStr(qint64 number);
  QString getGDMapStr(qint64 number);
  QString setGDMapPoly(const QString& polyStr, const QString& breakPoints) const;
  QString setMapPoly(const QString& polyStr, const QString& breakPoints) const;
  QString getZoom(double theMaxLat, double theMinLat, double theMaxLon, double theMinLon) const;
  double sumDist(double theLat1, double theLat2, double theLon1, double theLon2) const;
  double ConvertGDLat(double lat, double y) const;
  double ConvertGDLon(double lat, double y) const;
  double transFormLat(double x, double y) const;
  double transFormLon(double x, double y) const;

  // Exports (TrakkoAppDelegateFiles.cpp), backup and restore (TrakkoAppDelegateDatabase.cpp).
  void SaveTCXFile();
  void saveGPXFile();
  void BackupData();
  void RecoverData();
  /// Restores the database from the file `path`: after `question`, if there is one, or after one of
  /// its own when that is not one of this program's databases. Returns at once; the line at the
  /// bottom tells the result.
  void recoverFrom(const QString& path, const QString& question = {});
  /// The current run as a TCX document, whatever the number given; null when there is none.
  QByteArray convertTCX(qint64 number);
  QByteArray convertGPX(const QString& startStamp);
  void saveFile(const QByteArray& data, const QString& fileName, const QString& fileType);

 private:
  /// Stands for one choice of the current run. Results of a thread count only while the choice they
  /// were made for still holds.
  using Selection = std::shared_ptr<const int>;

  void startRefresh();
  void startRefreshOfNewData();
  void waitForFirstLoad(int counter);
  void loadTables(const QString& start, const QString& end, int load);
  void takeRuns(const RunDictionary& runs, const QStringList& keys, std::vector<tViewData> rows);
  void takePointRows(PointRows rows);
  void clearTables();
  void loadFailed(int load, bool ofNewData);
  void tellUnreadable(bool ofNewData);
  void takeDownload(const std::shared_ptr<WatchDownload>& download, const DownloadOutcome& outcome);
  void startProgress();
  void downloadEnded();
  void tellThreadFailures();
  void askToEraseWatch(WatchDownload& download);
  void showProgressValue(double value);
  void showStatus(const QString& line, Verdict verdict = Verdict::note);
  void report(const databaseFile::Result& result, const QString& done, const QString& failed);
  void askAndRestore(const QString& path, const QString& question, const QString& doubt);
  /// Whether a backup, a restore or a delete is under way; the user is told then.
  bool fileWorkRuns();
  /// Does `work` on a thread of its own, with `line` and how far it got shown meanwhile, and then
  /// `done` on the main thread.
  void startFileWork(const QString& line,
                     std::function<databaseFile::Result(const databaseFile::Watcher&)> work,
                     std::function<void(const databaseFile::Result&)> done);
  TrackRequest requestFor(qint64 number, bool google) const;
  QString trackNow(qint64 number, bool google);
  void takeTrack(LoadedTrack& track);
  void drawTrack(const QString& expression, bool failed);
  Selection choose();
  /// What is being read now no longer counts.
  void forgetLoads();
  PageSettings pageSettings() const;
  bool mayDelete();
  void startDelete(std::function<qint32(dataControl&)> work, std::function<void(qint32)> done);
  void oneDeleted(qint64 number, qint32 result);
  void allDeleted(qint32 result);
  void reportDeletion(qint32 result);

  ControllerContext context_;
  Selection selection_;
  std::vector<std::shared_ptr<WatchDownload>> downloads_;  ///< Those under way.
  int downloadsRunning_ = 0;
  bool progressRuns_ = false;
  RunLoader loader_;
  std::atomic<int> newestLoad_{0};  ///< Number of the newest load of the tables.
  bool fileWorkRuns_ = false;
  bool saysNoPositions_ = false;     ///< The status line says that a run has no positions.
  bool toldUnreadable_ = false;      ///< The user has seen a box that says so.
  bool pageAnswers_ = false;         ///< The page's script runs, whether or not it has a map yet.
  bool mapLoaded_ = false;           ///< The page has reported its map.
  std::atomic<int> shownValue_{-1};  ///< What the progress bar is about to show; -1 when it does.
};

#pragma once

#include "app/windowState.h"

#include <QMainWindow>
#include <QMap>
#include <QString>

#include <memory>

class ColumnFitter;
class ManyExport;
class QLabel;
class QPushButton;
class TrakkoAppDelegate;

namespace Ui {
class MainWindow;
}

/// The program's one window. It connects its parts to the controller and keeps nothing itself but
/// how they are arranged. It is never larger than what its screen has free.
///
/// MainWindow.cpp puts it together, MainWindowCommands.cpp holds its commands, keys and menus,
/// MainWindowLayout.cpp the sizes of its parts.
class MainWindow : public QMainWindow {
  Q_OBJECT

 public:
  /// `controller` must outlive the window. The map pane stays empty until setMapWidget().
  explicit MainWindow(TrakkoAppDelegate* controller);
  ~MainWindow() override;
  Q_DISABLE_COPY_MOVE(MainWindow)

  /// Puts the map into its pane; the window takes ownership.
  void setMapWidget(QWidget* map);
  /// Puts the profile into its pane, which is hidden until then; the window takes ownership.
  void setProfileWidget(QWidget* profile);
  /// Arranges the window as the file at `path` says and writes it there when the window is closed.
  /// Before the window is shown.
  void keepStateIn(const QString& path);

  bool eventFilter(QObject* watched, QEvent* event) override;

 protected:
  void closeEvent(QCloseEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  /// A database file may be dropped onto the window, to be restored.
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  void connectOutlets();
  void setUpTables();
  void connectCommands();
  void connectTables();
  void connectTotals();
  void addContextMenus();
  void showHint();
  void exportManyRuns();

  void arrangePanes();
  void arrangeHeights(int height);
  void fitScreen();
  void restore(const WindowState& state);
  WindowState state() const;

  TrakkoAppDelegate* controller_;
  std::unique_ptr<Ui::MainWindow> ui_;
  ManyExport* manyExport_ = nullptr;
  /// Hidden for good. No child of the window, where it would still be read out.
  std::unique_ptr<QPushButton> downloadButton_;
  QMap<QString, ColumnFitter*> columns_;  ///< Of the tables, by the names in the state file.
  QLabel* hint_;                          ///< What to do when there are no runs.
  qint64 pointsOf_ = 0;                   ///< The run whose points the table shows.
  bool releaseChose_ = false;             ///< The mouse button going up chose another run.
  bool heightsChosen_ = false;            ///< The user moved the panes on the right.
  QString statePath_;                     ///< Null: nothing is kept.
};

#pragma once

#include <QMainWindow>

#include <memory>

class TrakkoAppDelegate;

namespace Ui {
class MainWindow;
}

/// The program's one window. It connects its parts to the controller and keeps nothing itself.
class MainWindow : public QMainWindow {
  Q_OBJECT

 public:
  /// `controller` must outlive the window. The map pane stays empty until setMapWidget().
  explicit MainWindow(TrakkoAppDelegate* controller);
  ~MainWindow() override;

  /// Puts the map into its pane; the window takes ownership.
  void setMapWidget(QWidget* map);
  /// Puts the profile into its pane, which is hidden until then; the window takes ownership.
  void setProfileWidget(QWidget* profile);

 protected:
  void closeEvent(QCloseEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void connectOutlets();
  void connectCommands();
  void arrangePanes();

  TrakkoAppDelegate* controller_;
  std::unique_ptr<Ui::MainWindow> ui_;
};

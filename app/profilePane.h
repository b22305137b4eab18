#pragma once

#include "web/profileView.h"

#include <QWidget>

#include <memory>

class QCheckBox;
class QLabel;
class QPushButton;

/// The pane with the profile of a run: the curve and, above it, what is shown of it. Main thread.
class ProfilePane : public QWidget {
  Q_OBJECT

 public:
  /// `engine` comes from makeWebEngine(), or from the map so that both share a process.
  ProfilePane(std::shared_ptr<QWebEngineProfile> engine, std::shared_ptr<Messenger> messenger);

  /// Shows a run, or that none is chosen when it is null. What the run lacks is said in one line.
  void showRun(const std::shared_ptr<const RunProfile>& run);

  ProfileView* const view;

 private:
  QWidget* makeControls();
  QCheckBox* addCurve(const QString& name);
  void curvesChosen();
  void showColours();

  QCheckBox* pace_;
  QCheckBox* heartRate_;
  QCheckBox* altitude_;
  QLabel* note_;
  QPushButton* whole_;
};

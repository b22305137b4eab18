#pragma once

#include "stats/profileCurve.h"
#include "web/webPageHost.h"

#include <QColor>
#include <QJsonObject>
#include <QTimer>

#include <memory>
#include <utility>

/// The curve of a run on a page of the program's own. Main thread.
///
/// The view holds the run and decides what is seen of it; the page gets numbers to draw, in the
/// resolution of the screen, and tells what the user does.
class ProfileView : public WebPageHost {
  Q_OBJECT

 public:
  /// Which curves are drawn, as far as the run has them.
  struct Curves {
    bool pace = true;
    bool heartRate = true;
    bool altitude = true;
  };

  /// The colours of the curves.
  struct Colours {
    QColor pace;
    QColor heartRate;
    QColor altitude;
  };

  /// `engine` comes from makeWebEngine(), or from the map so that both share a process.
  ProfileView(std::shared_ptr<QWebEngineProfile> engine, std::shared_ptr<Messenger> messenger);

  /// As the palette in use asks for: light or dark.
  Colours colours() const;

  /// Shows the whole of a run, without a cursor; one without points leaves the page empty. Of a run
  /// with the points that are shown already, the stretch in view and the cursor stay.
  void showRun(std::shared_ptr<const RunProfile> run);
  void showCurves(Curves curves);
  /// Keeps the stretch that is shown, and the cursor.
  void showAxis(ProfileAxis axis);
  /// Shows the whole run again.
  void zoomOut();
  /// Puts the cursor on a point and brings it into sight; -1 takes the cursor away.
  void pointTo(int row);
  /// Marks the points from `first` up to, but not including, `end`; none when these are the same.
  void markStretch(int first, int end);

 Q_SIGNALS:
  /// The user put the cursor on a point, or it stayed there in a run that is shown anew; -1 when it
  /// was taken away.
  void pointed(int row);
  /// Whether only a part of the run is shown.
  void zoomed(bool isPart);
  /// The palette, and with it the colours, or the font have changed.
  void lookChanged();

 protected:
  void changeEvent(QEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  void startPage();
  void take(const QString& title);
  void call(const QString& function, const QJsonValue& argument);
  void sendLook();
  void sendRun();
  void sendCursor();
  void sendStretch();
  void step(int by);
  void putCursor(int row);
  void showWindow(double from, double to);
  /// The places of the run's first and last point.
  std::pair<double, double> whole() const;
  const ProfilePoint& point(int row) const;

  std::shared_ptr<const RunProfile> run_;
  Curves curves_;
  ProfileAxis axis_ = ProfileAxis::Distance;
  std::pair<double, double> window_;
  std::pair<int, int> stretch_;
  int cursor_ = -1;
  int lastCursor_ = -1;  ///< Where the keys go on from.
  QTimer resized_;
};

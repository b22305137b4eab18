#pragma once

#include "base/messenger.h"
#include "map/mapSettings.h"
#include "web/mapView.h"
#include "web/pageCalls.h"

#include <QElapsedTimer>
#include <QTimer>
#include <QWebEngineView>

#include <memory>

class MapRequestInterceptor;
class MapSchemeHandler;
class MapWebPage;
class QTemporaryFile;
class QWebEngineProfile;

/// Makes the program's own answers known to the web engine. Main thread, before the application
/// object exists.
void registerMapScheme();

/// The folder where map tiles are kept between sessions.
QString mapCacheFolder();

/// The map page in the web engine. Main thread.
///
/// A page may be of any length; one of more than about 600,000 characters must bring its own base
/// address. When the engine's process dies, the page is loaded again by itself; what was called but
/// not carried out by then is forgotten, its `done` is never called, and pageReset() tells that the
/// page begins anew.
class WebMapView : public QWebEngineView, public MapView {
  Q_OBJECT

 public:
  /// The page's alerts go to `messenger`. Nothing is kept on disk when `cacheFolder` is null.
  explicit WebMapView(const std::shared_ptr<Messenger>& messenger,
                      const MapSettings& services = configuredMapSettings(),
                      const QString& cacheFolder = mapCacheFolder());
  ~WebMapView() override;
  Q_DISABLE_COPY_MOVE(WebMapView)

  void loadPage(const QString& html, const QUrl& baseUrl) override;
  void evaluate(const QString& script, std::function<void()> done = {}) override;
  void callFunction(const QString& name, const QStringList& arguments,
                    std::function<void()> done = {}) override;

 Q_SIGNALS:
  /// The page set its title.
  void titleReceived(const QString& title);
  /// The page was lost and is being loaded again, unless gaveUp() follows.
  void pageReset();
  /// The page was lost again and again without coming up; only loadPage() brings one back.
  void gaveUp();

 private:
  void load();
  void comeBack();

  QString html_;
  QUrl baseUrl_;
  std::unique_ptr<QTemporaryFile> pageFile_;
  QElapsedTimer lastLoss_;
  QTimer reloading_;
  int losses_ = 0;  ///< Since the page last came up.
  // Each of these uses the ones above it to its very end.
  std::unique_ptr<MapRequestInterceptor> interceptor_;
  std::unique_ptr<MapSchemeHandler> handler_;
  std::unique_ptr<QWebEngineProfile> profile_;
  std::unique_ptr<MapWebPage> page_;
  PageCalls calls_;
};

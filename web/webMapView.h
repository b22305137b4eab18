#pragma once

#include "map/mapSettings.h"
#include "web/mapView.h"
#include "web/webPageHost.h"

#include <memory>

class MapRequestRules;
class MapSchemeHandler;

/// Makes the program's own answers known to the web engine. Main thread, before the application
/// object exists.
void registerMapScheme();

/// The folder where map tiles are kept between sessions.
QString mapCacheFolder();

/// The map page in the web engine. Main thread.
class WebMapView : public WebPageHost, public MapView {
  Q_OBJECT

 public:
  /// The page's alerts go to `messenger`. Nothing is kept on disk when `cacheFolder` is null.
  explicit WebMapView(const std::shared_ptr<Messenger>& messenger,
                      const MapSettings& services = configuredMapSettings(),
                      const QString& cacheFolder = mapCacheFolder());
  ~WebMapView() override;
  Q_DISABLE_COPY_MOVE(WebMapView)

  void loadPage(const QString& html, const QUrl& baseUrl) override;
  void evaluate(const QString& script) override;
  void callFunction(const QString& name, const QStringList& arguments) override;

 private:
  WebMapView(const std::shared_ptr<Messenger>& messenger, const MapSettings& services,
             const QString& cacheFolder, const std::shared_ptr<MapRequestRules>& rules);

  std::shared_ptr<MapRequestRules> rules_;
  MapSchemeHandler* handler_;
};

#include "web/webMapView.h"

#include "web/mapRequestRules.h"
#include "web/mapSchemeHandler.h"
#include "web/webEngine.h"

#include <QStandardPaths>
#include <QWebEngineUrlScheme>

using namespace Qt::StringLiterals;

void registerMapScheme() {
  QWebEngineUrlScheme scheme(mapScheme);
  scheme.setSyntax(QWebEngineUrlScheme::Syntax::Path);
  // What the program itself answers is allowed whatever the page's policy says of other addresses.
  scheme.setFlags(QWebEngineUrlScheme::SecureScheme | QWebEngineUrlScheme::CorsEnabled |
                  QWebEngineUrlScheme::ContentSecurityPolicyIgnored);
  QWebEngineUrlScheme::registerScheme(scheme);
}

QString mapCacheFolder() {
  return QStandardPaths::writableLocation(QStandardPaths::CacheLocation) + u"/map"_s;
}

WebMapView::WebMapView(const std::shared_ptr<Messenger>& messenger, const MapSettings& services,
                       const QString& cacheFolder)
    : WebMapView(messenger, services, cacheFolder, std::make_shared<MapRequestRules>(services)) {}

WebMapView::WebMapView(const std::shared_ptr<Messenger>& messenger, const MapSettings& services,
                       const QString& cacheFolder, const std::shared_ptr<MapRequestRules>& rules)
    : WebPageHost(makeWebEngine(cacheFolder), messenger, rules),
      rules_(rules),
      // The engine may ask to its very end.
      handler_(new MapSchemeHandler(services.tileAddress, engine().get())) {
  engine()->installUrlSchemeHandler(mapScheme, handler_);
  setAccessibleName(u"地図"_s);
}

WebMapView::~WebMapView() = default;

void WebMapView::loadPage(const QString& html, const QUrl& baseUrl) {
  const QString folder = baseUrl.isLocalFile() ? baseUrl.toLocalFile() : QString();
  rules_->imageFolder = folder;
  handler_->imageFolder = folder;
  WebPageHost::loadPage(html, baseUrl);
}

void WebMapView::evaluate(const QString& script) {
  WebPageHost::evaluate(script);
}

void WebMapView::callFunction(const QString& name, const QStringList& arguments) {
  WebPageHost::callFunction(name, arguments);
}

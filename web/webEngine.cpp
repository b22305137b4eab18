#include "web/webEngine.h"

#include <QCoreApplication>
#include <QLoggingCategory>
#include <QWebEngineDownloadRequest>

Q_LOGGING_CATEGORY(lcWebEngine, "trakko.web", QtInfoMsg)

namespace {

using namespace Qt::StringLiterals;

constexpr int cacheSize = 100'000'000;  // bytes

std::shared_ptr<QWebEngineProfile> makeProfile(const QString& cacheFolder) {
  if (cacheFolder.isNull()) {
    return std::make_shared<QWebEngineProfile>();
  }
  auto profile = std::make_shared<QWebEngineProfile>(u"map"_s);
  profile->setCachePath(cacheFolder);
  profile->setPersistentStoragePath(cacheFolder + u"/storage"_s);
  profile->setHttpCacheType(QWebEngineProfile::DiskHttpCache);
  profile->setHttpCacheMaximumSize(cacheSize);
  profile->setPersistentCookiesPolicy(QWebEngineProfile::NoPersistentCookies);
  return profile;
}

/// Servers are told which program asks.
QString userAgent(const QString& engine) {
  const QString version = QCoreApplication::applicationVersion();
  return engine + u" Trakko/"_s + (version.isEmpty() ? u"1.0"_s : version);
}

}  // namespace

void setUpWebEngine() {
  const char* const flags = "QTWEBENGINE_CHROMIUM_FLAGS";
  qputenv(flags, qgetenv(flags) +
                     " --renderer-process-limit=1"
                     " --force-webrtc-ip-handling-policy=disable_non_proxied_udp"
                     " --disable-blink-features=WebTransport");
}

std::shared_ptr<QWebEngineProfile> makeWebEngine(const QString& cacheFolder) {
  auto engine = makeProfile(cacheFolder);
  engine->setHttpUserAgent(userAgent(engine->httpUserAgent()));
  QObject::connect(engine.get(), &QWebEngineProfile::downloadRequested, engine.get(),
                   [](QWebEngineDownloadRequest* download) {
                     qCWarning(lcWebEngine) << "not saved:" << download->suggestedFileName();
                     download->cancel();
                   });
  return engine;
}

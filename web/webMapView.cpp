#include "web/webMapView.h"

#include "web/mapRequestInterceptor.h"
#include "web/mapSchemeHandler.h"
#include "web/mapWebPage.h"
#include "web/scriptText.h"

#include <QCoreApplication>
#include <QDir>
#include <QLoggingCategory>
#include <QStandardPaths>
#include <QTemporaryFile>
#include <QWebEngineProfile>
#include <QWebEngineUrlScheme>

#include <chrono>
#include <utility>

Q_LOGGING_CATEGORY(lcWebMap, "trakko.map", QtInfoMsg)

namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

/// The engine takes a page directly as an address of at most 2 MB, in which a byte may need three.
constexpr qsizetype longestDirectPage = 600'000;
constexpr auto restlessTime = 10s;
constexpr auto pauseOfRestless = 5s;
constexpr int mostLosses = 5;           // of a page that does not come up in between
constexpr int cacheSize = 100'000'000;  // bytes

std::unique_ptr<QWebEngineProfile> makeProfile(const QString& cacheFolder) {
  if (cacheFolder.isNull()) {
    return std::make_unique<QWebEngineProfile>();
  }
  auto profile = std::make_unique<QWebEngineProfile>(u"map"_s);
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
    : interceptor_(std::make_unique<MapRequestInterceptor>(services)),
      handler_(std::make_unique<MapSchemeHandler>(services.tileAddress)),
      profile_(makeProfile(cacheFolder)),
      page_(std::make_unique<MapWebPage>(profile_.get(), messenger, interceptor_->rules)),
      calls_([this](const QString& script, const std::function<void()>& finished) {
        page_->runJavaScript(script, [finished](const QVariant& /*result*/) { finished(); });
      }) {
  profile_->setHttpUserAgent(userAgent(profile_->httpUserAgent()));
  profile_->setUrlRequestInterceptor(interceptor_.get());
  profile_->installUrlSchemeHandler(mapScheme, handler_.get());
  setContextMenuPolicy(Qt::NoContextMenu);
  setAccessibleName(u"地図"_s);
  setPage(page_.get());
  connect(page_.get(), &MapWebPage::ready, this, [this] { calls_.start(); });
  connect(page_.get(), &MapWebPage::titleChanged, this, [this](const QString& title) {
    // The engine makes up the title of a page that has not set its own yet.
    if (title != page_->url().toString() && !title.startsWith(u"data:")) {
      if (title == u"Map Load OK") {
        losses_ = 0;
      }
      Q_EMIT titleReceived(title);
    }
  });
  connect(page_.get(), &MapWebPage::renderProcessTerminated, this, &WebMapView::comeBack);
  reloading_.setSingleShot(true);
  connect(&reloading_, &QTimer::timeout, this, &WebMapView::load);
}

WebMapView::~WebMapView() {
  page_->disconnect(this);
  setPage(nullptr);  // the view's own destruction, later than the page's, must not meet it
}

void WebMapView::loadPage(const QString& html, const QUrl& baseUrl) {
  html_ = html;
  baseUrl_ = baseUrl;
  losses_ = 0;
  load();
}

void WebMapView::load() {
  reloading_.stop();
  calls_.reset();
  const QString folder = baseUrl_.isLocalFile() ? baseUrl_.toLocalFile() : QString();
  interceptor_->rules.imageFolder = folder;
  handler_->imageFolder = folder;
  page_->expectPage();
  const QByteArray bytes = html_.toUtf8();
  if (bytes.size() <= longestDirectPage) {
    pageFile_.reset();
    interceptor_->rules.pageFile.clear();
    page_->setHtml(html_, baseUrl_);
    return;
  }
  pageFile_ = std::make_unique<QTemporaryFile>(QDir::tempPath() + u"/XXXXXX.html"_s);
  if (!pageFile_->open() || pageFile_->write(bytes) != bytes.size() || !pageFile_->flush()) {
    qCWarning(lcWebMap).noquote() << "The map page cannot be written:" << pageFile_->errorString();
    return;
  }
  interceptor_->rules.pageFile = pageFile_->fileName();
  page_->load(QUrl::fromLocalFile(pageFile_->fileName()));
}

void WebMapView::comeBack() {
  calls_.reset();
  Q_EMIT pageReset();
  if (++losses_ >= mostLosses) {
    qCWarning(lcWebMap, "The map's process keeps ending; the page is given up");
    reloading_.stop();
    Q_EMIT gaveUp();
    return;
  }
  qCWarning(lcWebMap, "The map's process has ended; the page is loaded again");
  // A page that keeps dying must not keep the machine busy.
  const bool restless =
      lastLoss_.isValid() && !lastLoss_.hasExpired(std::chrono::milliseconds(restlessTime).count());
  lastLoss_.start();
  reloading_.start(restless ? pauseOfRestless : 0s);
}

void WebMapView::evaluate(const QString& script, std::function<void()> done) {
  calls_.add(script, std::move(done));
}

void WebMapView::callFunction(const QString& name, const QStringList& arguments,
                              std::function<void()> done) {
  calls_.add(scriptCall(name, arguments), std::move(done));
}

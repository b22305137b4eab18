#include "web/mapWebPage.h"

#include "web/scriptText.h"

#include <QDesktopServices>
#include <QFile>
#include <QLoggingCategory>
#include <QWebEngineScript>
#include <QWebEngineScriptCollection>
#include <QWebEngineSettings>

#include <utility>

Q_LOGGING_CATEGORY(lcMapPage, "trakko.map.page", QtInfoMsg)

namespace {

using namespace Qt::StringLiterals;

void openOutside(const QUrl& url) {
  if (url.scheme() == u"http" || url.scheme() == u"https") {
    QDesktopServices::openUrl(url);
  }
}

/// A window that the page opens: it only learns its address, which goes to the user's browser.
class LinkPage : public QWebEnginePage {
 public:
  using QWebEnginePage::QWebEnginePage;

 protected:
  bool acceptNavigationRequest(const QUrl& url, NavigationType /*type*/,
                               bool /*isMainFrame*/) override {
    openOutside(url);
    deleteLater();
    return false;
  }
};

void restrict(QWebEngineSettings& settings) {
  // The page stands on a file address, for the images' sake, and needs the services all the same.
  settings.setAttribute(QWebEngineSettings::LocalContentCanAccessRemoteUrls, true);
  settings.setAttribute(QWebEngineSettings::ErrorPageEnabled, false);
  settings.setAttribute(QWebEngineSettings::FocusOnNavigationEnabled, false);
  settings.setAttribute(QWebEngineSettings::LocalStorageEnabled, false);
  settings.setAttribute(QWebEngineSettings::NavigateOnDropEnabled, false);
  settings.setAttribute(QWebEngineSettings::PdfViewerEnabled, false);
  settings.setAttribute(QWebEngineSettings::PluginsEnabled, false);
}

/// Runs beside the page's own scripts, out of their reach.
QWebEngineScript watcher(const QString& readyWord) {
  QFile file(u":/map/pageWatcher.js"_s);
  if (!file.open(QIODevice::ReadOnly)) {
    qFatal("The program was built without the page's watcher");
  }
  QWebEngineScript script;
  script.setSourceCode(QString::fromUtf8(file.readAll()) + scriptCall(u"watchPage"_s, {readyWord}));
  script.setInjectionPoint(QWebEngineScript::DocumentCreation);
  script.setWorldId(QWebEngineScript::ApplicationWorld);
  return script;
}

}  // namespace

MapWebPage::MapWebPage(QWebEngineProfile* profile, std::shared_ptr<Messenger> messenger,
                       const MapRequestRules& rules)
    : QWebEnginePage(profile), messenger_(std::move(messenger)), rules_(rules) {
  restrict(*settings());
}

void MapWebPage::expectPage() {
  readyWord_ = u"trakko: page %1 is ready"_s.arg(++pages_);
  scripts().clear();
  scripts().insert(watcher(readyWord_));
}

bool MapWebPage::acceptNavigationRequest(const QUrl& url, NavigationType type, bool isMainFrame) {
  if (!isMainFrame) {
    return rules_.decide(url).kind == MapRequestDecision::Kind::Allow || url.scheme() == u"about";
  }
  if (type == NavigationTypeLinkClicked) {
    openOutside(url);
    return false;
  }
  // "Typed" is what the program itself loads.
  return type == NavigationTypeTyped;
}

QWebEnginePage* MapWebPage::createWindow(WebWindowType /*type*/) {
  return new LinkPage(profile(), this);
}

void MapWebPage::javaScriptAlert(const QUrl& /*origin*/, const QString& text) {
  messenger_->message(text);
}

// The page asks nothing.
bool MapWebPage::javaScriptConfirm(const QUrl& /*origin*/, const QString& /*text*/) {
  return false;
}

bool MapWebPage::javaScriptPrompt(const QUrl& /*origin*/, const QString& /*text*/,
                                  const QString& /*preset*/, QString* /*answer*/) {
  return false;
}

void MapWebPage::javaScriptConsoleMessage(JavaScriptConsoleMessageLevel level, const QString& text,
                                          int line, const QString& source) {
  if (text == readyWord_) {
    Q_EMIT ready();
  } else if (level == InfoMessageLevel) {
    qCDebug(lcMapPage).noquote() << text;
  } else {
    qCWarning(lcMapPage).noquote().nospace() << text << " (" << source << ':' << line << ')';
  }
}

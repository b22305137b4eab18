#include "web/hostedPage.h"

#include "base/resource.h"
#include "web/scriptText.h"

#include <QDesktopServices>
#include <QLoggingCategory>
#include <QTimer>
#include <QWebEngineScript>
#include <QWebEngineScriptCollection>
#include <QWebEngineSettings>

#include <chrono>
#include <utility>

Q_LOGGING_CATEGORY(lcPage, "trakko.web.page", QtInfoMsg)

namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

constexpr auto reachOfAction = 1s;
constexpr auto lifeOfLink = 1s;
constexpr size_t mostBoxes = 5;  // at a time
constexpr auto timeOfBoxes = 60s;
constexpr qsizetype longestText = 500;  // of a box or a line of the log

QString shortened(const QString& text) {
  return text.size() <= longestText ? text : text.first(longestText) + u'…';
}

void openOutside(const QUrl& url) {
  if (url.scheme() == u"http" || url.scheme() == u"https") {
    QDesktopServices::openUrl(url);
  }
}

void restrict(QWebEngineSettings& settings) {
  // A page stands on a file address, for its images' sake, and may need servers all the same.
  settings.setAttribute(QWebEngineSettings::LocalContentCanAccessRemoteUrls, true);
  settings.setAttribute(QWebEngineSettings::ErrorPageEnabled, false);
  settings.setAttribute(QWebEngineSettings::FocusOnNavigationEnabled, false);
  settings.setAttribute(QWebEngineSettings::JavascriptCanOpenWindows, false);
  settings.setAttribute(QWebEngineSettings::LocalStorageEnabled, false);
  settings.setAttribute(QWebEngineSettings::NavigateOnDropEnabled, false);
  settings.setAttribute(QWebEngineSettings::PdfViewerEnabled, false);
  settings.setAttribute(QWebEngineSettings::PluginsEnabled, false);
  settings.setUnknownUrlSchemePolicy(QWebEngineSettings::DisallowUnknownUrlSchemes);
}

/// A window that the page opens: it only learns its address, which goes to the user's browser. It
/// is gone soon, since a page may open one without an address, and runs no scripts: those that
/// guard a page are not in it.
class LinkPage : public QWebEnginePage {
 public:
  LinkPage(QWebEngineProfile* profile, QObject* parent) : QWebEnginePage(profile, parent) {
    restrict(*settings());
    settings()->setAttribute(QWebEngineSettings::JavascriptEnabled, false);
    QTimer::singleShot(lifeOfLink, this, &QObject::deleteLater);
  }

 protected:
  bool acceptNavigationRequest(const QUrl& url, NavigationType /*type*/,
                               bool /*isMainFrame*/) override {
    openOutside(url);
    deleteLater();
    return false;
  }
};

/// Runs beside the page's own scripts, out of their reach.
QWebEngineScript watcher(const QString& readyWord, const QString& html) {
  QWebEngineScript script;
  script.setSourceCode(QString::fromUtf8(resource(u":/web/pageWatcher.js"_s)) +
                       scriptCall(u"watchPage"_s, {readyWord, html}));
  script.setInjectionPoint(QWebEngineScript::DocumentCreation);
  script.setWorldId(QWebEngineScript::ApplicationWorld);
  return script;
}

QWebEngineScript connectionGuard() {
  QWebEngineScript script;
  script.setSourceCode(QString::fromUtf8(resource(u":/web/connectionGuard.js"_s)));
  script.setInjectionPoint(QWebEngineScript::DocumentCreation);
  script.setWorldId(QWebEngineScript::MainWorld);
  script.setRunsOnSubFrames(true);
  return script;
}

}  // namespace

HostedPage::HostedPage(QWebEngineProfile* profile, std::shared_ptr<Messenger> messenger,
                       std::shared_ptr<const RequestRules> rules)
    : QWebEnginePage(profile), messenger_(std::move(messenger)), rules_(std::move(rules)) {
  restrict(*settings());
}

void HostedPage::expectPage(const QString& html) {
  readyWord_ = u"trakko: page %1 is ready"_s.arg(++pages_);
  scripts().clear();
  scripts().insert({watcher(readyWord_, html), connectionGuard()});
}

void HostedPage::userActed() {
  actionOfUser_.setRemainingTime(reachOfAction);
}

bool HostedPage::acceptNavigationRequest(const QUrl& url, NavigationType type, bool isMainFrame) {
  if (!isMainFrame) {
    return rules_->decide(url).kind == RequestDecision::Kind::Allow || url.scheme() == u"about";
  }
  if (type == NavigationTypeLinkClicked) {
    if (!actionOfUser_.hasExpired()) {
      openOutside(url);
    }
    return false;
  }
  // "Typed" is what the program itself loads.
  return type == NavigationTypeTyped;
}

QWebEnginePage* HostedPage::createWindow(WebWindowType /*type*/) {
  return actionOfUser_.hasExpired() ? nullptr : new LinkPage(profile(), this);
}

// No page of the program's reads a file.
QStringList HostedPage::chooseFiles(FileSelectionMode /*mode*/, const QStringList& /*oldFiles*/,
                                    const QStringList& /*acceptedMimeTypes*/) {
  return {};
}

void HostedPage::javaScriptAlert(const QUrl& /*origin*/, const QString& text) {
  if (takeTurnOfBox()) {
    messenger_->message(shortened(text));
  } else {
    qCWarning(lcPage).noquote() << "not shown:" << shortened(text);
  }
}

bool HostedPage::takeTurnOfBox() {
  while (!boxes_.empty() && boxes_.front().hasExpired()) {
    boxes_.pop_front();
  }
  if (boxes_.size() >= mostBoxes) {
    return false;
  }
  boxes_.emplace_back(timeOfBoxes);
  return true;
}

// The page asks nothing.
bool HostedPage::javaScriptConfirm(const QUrl& /*origin*/, const QString& /*text*/) {
  return false;
}

bool HostedPage::javaScriptPrompt(const QUrl& /*origin*/, const QString& /*text*/,
                                  const QString& /*preset*/, QString* /*answer*/) {
  return false;
}

void HostedPage::javaScriptConsoleMessage(JavaScriptConsoleMessageLevel level, const QString& text,
                                          int line, const QString& source) {
  if (text == readyWord_) {
    Q_EMIT ready();
  } else if (level == InfoMessageLevel) {
    qCDebug(lcPage).noquote() << shortened(text);
  } else {
    qCWarning(lcPage).noquote().nospace()
        << shortened(text) << " (" << shortened(source) << ':' << line << ')';
  }
}

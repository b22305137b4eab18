#include "web/webPageHost.h"

#include "web/hostedPage.h"
#include "web/requestInterceptor.h"
#include "web/scriptText.h"

#include <QChildEvent>
#include <QLabel>
#include <QLoggingCategory>
#include <QWebEngineProfile>

#include <chrono>
#include <utility>

Q_LOGGING_CATEGORY(lcPageHost, "trakko.web", QtInfoMsg)

namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

constexpr auto patience = 20s;  // with a page that does not come up
constexpr auto restlessTime = 10s;
constexpr auto pauseOfRestless = 5s;
constexpr auto calmTime = 60s;  // a loss after that long has nothing to do with the one before
constexpr int mostLosses = 5;

}  // namespace

WebPageHost::WebPageHost(std::shared_ptr<QWebEngineProfile> engine,
                         std::shared_ptr<Messenger> messenger,
                         const std::shared_ptr<const RequestRules>& rules)
    : engine_(std::move(engine)),
      interceptor_(std::make_unique<RequestInterceptor>(rules)),
      page_(std::make_unique<HostedPage>(engine_.get(), std::move(messenger), rules)),
      lostNote_(new QLabel(u"表示できません。プログラムを再起動して下さい。"_s, this)) {
  page_->setUrlRequestInterceptor(interceptor_.get());
  setContextMenuPolicy(Qt::NoContextMenu);
  setPage(page_.get());
  lostNote_->setAlignment(Qt::AlignCenter);
  lostNote_->setWordWrap(true);
  lostNote_->setAutoFillBackground(true);
  lostNote_->hide();
  connect(page_.get(), &HostedPage::ready, this, &WebPageHost::pageReady);
  connect(page_.get(), &HostedPage::titleChanged, this, [this](const QString& title) {
    // The engine makes up the title of a page that has not set its own yet.
    if (title != page_->url().toString() && !title.startsWith(u"data:")) {
      Q_EMIT titleReceived(title);
    }
  });
  connect(page_.get(), &HostedPage::renderProcessTerminated, this,
          [this] { comeBack("its process has ended"); });
  // The engine asks before a page leaves, but not for each address ("about:blank").
  connect(page_.get(), &HostedPage::urlChanged, this, [this](const QUrl& url) {
    if (isThere_ && !url.matches(address_, QUrl::RemoveFragment)) {
      comeBack("it has left");
    }
  });
  patience_.setSingleShot(true);
  connect(&patience_, &QTimer::timeout, this, [this] { comeBack("it does not come up"); });
  reloading_.setSingleShot(true);
  connect(&reloading_, &QTimer::timeout, this, &WebPageHost::load);
}

WebPageHost::~WebPageHost() {
  page_->disconnect(this);
  setPage(nullptr);  // the view's own destruction, later than the page's, must not meet it
}

void WebPageHost::loadPage(const QString& html, const QUrl& baseUrl) {
  html_ = html;
  baseUrl_ = baseUrl;
  losses_ = 0;
  waiting_.clear();
  lostNote_->hide();
  load();
}

void WebPageHost::load() {
  reloading_.stop();
  isThere_ = false;
  patience_.start(patience);
  page_->expectPage(html_);
  page_->setHtml(html_, baseUrl_);
}

void WebPageHost::pageReady() {
  if (isThere_ || !patience_.isActive()) {
    return;  // another document that came into the page's place
  }
  patience_.stop();
  isThere_ = true;
  address_ = page_->url();
  for (const QString& script : std::exchange(waiting_, {})) {
    page_->runJavaScript(script);
  }
}

void WebPageHost::comeBack(const char* reason) {
  patience_.stop();
  isThere_ = false;
  waiting_.clear();
  Q_EMIT pageReset();
  const auto lately = [this](std::chrono::milliseconds time) {
    return lastLoss_.isValid() && !lastLoss_.hasExpired(time.count());
  };
  losses_ = lately(calmTime) ? losses_ + 1 : 1;
  if (losses_ >= mostLosses) {
    qCWarning(lcPageHost, "The page is given up: %s", reason);
    reloading_.stop();
    lostNote_->show();
    lostNote_->raise();
    Q_EMIT gaveUp();
    return;
  }
  qCWarning(lcPageHost, "The page is loaded again: %s", reason);
  // A page that keeps dying must not keep the machine busy.
  const bool restless = lately(restlessTime);
  lastLoss_.start();
  reloading_.start(restless ? pauseOfRestless : 0s);
}

void WebPageHost::evaluate(const QString& script) {
  if (isThere_) {
    page_->runJavaScript(script);
  } else if (lostNote_->isHidden()) {  // nothing waits for a page that was given up
    waiting_.append(script);
  }
}

void WebPageHost::callFunction(const QString& name, const QStringList& arguments) {
  evaluate(scriptCall(name, arguments));
}

bool WebPageHost::event(QEvent* event) {
  if (event->type() == QEvent::ChildAdded) {
    // The engine takes the user's input in a widget of its own, and a new one for a new process.
    static_cast<QChildEvent*>(event)->child()->installEventFilter(this);
  }
  return QWebEngineView::event(event);
}

bool WebPageHost::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::MouseButtonRelease || event->type() == QEvent::KeyPress ||
      event->type() == QEvent::TouchEnd) {
    page_->userActed();
  }
  return QWebEngineView::eventFilter(watched, event);
}

void WebPageHost::resizeEvent(QResizeEvent* event) {
  QWebEngineView::resizeEvent(event);
  lostNote_->resize(size());
}

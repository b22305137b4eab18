#pragma once

#include "base/messenger.h"
#include "web/requestRules.h"

#include <QElapsedTimer>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <QUrl>
#include <QWebEngineView>

#include <memory>

class HostedPage;
class QLabel;
class RequestInterceptor;

/// A page of the program's own in the web engine. Main thread.
///
/// Calls into the page are carried out strictly in the order in which they were made, none before
/// the page's document is there. A page that is lost, because the engine's process died, because it
/// does not come up or because it left for another address, is loaded again by itself; what was
/// called but not carried out by then is forgotten, and pageReset() tells that the page begins
/// anew.
class WebPageHost : public QWebEngineView {
  Q_OBJECT

 public:
  /// `engine` comes from makeWebEngine() or from another host. The page's alerts go to `messenger`;
  /// what it may load is for `rules` to say.
  WebPageHost(std::shared_ptr<QWebEngineProfile> engine, std::shared_ptr<Messenger> messenger,
              const std::shared_ptr<const RequestRules>& rules);
  ~WebPageHost() override;
  Q_DISABLE_COPY_MOVE(WebPageHost)

  const std::shared_ptr<QWebEngineProfile>& engine() const { return engine_; }

  /// Loads a page from its text, at most 600,000 bytes; relative addresses are taken from
  /// `baseUrl`.
  void loadPage(const QString& html, const QUrl& baseUrl);
  /// Evaluates a script in the page.
  void evaluate(const QString& script);
  /// Calls a function of the page with texts as arguments, quoted so that no text becomes script.
  void callFunction(const QString& name, const QStringList& arguments);

 Q_SIGNALS:
  /// The page set its title.
  void titleReceived(const QString& title);
  /// The page was lost and is being loaded again, unless gaveUp() follows.
  void pageReset();
  /// The page was lost again and again, and a note stands in its place; only loadPage() brings one
  /// back.
  void gaveUp();

 protected:
  bool event(QEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  void load();
  void pageReady();
  void comeBack(const char* reason);

  // Each of these uses the ones above it to its very end.
  std::shared_ptr<QWebEngineProfile> engine_;
  std::unique_ptr<RequestInterceptor> interceptor_;
  std::unique_ptr<HostedPage> page_;

  QString html_;
  QUrl baseUrl_;
  QUrl address_;         ///< Of the page that is there; empty while none is.
  QStringList waiting_;  ///< Scripts for the page that is being loaded.
  bool isThere_ = false;
  QTimer patience_;  ///< With a page that is being loaded.
  QTimer reloading_;
  QElapsedTimer lastLoss_;
  int losses_ = 0;  ///< In a row.
  QLabel* lostNote_;
};

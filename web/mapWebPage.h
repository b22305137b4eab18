#pragma once

#include "base/messenger.h"
#include "web/mapRequestRules.h"

#include <QWebEnginePage>

#include <memory>

/// The engine's page as the map needs it: it shows what the program loads and goes nowhere else,
/// links open in the user's browser, and its alerts are the program's message boxes. Main thread.
class MapWebPage : public QWebEnginePage {
  Q_OBJECT

 public:
  /// `rules` must outlive the page.
  MapWebPage(QWebEngineProfile* profile, std::shared_ptr<Messenger> messenger,
             const MapRequestRules& rules);

  /// To be called before each loading: ready() then speaks of the page that comes.
  void expectPage();

 Q_SIGNALS:
  /// The document is there and its functions can be called; a map service may still be loading.
  void ready();

 protected:
  bool acceptNavigationRequest(const QUrl& url, NavigationType type, bool isMainFrame) override;
  QWebEnginePage* createWindow(WebWindowType type) override;
  void javaScriptAlert(const QUrl& origin, const QString& text) override;
  bool javaScriptConfirm(const QUrl& origin, const QString& text) override;
  bool javaScriptPrompt(const QUrl& origin, const QString& text, const QString& preset,
                        QString* answer) override;
  void javaScriptConsoleMessage(JavaScriptConsoleMessageLevel level, const QString& text, int line,
                                const QString& source) override;

 private:
  std::shared_ptr<Messenger> messenger_;
  const MapRequestRules& rules_;
  QString readyWord_;
  int pages_ = 0;
};

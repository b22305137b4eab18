#pragma once

#include "base/messenger.h"
#include "web/requestRules.h"

#include <QDeadlineTimer>
#include <QWebEnginePage>

#include <deque>
#include <memory>

/// A page of the engine as the program needs it: it shows what the program loads and goes nowhere
/// else, links open in the user's browser, and its alerts are the program's message boxes. Main
/// thread.
class HostedPage : public QWebEnginePage {
  Q_OBJECT

 public:
  HostedPage(QWebEngineProfile* profile, std::shared_ptr<Messenger> messenger,
             std::shared_ptr<const RequestRules> rules);

  /// To be called before each loading of a page with the text `html`: ready() then speaks of the
  /// page that comes.
  void expectPage(const QString& html);
  /// The user has clicked or pressed a key on the page: what it asks for now may leave the program.
  void userActed();

 Q_SIGNALS:
  /// The document is there and its functions can be called; scripts that it loads may be under way.
  void ready();

 protected:
  bool acceptNavigationRequest(const QUrl& url, NavigationType type, bool isMainFrame) override;
  QWebEnginePage* createWindow(WebWindowType type) override;
  QStringList chooseFiles(FileSelectionMode mode, const QStringList& oldFiles,
                          const QStringList& acceptedMimeTypes) override;
  void javaScriptAlert(const QUrl& origin, const QString& text) override;
  bool javaScriptConfirm(const QUrl& origin, const QString& text) override;
  bool javaScriptPrompt(const QUrl& origin, const QString& text, const QString& preset,
                        QString* answer) override;
  void javaScriptConsoleMessage(JavaScriptConsoleMessageLevel level, const QString& text, int line,
                                const QString& source) override;

 private:
  /// Whether one more box may be shown now.
  bool takeTurnOfBox();

  std::shared_ptr<Messenger> messenger_;
  std::shared_ptr<const RequestRules> rules_;
  QString readyWord_;
  int pages_ = 0;
  QDeadlineTimer actionOfUser_;
  std::deque<QDeadlineTimer> boxes_;  ///< When those lately shown no longer count.
};

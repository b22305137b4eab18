#pragma once

#include <QString>
#include <QStringList>
#include <QUrl>

/// The page that shows the map, as the controller drives it. Main thread. Calls into the page are
/// carried out strictly in the order in which they were made.
class MapView {
 public:
  virtual ~MapView() = default;

  /// Loads a page from its text; relative addresses are taken from `baseUrl`.
  virtual void loadPage(const QString& html, const QUrl& baseUrl) = 0;
  /// Evaluates a script in the page.
  virtual void evaluate(const QString& script) = 0;
  /// Calls a function of the page with texts as arguments, quoted so that no text becomes script.
  virtual void callFunction(const QString& name, const QStringList& arguments) = 0;
};

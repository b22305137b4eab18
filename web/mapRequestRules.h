#pragma once

#include "map/mapSettings.h"
#include "web/requestRules.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <QUrl>

/// The scheme under which the program itself answers requests of the map page.
inline constexpr char mapScheme[] = "trakko-map";

/// What the map page may load: the configured map services, the map images and what the program
/// brings along; nothing else. Main thread.
///
/// Without a Google key, the program answers for that service: its script is the bundled map, its
/// marker images are the program's own, and the tiles come from the tile server.
class MapRequestRules : public RequestRules {
 public:
  explicit MapRequestRules(const MapSettings& services);

  RequestDecision decide(const QUrl& url) const override;
  QByteArray referer(const QUrl& url) const override;

  QString imageFolder;  ///< Path of the folder with the map images, with its trailing "/".

 private:
  bool isReadable(const QUrl& file) const;
  /// The program's answer instead of the service's; empty when it has none.
  QUrl ownAnswer(const QUrl& url) const;

  bool answersForGoogle_;
  QUrl googleScript_;
  QUrl googleArrows_;
  QUrl googleMarkers_;
  QUrl tiles_;
  QUrl home_;
  QList<QUrl> servers_;
  QStringList domains_;
};

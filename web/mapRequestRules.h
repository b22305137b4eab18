#pragma once

#include "map/mapSettings.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <QUrl>

/// The scheme under which the program itself answers requests of the map page.
inline constexpr char mapScheme[] = "trakko-map";

/// What becomes of a request.
struct MapRequestDecision {
  enum class Kind { Block, Allow, Answer };
  Kind kind = Kind::Block;
  QUrl answer;  ///< Where the program answers, for Kind::Answer.

  bool operator==(const MapRequestDecision&) const = default;
};

/// What the map page may load: the configured map services, the map images and what the program
/// brings along; nothing else. Main thread.
///
/// Without a Google key, the program answers for that service: its script is the bundled map, its
/// marker images are the program's own, and the tiles come from the tile server.
class MapRequestRules {
 public:
  explicit MapRequestRules(const MapSettings& services);

  MapRequestDecision decide(const QUrl& url) const;
  /// The Referer to send along; empty for none.
  QByteArray referer(const QUrl& url) const;

  QString imageFolder;  ///< Path of the folder with the map images, with its trailing "/".
  QString pageFile;     ///< Path of the page itself where it is loaded from a file.

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

#include "web/mapRequestRules.h"

#include <QDir>
#include <QRegularExpression>

#include <algorithm>

namespace {

using namespace Qt::StringLiterals;

QUrl server(const QString& scheme, const QString& host) {
  return QUrl(serviceAddress(scheme, host));
}

/// The port of an address, whether it says so or not: the engine drops the usual ones.
int portOf(const QUrl& url) {
  constexpr int http = 80;
  constexpr int https = 443;
  return url.port(url.scheme() == u"https" ? https : http);
}

bool isSameServer(const QUrl& a, const QUrl& b) {
  return a.host() == b.host() && a.scheme() == b.scheme() && portOf(a) == portOf(b);
}

bool isWithin(const QString& host, const QStringList& domains) {
  return std::any_of(domains.begin(), domains.end(), [&](const QString& domain) {
    return host == domain || host.endsWith(u'.' + domain);
  });
}

QUrl ownAddress(const QString& path) {
  QUrl url;
  url.setScheme(QString::fromLatin1(mapScheme));
  url.setPath(path);
  return url;
}

}  // namespace

MapRequestRules::MapRequestRules(const MapSettings& services)
    : answersForGoogle_(services.googleKey.isEmpty()),
      googleScript_(server(u"https"_s, services.googleHost)),
      googleArrows_(server(u"http"_s, services.googleImageHost)),
      googleMarkers_(server(u"https"_s, services.googleStaticHost)),
      tiles_(services.tileAddress),
      home_(services.referer) {
  // The services load parts of themselves from other hosts of their domains.
  if (answersForGoogle_) {
    servers_.append(tiles_);
  } else {
    servers_ += {googleScript_, googleArrows_, googleMarkers_};
    domains_ += {u"googleapis.com"_s, u"gstatic.com"_s};
  }
  if (!services.amapKey.isEmpty()) {
    servers_ += {server(u"http"_s, services.amapHost), server(u"http"_s, services.amapSiteHost)};
    domains_ += {u"amap.com"_s, u"autonavi.com"_s};
  }
}

RequestDecision MapRequestRules::decide(const QUrl& url) const {
  using Kind = RequestDecision::Kind;
  const QString scheme = url.scheme();
  if (scheme == QLatin1StringView(mapScheme) || scheme == u"data" || scheme == u"blob") {
    return {Kind::Allow, {}};
  }
  if (scheme == u"file") {
    return {isReadable(url) ? Kind::Allow : Kind::Block, {}};
  }
  if (scheme != u"http" && scheme != u"https") {
    return {};
  }
  if (const QUrl answer = ownAnswer(url); !answer.isEmpty()) {
    return {Kind::Answer, answer};
  }
  const bool served = isWithin(url.host(), domains_) ||
                      std::any_of(servers_.begin(), servers_.end(),
                                  [&](const QUrl& known) { return isSameServer(url, known); });
  return {served ? Kind::Allow : Kind::Block, {}};
}

bool MapRequestRules::isReadable(const QUrl& file) const {
  const QString path = QDir::cleanPath(file.toLocalFile());
  return file.host().isEmpty() && !imageFolder.isEmpty() && path.startsWith(imageFolder);
}

QUrl MapRequestRules::ownAnswer(const QUrl& url) const {
  if (!answersForGoogle_) {
    return {};
  }
  if (isSameServer(url, googleScript_) && url.path() == u"/maps/api/js") {
    return ownAddress(u"/script"_s);
  }
  static const QRegularExpression arrow(u"^/mapfiles/(dir_\\d+\\.png)$"_s);
  const auto arrowName = arrow.match(url.path());
  if (isSameServer(url, googleArrows_) && arrowName.hasMatch()) {
    return ownAddress(u"/images/arr/"_s + arrowName.captured(1));
  }
  if (isSameServer(url, googleMarkers_)) {
    const QString markers = u"/mapfiles/ridefinder-images/"_s;
    if (url.path() == markers + u"mm_20_green.png"_s) {
      return ownAddress(u"/images/start.png"_s);
    }
    if (url.path() == markers + u"mm_20_blue.png"_s) {
      return ownAddress(u"/images/end.png"_s);
    }
  }
  return {};
}

QByteArray MapRequestRules::referer(const QUrl& url) const {
  // Never from https to http: the engine cancels such a request.
  const bool downgrade = home_.scheme() == u"https" && url.scheme() == u"http";
  if (!answersForGoogle_ || home_.isEmpty() || downgrade || !isSameServer(url, tiles_)) {
    return {};
  }
  // Other servers are told no more than the origin; the engine insists on it.
  return home_.adjusted(QUrl::RemovePath | QUrl::RemoveQuery | QUrl::RemoveFragment).toEncoded() +
         "/";
}

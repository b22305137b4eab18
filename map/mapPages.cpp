#include "map/mapPages.h"

#include "base/resource.h"

#include <QUrl>

#include <initializer_list>
#include <utility>

namespace {

using namespace Qt::StringLiterals;

/// A page's text with its placeholders, such as "@KEY@", filled in.
QString filledPage(const QString& name,
                   std::initializer_list<std::pair<QLatin1StringView, QString>> values) {
  QString page = QString::fromUtf8(resource(u":/map/pages/"_s + name));
  page.replace(u'\n', u" \r\n"_s);
  for (const auto& [placeholder, value] : values) {
    page.replace(placeholder, value);
  }
  return page;
}

/// Hosts and keys come from outside: encoded, they end neither an attribute nor a text in which
/// they stand.
QString encoded(const QString& value) {
  return QString::fromLatin1(QUrl::toPercentEncoding(value, ":/[]"));
}

QString address(const QString& scheme, const QString& host) {
  return encoded(serviceAddress(scheme, host));
}

}  // namespace

QString imageFolderAddress(const Bundle& bundle) {
  QString folder;
  for (const QChar c : folderBeside(bundle)) {
    if (c < u' ' || u"'\"<>&#?%\\"_s.contains(c)) {
      folder += QString::fromLatin1(QUrl::toPercentEncoding(c));
    } else {
      folder += c;
    }
  }
  return u"file://"_s + folder + u"png/"_s;
}

QString gethtmlStr(const PageSettings& settings) {
  const MapSettings& services = settings.services;
  return filledPage(u"google.html"_s,
                    {{"@FOLDER@"_L1, settings.imageFolder},
                     {"@STATIC@"_L1, address(u"https"_s, services.googleStaticHost)},
                     {"@IMAGES@"_L1, address(u"http"_s, services.googleImageHost)},
                     {"@MAPS@"_L1, address(u"https"_s, services.googleHost)},
                     {"@KEY@"_L1, encoded(services.googleKey)}});
}

QString getGDHtmlStr(const PageSettings& settings) {
  const MapSettings& services = settings.services;
  return filledPage(u"amap.html"_s, {{"@FOLDER@"_L1, settings.imageFolder},
                                     {"@SITE@"_L1, address(u"http"_s, services.amapSiteHost)},
                                     {"@MAPS@"_L1, address(u"http"_s, services.amapHost)},
                                     {"@KEY@"_L1, encoded(services.amapKey)}});
}

#include "map/mapSettings.h"

namespace {

using namespace Qt::StringLiterals;

QString setting(const char* name, const QString& built) {
  return qEnvironmentVariable(name, built);
}

}  // namespace

// The build options arrive as definitions of this file.
MapSettings configuredMapSettings() {
  return {
      .googleHost = setting("TRAKKO_GOOGLE_MAPS_HOST", u"" TRAKKO_GOOGLE_MAPS_HOST ""_s),
      .googleKey = setting("TRAKKO_GOOGLE_MAPS_KEY", u"" TRAKKO_GOOGLE_MAPS_KEY ""_s),
      .googleImageHost = setting("TRAKKO_GOOGLE_IMAGE_HOST", u"" TRAKKO_GOOGLE_IMAGE_HOST ""_s),
      .googleStaticHost = setting("TRAKKO_GOOGLE_STATIC_HOST", u"" TRAKKO_GOOGLE_STATIC_HOST ""_s),
      .amapHost = setting("TRAKKO_AMAP_HOST", u"" TRAKKO_AMAP_HOST ""_s),
      .amapKey = setting("TRAKKO_AMAP_KEY", u"" TRAKKO_AMAP_KEY ""_s),
      .amapSiteHost = setting("TRAKKO_AMAP_SITE_HOST", u"" TRAKKO_AMAP_SITE_HOST ""_s),
      .tileAddress = setting("TRAKKO_TILE_ADDRESS", u"" TRAKKO_TILE_ADDRESS ""_s),
      .referer = setting("TRAKKO_REFERER", u"" TRAKKO_REFERER ""_s),
  };
}

QString serviceAddress(const QString& scheme, const QString& host) {
  return host.contains(u"://"_s) ? host : scheme + u"://"_s + host;
}

#pragma once

#include <QString>

/// Where the map services are and the keys to them. A host may be given with its own scheme
/// ("http://127.0.0.1:8080"), else the page's usual one is put in front.
struct MapSettings {
  QString googleHost;        ///< Google Maps script.
  QString googleKey;         ///< 39 characters; empty: the program answers for the service.
  QString googleImageHost;   ///< Arrow images.
  QString googleStaticHost;  ///< Start and end marker images.
  QString amapHost;          ///< AMap script.
  QString amapKey;           ///< 32 hexadecimal characters.
  QString amapSiteHost;      ///< Style sheet of the AMap developer site.
  QString tileAddress;       ///< Tile template "https://host/{z}/{x}/{y}.png" of the bundled map.
  QString referer;           ///< Who asks, for tile servers: the program's home page.

  bool operator==(const MapSettings&) const = default;
};

/// The settings of this build, each overridden by the environment variable of the same name as its
/// build option (TRAKKO_GOOGLE_MAPS_KEY and so on) when that is set.
MapSettings configuredMapSettings();

/// `host` as the beginning of an address: with `scheme` and "://" in front, unless it brings its
/// own.
QString serviceAddress(const QString& scheme, const QString& host);

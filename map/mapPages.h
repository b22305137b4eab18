#pragma once

#include "data/bundle.h"
#include "map/mapSettings.h"

#include <QString>

/// What goes into a page's text.
struct PageSettings {
  /// Address of the folder with the map images, "file:///.../png/": the page's base address.
  QString imageFolder;
  MapSettings services;
};

/// The address of the folder "png" beside the bundle. Characters that would end the address or a
/// quoted text around it are percent-encoded.
QString imageFolderAddress(const Bundle& bundle);

/// The Google Maps page. Lines end in CR LF.
QString gethtmlStr(const PageSettings& settings);

/// The AMap page. Lines end in CR LF.
QString getGDHtmlStr(const PageSettings& settings);

#pragma once

#include "web/mapRequestRules.h"

#include <QWebEngineUrlRequestInterceptor>

/// Holds the rules against every request of the map page. Main thread.
class MapRequestInterceptor : public QWebEngineUrlRequestInterceptor {
  Q_OBJECT

 public:
  explicit MapRequestInterceptor(const MapSettings& services);

  void interceptRequest(QWebEngineUrlRequestInfo& info) override;

  MapRequestRules rules;
};

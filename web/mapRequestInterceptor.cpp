#include "web/mapRequestInterceptor.h"

#include <QLoggingCategory>

Q_LOGGING_CATEGORY(lcMapRequest, "trakko.map.request", QtInfoMsg)

MapRequestInterceptor::MapRequestInterceptor(const MapSettings& services) : rules(services) {}

void MapRequestInterceptor::interceptRequest(QWebEngineUrlRequestInfo& info) {
  const QUrl url = info.requestUrl();
  const MapRequestDecision decision = rules.decide(url);
  switch (decision.kind) {
    case MapRequestDecision::Kind::Block:
      qCWarning(lcMapRequest) << "not loaded:" << url;
      info.block(true);
      return;
    case MapRequestDecision::Kind::Answer:
      info.redirect(decision.answer);
      return;
    case MapRequestDecision::Kind::Allow:
      if (const QByteArray referer = rules.referer(url); !referer.isEmpty()) {
        info.setHttpHeader("Referer", referer);
      }
      return;
  }
}

#include "web/requestInterceptor.h"

#include <QLoggingCategory>

#include <utility>

Q_LOGGING_CATEGORY(lcRequest, "trakko.web.request", QtInfoMsg)

RequestInterceptor::RequestInterceptor(std::shared_ptr<const RequestRules> rules)
    : rules_(std::move(rules)) {}

void RequestInterceptor::interceptRequest(QWebEngineUrlRequestInfo& info) {
  const QUrl url = info.requestUrl();
  const RequestDecision decision = rules_->decide(url);
  switch (decision.kind) {
    case RequestDecision::Kind::Block:
      qCWarning(lcRequest) << "not loaded:" << url;
      info.block(true);
      return;
    case RequestDecision::Kind::Answer:
      info.redirect(decision.answer);
      return;
    case RequestDecision::Kind::Allow:
      if (const QByteArray referer = rules_->referer(url); !referer.isEmpty()) {
        info.setHttpHeader("Referer", referer);
      }
      return;
  }
}

#pragma once

#include "web/requestRules.h"

#include <QWebEngineUrlRequestInterceptor>

#include <memory>

/// Holds the rules against every request of a page. Main thread.
class RequestInterceptor : public QWebEngineUrlRequestInterceptor {
  Q_OBJECT

 public:
  explicit RequestInterceptor(std::shared_ptr<const RequestRules> rules);

  void interceptRequest(QWebEngineUrlRequestInfo& info) override;

 private:
  std::shared_ptr<const RequestRules> rules_;
};

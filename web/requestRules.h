#pragma once

#include <QByteArray>
#include <QUrl>

/// What becomes of a request.
struct RequestDecision {
  enum class Kind { Block, Allow, Answer };
  Kind kind = Kind::Block;
  QUrl answer;  ///< Where the program answers, for Kind::Answer.

  bool operator==(const RequestDecision&) const = default;
};

/// What a page may load. Main thread.
class RequestRules {
 public:
  virtual ~RequestRules() = default;

  virtual RequestDecision decide(const QUrl& url) const = 0;
  /// The Referer to send along; empty for none.
  virtual QByteArray referer(const QUrl& /*url*/) const { return {}; }
};

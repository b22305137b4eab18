#include "device/agpsFetch.h"

#include <QEventLoop>
#include <QLoggingCategory>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QTimer>

#include <memory>

Q_LOGGING_CATEGORY(lcAgps, "trakko.device.agps", QtInfoMsg)

namespace {

// The real file has some hundred kilobytes.
constexpr qint64 mostBytes = qint64{16} << 20;

// A reply is unfinished when the program's end interrupted the wait. An error with a status of 400
// or more is the server's own answer, whole like any other.
bool cameWhole(const QNetworkReply& reply) {
  constexpr int firstErrorStatus = 400;
  const int status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
  return reply.isFinished() &&
         (reply.error() == QNetworkReply::NoError || status >= firstErrorStatus);
}

QNetworkRequest requestFor(const QUrl& url) {
  QNetworkRequest request(url);
  // Left to itself, Qt asks for compressed answers, and does not notice when one was cut short.
  request.setRawHeader("Accept-Encoding", "identity");
  return request;
}

}  // namespace

namespace agps {

QUrl assistanceUrl() {
  const QString server =
      qEnvironmentVariable("TRAKKO_AGPS_HOST", QStringLiteral(TRAKKO_AGPS_HOST)).trimmed();
  QUrl url(server.contains(u"://") ? server : QStringLiteral("https://") + server);
  const bool web = url.scheme() == u"http" || url.scheme() == u"https";
  if (url.host().isEmpty() || !web) {
    return {};
  }
  url.setUserInfo(QString());
  url.setPath(QStringLiteral("/current_14d.alp"));
  return url;
}

QByteArray fetch(const QUrl& url, std::chrono::milliseconds limit) {
  QEventLoop loop;  // first: it equips a thread that has no event loop yet
  QNetworkAccessManager manager;
  const std::unique_ptr<QNetworkReply> reply(manager.get(requestFor(url)));
  QObject::connect(reply.get(), &QNetworkReply::finished, &loop, &QEventLoop::quit);
  QObject::connect(reply.get(), &QNetworkReply::readyRead, reply.get(), [&reply] {
    if (reply->bytesAvailable() > mostBytes) {
      reply->abort();
    }
  });
  QTimer timer;
  QObject::connect(&timer, &QTimer::timeout, reply.get(), &QNetworkReply::abort);
  timer.start(limit);
  if (!reply->isFinished()) {
    loop.exec();
  }
  if (!cameWhole(*reply)) {
    qCInfo(lcAgps).noquote() << "no assistance data from" << url.host() << '-'
                             << reply->errorString();
    return {};
  }
  return reply->readAll();
}

}  // namespace agps

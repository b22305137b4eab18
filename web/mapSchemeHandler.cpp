#include "web/mapSchemeHandler.h"

#include "base/resource.h"
#include "web/scriptText.h"

#include <QBuffer>
#include <QFile>
#include <QRegularExpression>
#include <QWebEngineUrlRequestJob>

#include <memory>

namespace {

using namespace Qt::StringLiterals;

/// Leaflet, the Maps interface on it, and the call that starts both.
QByteArray bundledScript(const QString& tileAddress) {
  const QString styleSheet = QString::fromUtf8(resource(u":/web/leaflet.css"_s));
  return resource(u":/web/leaflet.min.js"_s) + '\n' + resource(u":/web/bundledMap.js"_s) + '\n' +
         scriptCall(u"startBundledMap"_s, {tileAddress, styleSheet}).toUtf8();
}

}  // namespace

MapSchemeHandler::MapSchemeHandler(const QString& tileAddress, QObject* parent)
    : QWebEngineUrlSchemeHandler(parent), tileAddress_(tileAddress) {}

void MapSchemeHandler::requestStarted(QWebEngineUrlRequestJob* job) {
  const QString path = job->requestUrl().path();
  const QString images = u"/images/"_s;
  if (path == u"/script") {
    auto* answer = new QBuffer(job);
    answer->setData(bundledScript(tileAddress_));
    job->reply("text/javascript;charset=utf-8", answer);
  } else if (path.startsWith(images)) {
    replyImage(job, path.sliced(images.size()));
  } else {
    job->fail(QWebEngineUrlRequestJob::UrlNotFound);
  }
}

void MapSchemeHandler::replyImage(QWebEngineUrlRequestJob* job, const QString& name) const {
  static const QRegularExpression known(u"^(start|end|arr/dir_\\d+)\\.png$"_s);
  auto file = std::make_unique<QFile>(imageFolder + name);
  if (!known.match(name).hasMatch() || !file->open(QIODevice::ReadOnly)) {
    job->fail(QWebEngineUrlRequestJob::UrlNotFound);
    return;
  }
  file->setParent(job);
  job->reply("image/png", file.release());
}

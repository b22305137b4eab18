#include "web/scriptText.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace {

using namespace Qt::StringLiterals;

QString scriptArray(const QStringList& texts) {
  const QJsonDocument document(QJsonArray::fromStringList(texts));
  QString array = QString::fromUtf8(document.toJson(QJsonDocument::Compact));
  // Plain characters to JSON, line ends to older script engines.
  array.replace(QChar(QChar::LineSeparator), u"\\u2028"_s);
  array.replace(QChar(QChar::ParagraphSeparator), u"\\u2029"_s);
  return array;
}

}  // namespace

QString scriptCall(const QString& name, const QStringList& arguments) {
  return u"window["_s + scriptArray({name}) + u"](..."_s + scriptArray(arguments) + u");"_s;
}

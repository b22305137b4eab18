#include "app/commandLine.h"

#include <QCommandLineParser>

using namespace Qt::StringLiterals;

QString answerTo(const QStringList& arguments) {
  QCommandLineParser parser;
  parser.setApplicationDescription(
      u"GPS ランニングウォッチのランをダウンロードし、表とカレンダーと地図に表示します。"
      "オプションなしで起動するとウィンドウが開きます。"_s);
  const QCommandLineOption help({u"h"_s, u"help"_s}, u"この説明を表示します。"_s);
  const QCommandLineOption version({u"v"_s, u"version"_s}, u"バージョンを表示します。"_s);
  parser.addOptions({help, version});
  parser.parse(arguments);
  if (parser.isSet(help)) {
    return parser.helpText();
  }
  return parser.isSet(version) ? u"Trakko "_s + QStringLiteral(TRAKKO_VERSION) + u'\n' : QString();
}

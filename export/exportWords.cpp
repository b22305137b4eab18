#include "export/exportWords.h"

#include <QStringList>

using namespace Qt::StringLiterals;

namespace exportWords {

QString reason(ExportFailure failure) {
  switch (failure) {
    case ExportFailure::None:
      break;
    case ExportFailure::NotRead:
      return u"データベースを読めませんでした。"_s;
    case ExportFailure::NoSuchRun:
      return u"このランはありません。"_s;
    case ExportFailure::NoStartTime:
      return u"開始日時がないため書き出せません。"_s;
    case ExportFailure::TooFewPoints:
      return u"トラックポイントが足りないため GPX にできません。"_s;
    case ExportFailure::NotWritten:
      return u"ファイルに書き込めません。空き容量とアクセス権を確認して下さい。"_s;
  }
  return {};
}

QString ending(const ManyRunsResult& result) {
  QString line = result.cancelled   ? u"中止しました。"_s
                 : result.brokenOff ? u"内部エラーのため中断しました。"_s
                                    : QString();
  line += u"%1件を書き出しました。"_s.arg(result.written);
  if (result.skipped > 0) {
    line += u"%1件は同じ名前のファイルがあるため書き出していません。"_s.arg(result.skipped);
  }
  if (!result.failed.isEmpty()) {
    constexpr qsizetype mostNamed = 5;
    QStringList named;
    for (const auto& failed : result.failed.first(qMin(mostNamed, result.failed.size()))) {
      named.append(u"ラン %1: %2"_s.arg(failed.number).arg(reason(failed.failure)));
    }
    line += u"%1件は失敗しました (%2%3)。"_s.arg(result.failed.size())
                .arg(named.join(u' '), result.failed.size() > mostNamed ? u" ..."_s : u""_s);
  }
  return line;
}

}  // namespace exportWords

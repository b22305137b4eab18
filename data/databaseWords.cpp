#include "data/databaseWords.h"

#include <QFileInfo>

namespace databaseWords {

using databaseFile::Failure;
using schemaCheck::Finding;

QString reason(Failure failure) {
  switch (failure) {
    case Failure::none:
      break;
    case Failure::unreadable:
      return QStringLiteral("ファイルを読み込めません。");
    case Failure::exists:
      return QStringLiteral("同じ名前のファイルが既にあります。");
    case Failure::busy:
      return QStringLiteral("データベースは使用中です。");
    case Failure::chosenBusy:
      return QStringLiteral("選択したファイルは他のプログラムが使用中です。");
    case Failure::unwritable:
      return QStringLiteral("ファイルを書き込めません。空き容量とアクセス権を確認して下さい。");
    case Failure::leftovers:
      return QStringLiteral(
          "ファイルを書き込めません。書きかけのファイル (名前の終わりが .part) を削除して下さい。");
  }
  return {};
}

QString doubtAbout(const QString& chosen, Finding finding) {
  if (finding == Finding::noDatabase) {
    return QStringLiteral("「%1」はデータベースではないか、壊れています。").arg(chosen);
  }
  if (finding == Finding::unreadable && QFileInfo(chosen).isFile()) {
    return QStringLiteral(
               "「%1」の中身を確認できませんでした。完全なデータベースではないかもしれません。")
        .arg(chosen);
  }
  if (finding != Finding::tablesMissing) {
    return {};
  }
  return QFileInfo(chosen).size() == 0
             ? QStringLiteral("「%1」は空のファイルです。").arg(chosen)
             : QStringLiteral("「%1」には必要な表や列がありません。").arg(chosen);
}

QString whereKept(const databaseFile::Result& restored) {
  return restored.kept.isNull()
             ? QString()
             : QStringLiteral("復元前のデータは「%1」にあります。").arg(restored.kept);
}

}  // namespace databaseWords

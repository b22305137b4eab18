#include "app/startUpCheck.h"

#include <QFile>
#include <QFileInfo>

namespace {

/// True when the file is empty or begins as every SQLite 3 database does
/// (https://www.sqlite.org/fileformat.html, "Database Header").
bool looksLikeDatabase(QFile& file) {
  const QByteArray magic = QByteArrayLiteral("SQLite format 3\0");
  const QByteArray start = file.read(magic.size());
  return start.isEmpty() || start == magic;
}

QString folderProblem(const QString& folder) {
  const QFileInfo info(folder);
  if (!info.isDir()) {
    return QStringLiteral("データベースのフォルダ「%1」がありません。").arg(folder);
  }
  if (!info.isWritable()) {
    return QStringLiteral(
               "データベースのフォルダ「%"
               "1」に書き込めません。ダウンロードしたランは保存されません。"
               "書き込めるフォルダに Trakko.app を移動して下さい。")
        .arg(folder);
  }
  return {};
}

QString fileProblem(const QString& path) {
  QFile file(path);
  if (!file.exists()) {
    return {};
  }
  if (!file.open(QIODevice::ReadOnly)) {
    return QStringLiteral("データベース「%1」を読めません。ファイルの権限を確認して下さい。")
        .arg(path);
  }
  if (!looksLikeDatabase(file)) {
    return QStringLiteral(
               "「%1」はデータベースではないか、壊れています。ファイルを別の場所に移動するか、"
               "バックアップから復元して下さい。")
        .arg(path);
  }
  if (!QFileInfo(path).isWritable()) {
    return QStringLiteral(
               "データベース「%1」は読み取り専用です。ダウンロードや消去は保存されません。")
        .arg(path);
  }
  return {};
}

}  // namespace

bool isNoDatabase(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) && !looksLikeDatabase(file);
}

QString startUpProblem(const Bundle& bundle) {
  const QString path = databasePath(bundle);
  if (path.isNull()) {
    return QStringLiteral(
               "データベースの場所が分かりません。アプリケーション「%1」の名前を確認して下さい。")
        .arg(bundle.path);
  }
  const QString problem = folderProblem(folderBeside(bundle));
  return problem.isNull() ? fileProblem(path) : problem;
}

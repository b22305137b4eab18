#include "app/startUpCheck.h"

#include "data/bundle.h"
#include "data/dataControl.h"
#include "data/schemaCheck.h"

#include <QFileInfo>
#include <QThread>

namespace {

QString folderProblem(const QString& folder) {
  const QFileInfo info(folder);
  if (!info.isDir()) {
    return QStringLiteral("データベースのフォルダ「%1」がありません。").arg(folder);
  }
  if (!info.isWritable()) {
    return QStringLiteral(
               "データベースのフォルダ「%1」に書き込めません。ダウンロードしたランは保存されません。"
               "書き込めるフォルダに Trakko.app を移動して下さい。")
        .arg(folder);
  }
  return {};
}

/// Another connection may hold the file for a moment.
schemaCheck::Finding patientCheck(const QString& path) {
  constexpr int tries = 10;
  constexpr int waitMs = 100;
  schemaCheck::Finding finding = schemaCheck::check(path);
  for (int i = 1; i < tries && finding == schemaCheck::Finding::unreadable; ++i) {
    QThread::msleep(waitMs);
    finding = schemaCheck::check(path);
  }
  return finding;
}

QString contentProblem(const QString& path) {
  switch (patientCheck(path)) {
    case schemaCheck::Finding::complete:
      break;
    case schemaCheck::Finding::noDatabase:
      return QStringLiteral(
                 "「%1」はデータベースではないか、壊れています。ファイルを別の場所に移動するか、"
                 "バックアップから復元して下さい。")
          .arg(path);
    case schemaCheck::Finding::tablesMissing:
      return QStringLiteral(
                 "データベース「%1」に必要な表や列がありません。ファイルを別の場所に移動するか、"
                 "バックアップから復元して下さい。")
          .arg(path);
    case schemaCheck::Finding::unreadable:
      return QStringLiteral(
                 "データベース「%1」を読めません。他のプログラムが使用していないか、"
                 "ファイルの権限を確認して下さい。")
          .arg(path);
  }
  return {};
}

QString fileProblem(const QString& path) {
  const QFileInfo info(path);
  if (info.exists() && !(info.isFile() && info.isReadable())) {
    return QStringLiteral("データベース「%1」を読めません。ファイルの権限を確認して下さい。")
        .arg(path);
  }
  const dataControl tables;  // made where there are none
  QString problem = info.exists() ? contentProblem(path) : QString();
  if (problem.isNull() && info.exists() && !info.isWritable()) {
    return QStringLiteral(
               "データベース「%1」は読み取り専用です。ダウンロードや消去は保存されません。")
        .arg(path);
  }
  return problem;
}

}  // namespace

QString startUpProblem() {
  const Bundle bundle = mainBundle();
  const QString path = databasePath(bundle);
  if (path.isNull()) {
    return QStringLiteral(
               "データベースの場所が分かりません。アプリケーション「%1」の名前を確認して下さい。")
        .arg(bundle.path);
  }
  const QString problem = folderProblem(folderBeside(bundle));
  return problem.isNull() ? fileProblem(path) : problem;
}

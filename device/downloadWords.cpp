#include "device/downloadWords.h"

#include "device/replay.h"

#include <QFileInfo>

namespace {

QString storedRuns(qsizetype count) {
  return QStringLiteral("新しいラン%1件を保存しました。").arg(count);
}

QString runsMissing(qsizetype all, qsizetype missing) {
  return QStringLiteral("%1件のうち%2件のランを保存できませんでした。").arg(all).arg(missing);
}

QString linesStray(qsizetype count) {
  return QStringLiteral(
             "どのランのものか分からないラップやトラックポイントが%1行ありました。"
             "ランが欠けているかもしれません。")
      .arg(count);
}

QString howToReplay(const QString& path) {
  return QStringLiteral(
             "受信したデータは「%1」に残してあります。"
             "「trakko-cli replay --data 空のフォルダ '%1'」で、空のフォルダに取り込めます。")
      .arg(path);
}

/// What became of the received lines of a download that did not reach the database as a whole.
QString keptLines(const DownloadOutcome& outcome) {
  if (!outcome.lastingPath.isNull()) {
    return howToReplay(outcome.lastingPath);
  }
  if (outcome.linesKept) {
    return QStringLiteral("受信したデータは次のダウンロードまで「%1」に残っています。")
        .arg(QFileInfo(outcome.keptPath).fileName());
  }
  return QStringLiteral(
      "受信したデータもファイルに残せませんでした。時計のデータを消去しないで下さい。");
}

/// What is missing of a download or may be wrong in it; null when nothing is.
QString losses(const DownloadOutcome& outcome) {
  QString lost;
  if (outcome.runsNotStored > 0) {
    lost += runsMissing(outcome.newRuns, outcome.runsNotStored);
  }
  if (outcome.shortBlocks > 0) {
    lost += QStringLiteral(
                "受信中にデータが%1か所で途切れました。ランが欠けているかもしれません。"
                "時計のデータは消去せず、欠けたランをこの一覧から消去してから、"
                "もう一度ダウンロードすると取り込み直せます。")
                .arg(outcome.shortBlocks);
  }
  if (outcome.strayLines > 0) {
    lost += linesStray(outcome.strayLines);
  }
  if (outcome.code == downloadResult::stored && outcome.isMixed()) {
    lost += (lost.isEmpty() ? storedRuns(outcome.runsStored()) : QString()) +
            QStringLiteral(
                "保存済みのランが時計に残っていたため、トラックポイントが別のランに入っている"
                "かもしれません。");
  }
  return lost.isEmpty() ? QString() : lost + keptLines(outcome);
}

}  // namespace

namespace downloadWords {

QString running() {
  return QStringLiteral("時計からダウンロードしています...");
}

QString stalled() {
  return QStringLiteral(
      "データが届いていません。時計の接続を確認して、もう一度ダウンロードして下さい。");
}

QString obstacle(LinkObstacle obstacle) {
  switch (obstacle) {
    case LinkObstacle::none:
      return QStringLiteral("時計に接続できませんでした。");
    case LinkObstacle::noDevice:
      return QStringLiteral("時計のUSBデバイスが見つかりません。ケーブルの接続を確認して下さい。");
    case LinkObstacle::noSerialPort:
      return QStringLiteral(
          "時計のUSBデバイスはありますが、シリアルポートがありません。接続し直して下さい。");
    case LinkObstacle::noPermission:
      return QStringLiteral(
          "シリアルポートを使う権限がありません。ユーザーを dialout グループに追加して下さい。");
    case LinkObstacle::portInUse:
      return QStringLiteral("シリアルポートは他のプログラムが使用中です。");
    case LinkObstacle::conversing:
      return QStringLiteral("ダウンロードは既に実行中です。終わるまでお待ち下さい。");
    case LinkObstacle::otherError:
      break;
  }
  return QStringLiteral("シリアルポートを開けませんでした。詳細はログを確認して下さい。");
}

QString message(qint32 code) {
  switch (code) {
    case downloadResult::noAnswer:
      return QStringLiteral("データが見当たりません、USBの接続を確認して下さい。");
    case downloadResult::endMissed:
      return QStringLiteral("ダウンロードがブロックされましたUSB接続を確認して下さい。");
    case downloadResult::noRecords:
      return QStringLiteral("データがありません。");
    case downloadResult::dataError:
      return QStringLiteral("データエラー、再度データをダウンロードして下さい。");
    default:
      return {};
  }
}

QString warning(const DownloadOutcome& outcome) {
  QString lost = losses(outcome);
  if (!lost.isNull() || outcome.linesKept) {
    return lost;
  }
  return QStringLiteral(
      "受信したデータの控えをファイルに残せませんでした。"
      "時計のデータを消去する前に、ランが表示されているか確認して下さい。");
}

QString ending(const DownloadOutcome& outcome) {
  if (outcome.cancelled) {
    return QStringLiteral("ダウンロードを中止しました。");
  }
  if (!outcome.linked) {
    return obstacle(outcome.obstacle);
  }
  if (outcome.endless) {
    return QStringLiteral("時計のデータが終わらないため、受信を打ち切りました。") +
           keptLines(outcome);
  }
  QString lost = losses(outcome);
  switch (outcome.code) {
    case downloadResult::stored:
      return lost.isNull() ? storedRuns(outcome.runsStored()) : lost;
    case downloadResult::noRunCompleted:
      return lost.isNull() ? QStringLiteral("新しいランはありませんでした。") : lost;
    case downloadResult::notStored:
      return lost.isNull() ? QStringLiteral("ランを保存できませんでした。") + keptLines(outcome)
                           : lost;
    default:
      return message(outcome.code);
  }
}

QString erased(LinkObstacle why) {
  return why == LinkObstacle::none
             ? QStringLiteral("時計に消去の命令を送りました。")
             : QStringLiteral("時計のデータを消去できませんでした。") + obstacle(why);
}

QString replayed(const ReplayOutcome& outcome) {
  if (!outcome.error.isNull()) {
    return outcome.error;
  }
  if (outcome.wouldMix) {
    return QStringLiteral(
        "保存済みのランと新しいランが混ざっているため、取り込みませんでした。"
        "空のフォルダに取り込んで下さい。");
  }
  if (outcome.runsNotStored > 0) {
    return runsMissing(outcome.newRuns, outcome.runsNotStored);
  }
  if (outcome.strayLines > 0) {
    return (outcome.newRuns > 0 ? storedRuns(outcome.newRuns) : QString()) +
           linesStray(outcome.strayLines);
  }
  switch (outcome.code) {
    case downloadResult::stored:
      return storedRuns(outcome.newRuns);
    case downloadResult::noRunCompleted:
      return QStringLiteral("新しいランはありませんでした。");
    default:
      return QStringLiteral("このファイルにはランがありません。");
  }
}

}  // namespace downloadWords

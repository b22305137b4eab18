#include "cli/session.h"

#include "data/bundle.h"

#include <QDir>
#include <QFile>

using namespace Qt::StringLiterals;

namespace {

/// A command that only reads makes no database where there is none.
void requireDatabase() {
  const QString path = databasePath(mainBundle());
  if (!QFile::exists(path)) {
    throw Failure{ExitCode::failed, u"データベースがありません: %1"_s.arg(path)};
  }
}

/// Runs tell where somebody lives: the folder is made for the user alone.
void makeFolder() {
  const QString folder = folderBeside(mainBundle());
  if (QDir(folder).exists()) {
    return;
  }
  constexpr auto ownerOnly =
      QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner;
  if (!QDir().mkpath(folder) || !QFile::setPermissions(folder, ownerOnly)) {
    throw Failure{ExitCode::failed, u"フォルダを作成できません: %1"_s.arg(folder)};
  }
}

}  // namespace

Session::Session(Command::Needs needs) {
  switch (needs) {
    case Command::Needs::nothing:
      break;
    case Command::Needs::toRead:
      requireDatabase();
      break;
    case Command::Needs::toChange:
      makeFolder();
      lock();
      break;
  }
}

// Where no lock can be had at all, the window works, too.
void Session::lock() {
  lock_.emplace(folderBeside(mainBundle()));
  if (lock_->take() == DatabaseLock::State::taken) {
    throw Failure{ExitCode::databaseBusy,
                  u"データベースは別のプログラムが使用中です。ウィンドウを閉じてから、"
                  u"もう一度実行して下さい。"_s};
  }
}

#include "data/heldDatabase.h"

#include <QFile>
#include <sqlite3.h>

namespace {

constexpr int busyLimit = 5000;  // milliseconds

const char* const beginReading = "begin transaction; select count(*) from sqlite_master;";
const char* const beginWriting = "begin immediate transaction;";

int hold(sqlite3* connection, const char* beginning) {
  // Only databases that some other program made have a write-ahead log; what is in it belongs into
  // the file first.
  const int merged =
      sqlite3_exec(connection, "PRAGMA wal_checkpoint(TRUNCATE)", nullptr, nullptr, nullptr);
  return merged == SQLITE_OK ? sqlite3_exec(connection, beginning, nullptr, nullptr, nullptr)
                             : merged;
}

}  // namespace

HeldDatabase::HeldDatabase(const QString& path, Against against) {
  sqlite3* opened = nullptr;
  result_ =
      sqlite3_open_v2(QFile::encodeName(path).constData(), &opened, SQLITE_OPEN_READWRITE, nullptr);
  connection_.reset(opened);
  if (result_ != SQLITE_OK) {
    return;
  }
  sqlite3_busy_timeout(opened, busyLimit);
  sqlite3_file_control(opened, "main", SQLITE_FCNTL_FILE_POINTER, &file_);
  // In an empty file, a writing transaction begins with a journal; there is nothing to protect.
  const bool againstWriters = against == Against::writers && size() > 0;
  result_ = hold(opened, againstWriters ? beginWriting : beginReading);
}

QString HeldDatabase::message() const {
  return QString::fromUtf8(sqlite3_errmsg(connection_.get()));
}

qint64 HeldDatabase::size() const {
  sqlite3_int64 bytes = -1;
  if (file_ == nullptr || file_->pMethods == nullptr ||
      file_->pMethods->xFileSize(file_, &bytes) != SQLITE_OK) {
    return -1;
  }
  return bytes;
}

bool HeldDatabase::read(char* bytes, int count, qint64 offset) const {
  return file_->pMethods->xRead(file_, bytes, count, offset) == SQLITE_OK;
}

#include "data/heldDatabase.h"

#include <sqlite3.h>

namespace {

constexpr int busyLimit = 5000;  // milliseconds

const char* const beginReading = "begin transaction; select count(*) from sqlite_master;";
const char* const beginWriting = "begin immediate transaction;";

/// Only databases that some other program made have a write-ahead log; what is in it belongs into
/// the file first. When a reader keeps it from getting there, SQLite answers SQLITE_OK and a first
/// column of 1 (https://www.sqlite.org/pragma.html#pragma_wal_checkpoint).
int mergeLog(sqlite3* connection, HeldDatabase::Against against) {
  bool blocked = false;
  const auto keep = [](void* target, int, char** values, char**) {
    *static_cast<bool*>(target) = values[0] != nullptr && *values[0] == '1';
    return 0;
  };
  const int result =
      sqlite3_exec(connection, "PRAGMA wal_checkpoint(TRUNCATE)", keep, &blocked, nullptr);
  // Replaced as a whole, a database takes its log along; a copy of the file would miss it.
  return blocked && against == HeldDatabase::Against::changes ? SQLITE_BUSY : result;
}

}  // namespace

HeldDatabase::HeldDatabase(const QString& path, Against against) {
  result_ = openDatabase(path, SQLITE_OPEN_READWRITE, connection_);
  sqlite3* const opened = connection_.get();
  if (result_ != SQLITE_OK) {
    return;
  }
  sqlite3_busy_timeout(opened, busyLimit);
  steps_.attachTo(opened);
  sqlite3_file_control(opened, "main", SQLITE_FCNTL_FILE_POINTER, &file_);
  // In an empty file, a writing transaction begins with a journal; there is nothing to protect.
  const bool writable = size() > 0;
  result_ = mergeLog(opened, against);
  if (result_ == SQLITE_OK) {
    result_ = against == Against::writers && writable ? begin(beginWriting) : hold(writable);
  }
  if (result_ == SQLITE_INTERRUPT) {
    result_ = SQLITE_CORRUPT;  // its pages lead in circles
  }
}

int HeldDatabase::begin(const char* beginning) {
  return sqlite3_exec(connection_.get(), beginning, nullptr, nullptr, nullptr);
}

// A transaction that meets a reader at its end keeps new readers out until that one has finished,
// and a copy takes its time. One that cannot begin meanwhile disturbs nobody. Where one does not
// end, or the file is only readable, reading has to do.
int HeldDatabase::hold(bool writable) {
  const bool held = writable && begin(beginWriting) == SQLITE_OK;
  return held ? SQLITE_OK : begin(beginReading);
}

QString HeldDatabase::message() const {
  return QString::fromUtf8(sqlite3_errmsg(connection_.get()));
}

qint64 HeldDatabase::size() const {
  return fileSize(connection_.get());
}

bool HeldDatabase::read(char* bytes, int count, qint64 offset) const {
  return file_->pMethods->xRead(file_, bytes, count, offset) == SQLITE_OK;
}

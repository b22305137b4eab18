#include "data/fileState.h"

#include "data/connection.h"

#include <QtEndian>

#include <array>
#include <sqlite3.h>
#include <sys/stat.h>

namespace {

qint64 nanoseconds(const timespec& time) {
  constexpr qint64 second = 1'000'000'000;
  return time.tv_sec * second + time.tv_nsec;
}

/// The start of the file, up to the end of the counter.
using Header = std::array<unsigned char, 28>;

bool readHeader(sqlite3* connection, Header& header) {
  sqlite3_file* file = nullptr;
  sqlite3_file_control(connection, "main", SQLITE_FCNTL_FILE_POINTER, &file);
  return file != nullptr && file->pMethods != nullptr &&
         file->pMethods->xRead(file, header.data(), static_cast<int>(header.size()), 0) ==
             SQLITE_OK;
}

bool isMoved(sqlite3* connection) {
  int moved = 1;
  return sqlite3_file_control(connection, "main", SQLITE_FCNTL_HAS_MOVED, &moved) != SQLITE_OK ||
         moved != 0;
}

}  // namespace

std::optional<FileState> fileState(sqlite3* connection) {
  struct stat found {};
  Header header{};
  // The name is looked at first: when it then still leads to the open file, it did so before.
  if (stat(sqlite3_db_filename(connection, "main"), &found) != 0 || isMoved(connection) ||
      !readHeader(connection, header)) {
    return std::nullopt;
  }
  constexpr std::size_t writeVersion = 18;
  constexpr std::size_t readVersion = 19;
  constexpr std::size_t counter = 24;
  if (header[writeVersion] != 1 || header[readVersion] != 1) {
    return std::nullopt;  // with a write-ahead log the counter may stay
  }
  return FileState{found.st_dev,
                   found.st_ino,
                   found.st_size,
                   nanoseconds(found.st_mtim),
                   nanoseconds(found.st_ctim),
                   qFromBigEndian<quint32>(header.data() + counter)};
}

Reading::Reading(sqlite3* connection) {
  // The second statement takes the lock.
  if (connection != nullptr && sqlite3_get_autocommit(connection) != 0) {
    connection_ = connection;
    if (!execute(connection, "begin transaction; select count(*) from sqlite_master;")) {
      execute(connection, "rollback transaction;");
      connection_ = nullptr;
    }
  }
}

Reading::~Reading() {
  if (connection_ != nullptr) {
    execute(connection_, "commit transaction;");
  }
}

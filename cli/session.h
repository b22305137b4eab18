#pragma once

#include "cli/command.h"
#include "data/databaseLock.h"

#include <optional>

/// What a command needs of the database of the main bundle, checked and held while it lives.
class Session {
 public:
  /// Throws Failure: there is no database to read, the folder to be changed cannot be made, or
  /// another process works on it (databaseBusy).
  explicit Session(Command::Needs needs);

 private:
  void lock();

  std::optional<DatabaseLock> lock_;
};

#pragma once

/// What a command answers to the shell.
enum class ExitCode {
  done = 0,
  failed = 1,
  wrongUsage = 2,
  noWatch = 3,       ///< The watch was not found, or its port could not be used.
  databaseBusy = 4,  ///< Another process works on the database.
};

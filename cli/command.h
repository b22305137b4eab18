#pragma once

#include "cli/exitCode.h"
#include "cli/output.h"

#include <QCommandLineParser>
#include <QString>

#include <memory>
#include <vector>

/// One command of trakko-cli. Help and usage come from what it declares.
class Command {
 public:
  Command() = default;
  virtual ~Command() = default;
  Command(const Command&) = delete;
  Command& operator=(const Command&) = delete;

  virtual QString name() const = 0;
  /// What it does, in one sentence.
  virtual QString summary() const = 0;
  /// Adds the command's options and arguments; --help, --data and --json are there already.
  virtual void declare(QCommandLineParser& parser) const = 0;
  /// What it needs of the database: nothing, to read it, or to change it.
  enum class Needs { nothing, toRead, toChange };
  virtual Needs needs() const = 0;
  /// Does it. The database of the main bundle is ready as far as needs() says. Throws UsageError
  /// and Failure.
  virtual ExitCode run(const QCommandLineParser& parser, Output& output) const = 0;
};

/// The arguments make no sense; answered with ExitCode::wrongUsage.
struct UsageError {
  QString reason;
};

/// The command cannot be done; told on standard error, and the code answered.
struct Failure {
  ExitCode code;
  QString reason;
};

using Commands = std::vector<std::unique_ptr<Command>>;

/// All commands, in the order in which the help names them.
Commands allCommands();

std::unique_ptr<Command> makeListCommand();
std::unique_ptr<Command> makeShowCommand();
std::unique_ptr<Command> makeTotalsCommand();
std::unique_ptr<Command> makeExportCommand();
std::unique_ptr<Command> makeDownloadCommand();
std::unique_ptr<Command> makeBackupCommand();
std::unique_ptr<Command> makeRestoreCommand();
std::unique_ptr<Command> makeReplayCommand();
std::unique_ptr<Command> makeDevicesCommand();

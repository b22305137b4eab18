#include "cli/command.h"

Commands allCommands() {
  Commands commands;
  commands.push_back(makeListCommand());
  commands.push_back(makeShowCommand());
  commands.push_back(makeTotalsCommand());
  commands.push_back(makeExportCommand());
  commands.push_back(makeDownloadCommand());
  commands.push_back(makeBackupCommand());
  commands.push_back(makeRestoreCommand());
  commands.push_back(makeReplayCommand());
  commands.push_back(makeDevicesCommand());
  return commands;
}

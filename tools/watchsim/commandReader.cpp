#include "tools/watchsim/commandReader.h"

#include <algorithm>
#include <array>

namespace {

constexpr qsizetype commandSize = 32;

struct KnownCommand {
  WatchCommand command;
  const char* name;
  qsizetype place;
  QByteArray bytes;  // the rest of the command is zeros
};

const std::array<KnownCommand, 5>& knownCommands() {
  static const std::array<KnownCommand, 5> known{
      {{WatchCommand::link, "link", 0, "\xEE\xEE"},
       {WatchCommand::downloadAll, "download", 0, "\x08\x08\xAA\xAA"},
       {WatchCommand::erase, "erase", 30, "\xFF\xFD"},
       {WatchCommand::agpsStart, "agps", 0, "AGPSST"},
       {WatchCommand::disconnect, "disconnect", 0, "\xFF\xFF\xFF\xFF"}}};
  return known;
}

WatchCommand commandAtStart(const QByteArray& bytes) {
  for (const KnownCommand& known : knownCommands()) {
    QByteArray expected(commandSize, '\0');
    expected.replace(known.place, known.bytes.size(), known.bytes);
    if (bytes.startsWith(expected)) {
      return known.command;
    }
  }
  return WatchCommand::unknown;
}

}  // namespace

QString nameOf(WatchCommand command) {
  const auto& known = knownCommands();
  const auto found = std::find_if(known.begin(), known.end(), [command](const KnownCommand& entry) {
    return entry.command == command;
  });
  return QString::fromLatin1(found != known.end() ? found->name : "unknown");
}

QList<WatchCommand> CommandReader::take(const QByteArray& bytes) {
  QList<WatchCommand> commands;
  pending_.append(bytes);
  qsizetype start = 0;
  while (pending_.size() - start >= commandSize) {
    const WatchCommand command = commandAtStart(pending_.sliced(start, commandSize));
    const bool isKnown = command != WatchCommand::unknown;
    if (isKnown || !isSkipping_) {
      commands.append(command);
    }
    isSkipping_ = !isKnown;
    start += isKnown ? commandSize : 1;
  }
  pending_.remove(0, start);
  return commands;
}

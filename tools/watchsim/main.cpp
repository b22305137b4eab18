#include "tools/watchsim/emulatedWatch.h"
#include "tools/watchsim/watchMemory.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>

#include <csignal>
#include <cstdio>
#include <ctime>
#include <latch>
#include <limits>

using namespace Qt::StringLiterals;

// An emulated watch for demonstrations: prints the serial port to open, then every command that it
// receives, until it is interrupted.

namespace {

/// The program cannot go on with what it was given.
struct UsageError {
  QString reason;
};

void addOptions(QCommandLineParser& parser) {
  parser.setApplicationDescription(u"Emulates the watch on a pseudo-terminal."_s);
  parser.addHelpOption();
  parser.addOptions(
      {{u"link"_s, u"Make a symbolic link to the port."_s, u"PATH"_s},
       {u"seed"_s, u"Seed of the recorded runs."_s, u"N"_s, u"1"_s},
       {u"runs"_s, u"Number of recorded runs, up to 255."_s, u"N"_s, u"6"_s},
       {u"points"_s, u"Track points of each run; 0: different ones."_s, u"N"_s, u"0"_s},
       {u"today"_s, u"The day before which the runs took place."_s, u"yyyy-MM-dd"_s},
       {u"replay"_s, u"Play back a kept download in place of recorded runs."_s, u"FILE"_s},
       {u"full-speed"_s, u"As fast as the line takes it, not at 115200 baud."_s},
       {u"silent"_s, u"Answer nothing."_s},
       {u"no-link-answer"_s, u"Do not answer the link command."_s},
       {u"no-end"_s, u"Send no end marker."_s},
       {u"only"_s, u"Send only N blocks of data."_s, u"N"_s},
       {u"pieces"_s, u"Write pieces of random size."_s, u"MIN-MAX"_s},
       {u"garbage"_s, u"Send random bytes in place of blocks."_s},
       {u"hang-up-after"_s, u"Hang up after N bytes of a download and exit."_s, u"N"_s}});
}

qint32 number(const QString& text, const QString& option, qint32 lowest, qint32 highest) {
  bool isNumber = false;
  const qint32 value = text.toInt(&isNumber);
  if (!isNumber || value < lowest || value > highest) {
    throw UsageError{
        u"--%1: a number from %2 to %3, please"_s.arg(option).arg(lowest).arg(highest)};
  }
  return value;
}

qint32 number(const QCommandLineParser& parser, const QString& option, qint32 lowest,
              qint32 highest = std::numeric_limits<qint32>::max()) {
  return number(parser.value(option), option, lowest, highest);
}

QList<QByteArray> memoryFrom(const QCommandLineParser& parser) {
  if (parser.isSet(u"replay"_s)) {
    QFile file(parser.value(u"replay"_s));
    if (!file.open(QIODevice::ReadOnly)) {
      throw UsageError{file.fileName() + u": "_s + file.errorString()};
    }
    return blocksFromLines(QString::fromLatin1(file.readAll()));
  }
  MemoryOptions options;
  options.seed = static_cast<quint32>(number(parser, u"seed"_s, 0));
  options.runs = number(parser, u"runs"_s, 0, 255);
  options.pointsPerRun = number(parser, u"points"_s, 0, 65'535);
  if (parser.isSet(u"today"_s)) {
    options.today = QDate::fromString(parser.value(u"today"_s), Qt::ISODate);
    if (!options.today.isValid()) {
      throw UsageError{u"--today: a day like 2014-05-17, please"_s};
    }
  }
  return makeMemory(options);
}

void setPieces(EmulatedWatchOptions& options, const QString& pieces) {
  const QStringList bounds = pieces.split(u'-');
  if (bounds.size() != 2) {
    throw UsageError{u"--pieces: two numbers like 1-64, please"_s};
  }
  options.smallestPiece = number(bounds[0], u"pieces"_s, 1, 4096);
  options.largestPiece = number(bounds[1], u"pieces"_s, options.smallestPiece, 4096);
}

EmulatedWatchOptions optionsFrom(const QCommandLineParser& parser) {
  EmulatedWatchOptions options;
  options.memory = memoryFrom(parser);
  options.link = parser.value(u"link"_s);
  options.fullSpeed = parser.isSet(u"full-speed"_s);
  options.isSilent = parser.isSet(u"silent"_s);
  options.answersLink = !parser.isSet(u"no-link-answer"_s);
  options.sendsEndMarker = !parser.isSet(u"no-end"_s);
  options.sendsGarbage = parser.isSet(u"garbage"_s);
  options.seed = static_cast<quint32>(number(parser, u"seed"_s, 0));
  if (parser.isSet(u"only"_s)) {
    options.onlyBlocks = number(parser, u"only"_s, 0);
  }
  if (parser.isSet(u"hang-up-after"_s)) {
    options.hangUpAfter = number(parser, u"hang-up-after"_s, 0);
  }
  if (parser.isSet(u"pieces"_s)) {
    setPieces(options, parser.value(u"pieces"_s));
  }
  return options;
}

void printLine(const QString& line) {
  std::printf("%s\n", qUtf8Printable(line));
  std::fflush(stdout);
}

/// Returns when the program is asked to end or the watch has hung up.
void waitForEnd(const EmulatedWatch& watch, const sigset_t& ending) {
  const timespec interval{0, 50'000'000};
  while (watch.isRunning() && ::sigtimedwait(&ending, nullptr, &interval) < 0) {
  }
}

int runWatch(const QCommandLineParser& parser) {
  // Blocked before the watch's thread starts, so that only waitForEnd() takes them.
  sigset_t ending;
  sigemptyset(&ending);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    sigaddset(&ending, signal);
  }
  ::pthread_sigmask(SIG_BLOCK, &ending, nullptr);
  static_cast<void>(std::signal(SIGPIPE, SIG_IGN));

  EmulatedWatchOptions options = optionsFrom(parser);
  std::latch isAnnounced(1);  // the port's path is the first line, whatever comes in meanwhile
  options.onCommand = [&isAnnounced](const QString& name) {
    isAnnounced.wait();
    printLine(u"command: "_s + name);
  };
  EmulatedWatch watch(options);
  if (const QString reason = watch.start(); !reason.isNull()) {
    throw UsageError{reason};
  }
  printLine(watch.path());
  isAnnounced.count_down();
  waitForEnd(watch, ending);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  QCommandLineParser parser;
  addOptions(parser);
  parser.process(application);
  try {
    return runWatch(parser);
  } catch (const UsageError& error) {
    std::fprintf(stderr, "watchsim: %s\n", qUtf8Printable(error.reason));
    return 1;
  }
}

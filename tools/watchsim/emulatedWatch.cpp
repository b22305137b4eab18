#include "tools/watchsim/emulatedWatch.h"

#include "tools/watchsim/watchBlocks.h"

#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <limits>
#include <sys/eventfd.h>
#include <unistd.h>

namespace {

constexpr qint64 bytesPerSecond = 11'520;  // 115200 baud, ten bits for each byte
constexpr qint32 blockSize = 36;
constexpr qint32 fullSpeedPiece = 4096;
constexpr qint64 maxBytes = std::numeric_limits<qint64>::max();

}  // namespace

EmulatedWatch::EmulatedWatch(EmulatedWatchOptions options)
    : options_(std::move(options)), random_(options_.seed), memory_(options_.memory) {}

EmulatedWatch::~EmulatedWatch() {
  stop();
}

QString EmulatedWatch::start() {
  if (thread_.joinable()) {
    return QString::fromLatin1("already started");
  }
  QString reason = port_.open();
  if (reason.isNull()) {
    reason = makeLink();
  }
  wakeUp_ = reason.isNull() ? ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK) : -1;
  if (reason.isNull() && wakeUp_ < 0) {
    reason = qt_error_string(errno);
  }
  if (!reason.isNull()) {
    port_.close();
    return reason;
  }
  isStopping_ = false;
  isRunning_ = true;
  thread_ = std::thread([this] { run(); });
  return {};
}

void EmulatedWatch::stop() {
  if (!thread_.joinable()) {
    return;
  }
  isStopping_ = true;
  const quint64 one = 1;
  static_cast<void>(::write(wakeUp_, &one, sizeof one));
  thread_.join();
  ::close(wakeUp_);
  removeLink();
}

// Lists of their own: ones that shared their array would be let go of outside the lock while the
// watch's thread changes it.
QStringList EmulatedWatch::commands() const {
  const std::lock_guard lock(mutex_);
  return {commands_.cbegin(), commands_.cend()};
}

QList<QByteArray> EmulatedWatch::blocks() const {
  const std::lock_guard lock(mutex_);
  return {memory_.cbegin(), memory_.cend()};
}

void EmulatedWatch::run() {
  while (!isStopping_ && isRunning_) {
    waitForWork();
    takeInput();
    sendPieces();
  }
  answer_.reset();
  port_.close();
  isRunning_ = false;
}

void EmulatedWatch::waitForWork() {
  if (!answer_) {
    port_.wait(wakeUp_, false, std::nullopt);
  } else if (isDue()) {
    // The limit is for terminals that do not tell when they take bytes again.
    port_.wait(wakeUp_, true, std::chrono::milliseconds(20));
  } else {
    port_.wait(wakeUp_, false, dueTime() - Clock::now());
  }
}

void EmulatedWatch::takeInput() {
  const WatchPort::Input input = port_.read();
  if (input.wasFlushed) {
    // A program flushes when it has opened the port. It is not the one that the answer was for.
    abandonAnswer();
  }
  for (const WatchCommand command : reader_.take(input.bytes)) {
    obey(command);
    {
      const std::lock_guard lock(mutex_);
      commands_.append(nameOf(command));
    }
    if (options_.onCommand) {
      options_.onCommand(nameOf(command));
    }
  }
}

void EmulatedWatch::obey(WatchCommand command) {
  switch (command) {
    case WatchCommand::link:
      if (options_.answersLink) {
        answer(identityBlock(), false);
      }
      break;
    case WatchCommand::downloadAll:
      answer(downloadBytes(), true);
      break;
    case WatchCommand::erase: {
      const std::lock_guard lock(mutex_);
      memory_.clear();
      break;
    }
    case WatchCommand::disconnect:
      abandonAnswer();
      break;
    case WatchCommand::agpsStart:
    case WatchCommand::unknown:
      break;
  }
}

QByteArray EmulatedWatch::downloadBytes() {
  QList<QByteArray> memory = blocks();
  if (options_.onlyBlocks) {
    memory = memory.first(std::clamp<qsizetype>(*options_.onlyBlocks, 0, memory.size()));
  }
  QByteArray bytes = memory.join();
  if (options_.sendsGarbage) {
    std::generate(bytes.begin(), bytes.end(),
                  [this] { return static_cast<char>(random_.between(0, 255)); });
  }
  return options_.sendsEndMarker ? bytes + endMarkerBlock() : bytes;
}

void EmulatedWatch::answer(const QByteArray& bytes, bool isDownload) {
  abandonAnswer();
  if (!options_.isSilent) {
    answer_ = Answer{bytes, isDownload};
  }
}

void EmulatedWatch::abandonAnswer() {
  if (answer_) {
    answer_.reset();
    port_.discardUnread();
  }
}

void EmulatedWatch::startPiece() {
  qint32 size = options_.fullSpeed ? fullSpeedPiece : blockSize;
  if (options_.largestPiece > 0) {
    size = random_.between(std::clamp(options_.smallestPiece, 1, options_.largestPiece),
                           options_.largestPiece);
  }
  answer_->pieceEnd = std::min(answer_->bytes.size(), answer_->sent + size);
  if (answer_->isDownload && options_.hangUpAfter) {
    const qint64 left = std::max<qint64>(*options_.hangUpAfter - downloadBytesSent_, 0);
    answer_->pieceEnd = std::min(answer_->pieceEnd, answer_->sent + left);
  }
}

EmulatedWatch::Clock::time_point EmulatedWatch::dueTime() const {
  // Counted from the start of the answer, so that lateness does not add up.
  return answer_->start +
         std::chrono::nanoseconds(answer_->pieceEnd * 1'000'000'000 / bytesPerSecond);
}

bool EmulatedWatch::isDue() {
  if (answer_->pieceEnd == answer_->sent) {
    startPiece();
  }
  return options_.fullSpeed || Clock::now() >= dueTime();
}

void EmulatedWatch::sendPieces() {
  while (answer_ && isDue()) {
    const qsizetype count =
        port_.write(answer_->bytes.constData() + answer_->sent, answer_->pieceEnd - answer_->sent);
    answer_->sent += count;
    bytesSent_ += count;
    downloadBytesSent_ += answer_->isDownload ? count : 0;
    if (answer_->isDownload && downloadBytesSent_ >= options_.hangUpAfter.value_or(maxBytes)) {
      isRunning_ = false;
      return;
    }
    if (answer_->sent == answer_->bytes.size()) {
      finishedDownloads_ += answer_->isDownload ? 1 : 0;
      answer_.reset();
    } else if (count == 0) {
      return;
    }
  }
}

QString EmulatedWatch::makeLink() const {
  if (options_.link.isEmpty()) {
    return {};
  }
  const QFileInfo place(options_.link);
  if (place.exists() && !place.isSymLink()) {
    return QString::fromLatin1("%1 is in the way").arg(options_.link);
  }
  // Renamed into place, so that a link left by an earlier watch is never missing in between.
  const QByteArray link = options_.link.toLocal8Bit();
  const QByteArray fresh = link + ".new";
  ::unlink(fresh.constData());
  if (::symlink(port_.path.toLocal8Bit().constData(), fresh.constData()) != 0 ||
      std::rename(fresh.constData(), link.constData()) != 0) {
    return QString::fromLatin1("%1: %2").arg(options_.link, qt_error_string(errno));
  }
  return {};
}

void EmulatedWatch::removeLink() const {
  const QFileInfo place(options_.link);
  if (!options_.link.isEmpty() && place.isSymLink() && place.symLinkTarget() == port_.path) {
    ::unlink(options_.link.toLocal8Bit().constData());
  }
}

#include "app/runLoader.h"

#include "base/detachThread.h"
#include "base/mainQueue.h"
#include "base/memory.h"

#include <QLoggingCategory>
#include <QScopeGuard>

#include <chrono>
#include <exception>
#include <mutex>
#include <optional>
#include <utility>

namespace {

Q_LOGGING_CATEGORY(lcLoader, "trakko.loader", QtInfoMsg)

/// Then the run before the last one is forgotten everywhere, and nobody is waiting.
constexpr std::chrono::seconds restTime{5};

/// Whether the result has become useless meanwhile.
using IsStale = std::function<bool()>;

/// Empty when the result became useless on the way.
std::optional<LoadedTrack> readUnless(const IsStale& isStale, const TrackRequest& wanted,
                                      dataControl::KnownRuns& runs) {
  LoadedTrack track;
  const auto answerOf = [&track](const auto& question) {
    dataControl store;
    auto answer = question(store);
    track.failed = track.failed || store.queryFailed;
    return answer;
  };
  track.points = answerOf([&wanted](dataControl& store) {
    return store.getTrackData(static_cast<qint32>(wanted.number));
  });
  if (isStale()) {
    return {};
  }
  track.runs = answerOf([&runs](dataControl& store) { return store.allRuns(runs); });
  if (!wanted.google) {
    qCInfo(lcLoader, "%lld", static_cast<long long>(track.runs.size()));
  }
  track.laps = answerOf([&wanted](dataControl& store) {
    return store.getLapData(static_cast<qint32>(wanted.lapsNumber));
  });
  if (isStale()) {
    return {};
  }
  track.overlay = wanted.google ? buildGoogleOverlay(track.points, wanted.number, wanted.arrow)
                                : buildGDOverlay(track.points, wanted.number, wanted.arrow);
  if (isStale()) {
    return {};
  }
  track.pointRows = PointRows(track.points, wanted.number);
  return track;
}

/// The thread goes on to other runs after one that, say, does not fit into the memory.
std::optional<LoadedTrack> readOrFail(const IsStale& isStale, const TrackRequest& wanted,
                                      dataControl::KnownRuns& runs) {
  try {
    return readUnless(isStale, wanted, runs);
  } catch (...) {
    const std::exception_ptr error = std::current_exception();
    runGuarded("loader", [&error] { std::rethrow_exception(error); });  // told to the user
    LoadedTrack nothing;
    nothing.failed = true;
    return nothing;
  }
}

}  // namespace

struct RunLoader::Work {
  struct Job {
    int id;
    TrackRequest wanted;
  };

  std::mutex mutex;
  // What the loader and its thread share, under the mutex.
  std::optional<Job> waiting;
  std::optional<dataControl::KnownRuns> remembered;
  bool threadLives = false;
  bool gaveUp = false;
  dataControl::KnownRuns runs;  ///< The thread's alone.
  // The newest request. Main thread.
  int newest = 0;
  TrackRequest wanted;
  Receiver receiver;  ///< Empty once it is answered.

  bool hand(Job job);
  std::optional<Job> takeJob();
  void giveUp();
  bool isSuperseded();
  bool hasGivenUp();
  void answer(int id, LoadedTrack& track);
  static void run(const std::shared_ptr<Work>& work);
};

/// Leaves the job to the thread; true when a thread has to be started for it.
bool RunLoader::Work::hand(Job job) {
  const std::lock_guard lock(mutex);
  waiting = std::move(job);
  gaveUp = false;
  return !std::exchange(threadLives, true);
}

/// The next job of the thread, which has to end when there is none.
std::optional<RunLoader::Work::Job> RunLoader::Work::takeJob() {
  const std::lock_guard lock(mutex);
  if (remembered) {
    runs = *std::exchange(remembered, std::nullopt);
  }
  threadLives = waiting.has_value();
  return std::exchange(waiting, std::nullopt);
}

/// There is no thread for the job that waits.
void RunLoader::Work::giveUp() {
  const std::lock_guard lock(mutex);
  waiting.reset();
  threadLives = false;
  gaveUp = true;
}

bool RunLoader::Work::isSuperseded() {
  const std::lock_guard lock(mutex);
  return waiting.has_value();
}

/// Whether the newest job was left without an answer.
bool RunLoader::Work::hasGivenUp() {
  const std::lock_guard lock(mutex);
  return gaveUp;
}

void RunLoader::Work::answer(int id, LoadedTrack& track) {
  if (id == newest && receiver) {
    std::exchange(receiver, {})(track);
  }
}

void RunLoader::Work::run(const std::shared_ptr<Work>& work) {
  auto onFailure = qScopeGuard([&work] { work->giveUp(); });
  while (const std::optional<Job> job = work->takeJob()) {
    auto track = readOrFail([&work] { return work->isSuperseded(); }, job->wanted, work->runs);
    if (track) {
      performOnMainThread(
          [work, id = job->id, answer = std::make_shared<LoadedTrack>(std::move(*track))] {
            work->answer(id, *answer);
          });
    }
  }
  onFailure.dismiss();
}

RunLoader::RunLoader() : work_(std::make_shared<Work>()) {
  rest_.setSingleShot(true);
  rest_.setInterval(restTime);
  QObject::connect(&rest_, &QTimer::timeout, [this] {
    if (work_->receiver) {
      rest_.start();  // still reading
    } else {
      giveBackFreeMemory();
    }
  });
}
RunLoader::~RunLoader() = default;

void RunLoader::request(const TrackRequest& wanted, Receiver receiver) {
  rest_.start();
  const bool unanswered = std::exchange(work_->receiver, std::move(receiver)) != nullptr;
  if (unanswered && wanted == work_->wanted && !work_->hasGivenUp()) {
    return;
  }
  work_->wanted = wanted;
  if (work_->hand({++work_->newest, wanted}) &&
      !detachThread("loader", [work = work_] { Work::run(work); })) {
    work_->giveUp();
    work_->receiver = nullptr;  // the same run may be asked for again
  }
}

void RunLoader::remember(dataControl::KnownRuns runs) {
  const std::lock_guard lock(work_->mutex);
  work_->remembered = std::move(runs);
}

LoadedTrack RunLoader::read(const TrackRequest& wanted) {
  dataControl::KnownRuns runs;
  return readUnless([] { return false; }, wanted, runs).value();
}

#pragma once

#include <mutex>

/// What must not overlap in this process: decoding and storing a download, which counts on from the
/// highest number it has asked for; deleting; putting another file in the database's place. Whoever
/// does one of them holds the turn for as long as it lasts. Any thread, but once at a time.
namespace databaseUse {

using Turn = std::unique_lock<std::mutex>;

inline std::mutex oneAtATime;

/// Waits for the turn.
inline Turn await() {
  return Turn(oneAtATime);
}

/// Answers at once; the turn is false when somebody else has it.
inline Turn ifFree() {
  return Turn(oneAtATime, std::try_to_lock);
}

}  // namespace databaseUse

#include "device/detectionState.h"

#include <mutex>

namespace {

std::mutex& guard() {
  static auto* mutex = new std::mutex;  // outlives detached threads
  return *mutex;
}

DetectionState& state() {
  static auto* last = new DetectionState;
  return *last;
}

}  // namespace

DetectionState detectionState() {
  const std::lock_guard lock(guard());
  return state();
}

void setDetectionState(const DetectionState& last) {
  const std::lock_guard lock(guard());
  state() = last;
}

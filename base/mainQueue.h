#pragma once

#include <functional>

/// Runs `work` on the main thread in its event loop, also while a modal box is open there. Any
/// thread; returns at once. Without an application the work is dropped.
void performOnMainThread(std::function<void()> work);

/// The main queue of the process: blocks for the main thread, strictly one after another. While one
/// of them shows a modal box, the next one waits.
namespace mainQueue {

/// Adds a block. Any thread; returns at once.
void post(std::function<void()> block);

}  // namespace mainQueue

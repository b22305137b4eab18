#pragma once

#include <functional>

/// Runs `work` on a new thread named `name` (at most 15 characters) that nobody joins.
///
/// `work` must keep what it uses alive (shared ownership). An exception that leaves it is logged
/// and ends the thread only.
void detachThread(const char* name, std::function<void()> work);

/// Number of threads started with detachThread() that have not ended yet. Any thread.
int detachedThreadCount();

#pragma once

#include <QString>

#include <functional>

/// Runs `work` on a new thread named `name` (at most 15 characters) that nobody joins.
///
/// `work` must keep what it uses alive (shared ownership). An exception of any type that leaves it
/// ends the thread only. False when the system refuses one more thread; `work` is dropped then.
/// Both are logged and told to the observer.
bool detachThread(const char* name, std::function<void()> work);

/// Runs `work` in this thread; an exception that leaves it is logged and told to the observer like
/// one that ends a thread. Any thread.
void runGuarded(const char* name, const std::function<void()>& work) noexcept;

/// Who is told of threads that failed, by name and reason, on the failing thread; an empty function
/// for nobody. One observer in the process. Any thread.
void observeThreadFailures(std::function<void(const QString& thread, const QString& reason)> told);

/// Number of threads started with detachThread() that have not ended yet. Any thread.
int detachedThreadCount();

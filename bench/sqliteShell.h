#pragma once

#include <QFile>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

// The sqlite3 shell as the yardstick of the store's benchmarks.

/// Writes a script for the shell and answers its path.
inline QString writeScript(const QString& path, const QByteArray& text) {
  QFile file(path);
  if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size()) {
    qFatal("cannot write a script");
  }
  return path;
}

/// Lets the shell work off the script, its output thrown away.
inline void runShell(const QString& database, const QString& script) {
  const QByteArray file = QFile::encodeName(database);
  const QByteArray input = QFile::encodeName(script);
  std::array<char, 8> program{"sqlite3"};
  std::vector<char> path(file.cbegin(), file.cend() + 1);
  const std::array<char*, 3> arguments{program.data(), path.data(), nullptr};
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 0, input.constData(), O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
  pid_t child = 0;
  int status = -1;
  if (posix_spawnp(&child, program.data(), &actions, nullptr, arguments.data(), environ) == 0) {
    waitpid(child, &status, 0);
  }
  posix_spawn_file_actions_destroy(&actions);
  if (status != 0) {
    qFatal("sqlite3 failed");
  }
}

/// The seconds that the work takes.
template <typename Work>
double seconds(Work&& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

inline double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

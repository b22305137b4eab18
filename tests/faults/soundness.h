#pragma once

#include "tests/data/storeFolder.h"

#include <random>
#include <sys/wait.h>
#include <unistd.h>

// What the proofs share: the same faults every time, and what a proof has seen.

inline std::mt19937 chance(1);  // NOLINT(cert-msc51-cpp,bugprone-random-generator-seed)

struct Outcome {
  int checks = 0;
  QStringList failures;

  /// `problem` is null when all is well.
  void note(const QString& problem, const QString& where) {
    ++checks;
    if (!problem.isNull()) {
      failures << where + ": " + problem;
    }
  }
  /// Prints a line of the table; the exit code.
  int verdict(const char* proof) const {
    std::printf("%-66s %6d checks, %lld failed\n", proof, checks,
                static_cast<long long>(failures.size()));
    for (const QString& failure : failures.mid(0, 10)) {
      std::printf("  %s\n", qPrintable(failure));
    }
    return failures.isEmpty() ? 0 : 1;
  }
};

/// Null when the file is sound and holds from `least` to `most` runs, each whole.
inline QString problem(const QString& database, qint64 least, qint64 most) {
  if (const QString check = ask(database, "pragma integrity_check"); check != "ok") {
    return check;
  }
  if (least == 0 && ask(database, "select count(*) from sqlite_schema") == "0") {
    return {};  // not even the tables, as before the first start
  }
  const qint64 runs = ask(database, "select count(*) from T_RunData").toLongLong();
  if (runs < least || runs > most) {
    return QString("%1 runs, expected %2 to %3").arg(runs).arg(least).arg(most);
  }
  const QString parts = ask(database,
                            "select (select sum(T_RunLap) from T_RunData) is not (select "
                            "sum(1) from T_LapData), (select sum(T_RunTrackPoint) from "
                            "T_RunData) is not (select sum(1) from T_TrackPointData)");
  return parts == "0|0" ? QString() : "a run is not whole: " + parts;
}

/// Runs `work` in a process of its own; its answer is the exit code.
template <typename Work>
pid_t inChild(Work&& work) {
  const pid_t child = fork();
  if (child == 0) {
    _exit(work());
  }
  return child;
}

/// The child's exit code, -1 when a signal ended it.
inline int exitOf(pid_t child) {
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

#pragma once

#include <QByteArray>
#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include <map>
#include <unistd.h>

// What the system tells of this process and of those that it started.

namespace proc {

inline QByteArray content(const QString& path) {
  QFile file(QStringLiteral("/proc/") + path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The fields of a process's stat behind its name, the first of which is its state.
inline QList<QByteArray> fields(const QString& process) {
  const QByteArray stat = content(process + QStringLiteral("/stat"));
  const qsizetype name = stat.lastIndexOf(')');
  return name < 0 ? QList<QByteArray>() : stat.mid(name + 2).split(' ');
}

}  // namespace proc

/// MiB of a process, what it shares with others counted in parts.
inline double memoryOf(qint64 process) {
  const QByteArray rollup = proc::content(QStringLiteral("%1/smaps_rollup").arg(process));
  const QByteArray key("\nPss:");
  const qsizetype pss = rollup.indexOf(key);
  constexpr double kibibytes = 1024.0;
  return pss < 0 ? 0
                 : rollup.mid(pss + key.size(), 20).simplified().split(' ').value(0).toDouble() /
                       kibibytes;
}

/// MiB of this process and all that it started.
inline double memoryOfProcesses() {
  std::multimap<qint64, qint64> children;
  for (const QString& entry : QDir(QStringLiteral("/proc")).entryList(QDir::Dirs)) {
    children.emplace(proc::fields(entry).value(1).toLongLong(), entry.toLongLong());
  }
  double sum = 0;
  QList<qint64> waiting{QCoreApplication::applicationPid()};
  while (!waiting.isEmpty()) {
    const qint64 process = waiting.takeLast();
    sum += memoryOf(process);
    const auto [first, end] = children.equal_range(process);
    for (auto child = first; child != end; ++child) {
      waiting << child->second;
    }
  }
  return sum;
}

inline int threadsOfProcess() {
  constexpr int threadCount = 17;
  return proc::fields(QStringLiteral("self")).value(threadCount).toInt();
}

/// Milliseconds since this process began, exact to ten.
inline double millisecondsOfProcess() {
  constexpr int startTime = 19;
  const double ticks = proc::fields(QStringLiteral("self")).value(startTime).toDouble();
  const double uptime = proc::content(QStringLiteral("uptime")).split(' ').value(0).toDouble();
  return 1000.0 * (uptime - ticks / static_cast<double>(sysconf(_SC_CLK_TCK)));
}

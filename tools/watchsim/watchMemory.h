#pragma once

#include <QByteArray>
#include <QDate>
#include <QList>
#include <QString>

/// What the emulated watch has recorded.
struct MemoryOptions {
  quint32 seed = 1;         ///< The same seed makes the same runs on every machine.
  qint32 runs = 6;          ///< 0 to 255.
  qint32 pointsPerRun = 0;  ///< 1 to 65535; 0: between 380 and 640, different for each run.
  QDate today = QDate::currentDate();  ///< The last run was yesterday.
};

/// The blocks of 36 bytes that a download brings, without the end marker: first header and laps of
/// every run, then the points of every run.
QList<QByteArray> makeMemory(const MemoryOptions& options);

/// The blocks of a download that was kept as text, a line for each block ("EE 0A ..."). Lines that
/// are no block of 36 bytes are left out.
QList<QByteArray> blocksFromLines(const QString& lines);

/// The line of text for a block, as the program keeps it.
QString lineFromBlock(const QByteArray& block);

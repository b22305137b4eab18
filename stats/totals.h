#pragma once

#include "data/records.h"

#include <QDate>
#include <QString>
#include <QStringList>
#include <QtGlobal>

#include <vector>

/// What was run in a week, a month or a year. Pure; any thread.
namespace totals {

/// Weeks begin on Monday.
enum class Period { week, month, year };

/// The first day of the period that holds `day`.
QDate firstDay(QDate day, Period period);
/// The last day of the period that begins on `first`.
QDate lastDay(QDate first, Period period);

/// The sums over some runs.
struct Totals {
  QDate first;             ///< First day of the period; invalid for the sum over all runs.
  qint64 runs = 0;         ///< How many.
  double kilometres = 0;   ///< Their distance.
  double seconds = 0;      ///< Their exercise time.
  double longest = 0;      ///< Kilometres of the longest of them.
  qsizetype position = 0;  ///< Where the first of them stands among the keys given.

  /// "MM'SS" for a kilometre over all of them; "00'00" without distance or time.
  QString averagePace() const;
  /// "H:MM:SS".
  QString time() const;
};

/// The periods that hold runs, newest first, and the sum over all runs.
struct Table {
  std::vector<Totals> periods;
  Totals all;
};

/// Counts the runs that the keys name, as the store answers both (distances in kilometres). A run
/// whose start begins with no date belongs to no period, only to the sum over all.
Table count(const RunDictionary& runs, const QStringList& keys, Period period);

/// The period's name: "2026-05-04" of a week's Monday with a wave dash behind it, "2026-05",
/// "2026"; "すべて" for the sum over all runs.
QString nameOf(QDate first, Period period);

}  // namespace totals

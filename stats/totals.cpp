#include "stats/totals.h"

#include "base/text.h"
#include "base/trackTime.h"
#include "stats/units.h"

#include <algorithm>
#include <functional>
#include <map>

using namespace Qt::StringLiterals;

namespace totals {

namespace {

void add(Totals& sum, const runData& run) {
  const double kilometres = text::toDouble(run.T_RunDistance);
  ++sum.runs;
  sum.kilometres += kilometres;
  sum.seconds += trackTimeValue(run.T_RunExTime);
  sum.longest = std::max(sum.longest, kilometres);
}

}  // namespace

QDate firstDay(QDate day, Period period) {
  switch (period) {
    case Period::week:
      return day.addDays(Qt::Monday - day.dayOfWeek());
    case Period::month:
      return {day.year(), day.month(), 1};
    case Period::year:
      break;
  }
  return {day.year(), 1, 1};
}

QDate lastDay(QDate first, Period period) {
  switch (period) {
    case Period::week:
      return first.addDays(6);
    case Period::month:
      return first.addMonths(1).addDays(-1);
    case Period::year:
      break;
  }
  return first.addYears(1).addDays(-1);
}

QString Totals::averagePace() const {
  // Straight from the sums: the detour over a speed makes 04'59 of 05'00.
  return units::paceOfSeconds(kilometres > 0 ? seconds / kilometres : 0);
}

QString Totals::time() const {
  return units::durationText(seconds);
}

Table count(const RunDictionary& runs, const QStringList& keys, Period period) {
  constexpr qsizetype dateLength = 10;
  std::map<QDate, Totals, std::greater<>> periods;
  Table table;
  for (qsizetype i = 0; i < keys.size(); ++i) {
    const auto run = runs.constFind(keys.at(i));
    if (run == runs.constEnd()) {
      continue;
    }
    add(table.all, *run);
    const QDate day = QDate::fromString(run->T_RunStartTime.left(dateLength), Qt::ISODate);
    if (day.isValid()) {
      const QDate first = firstDay(day, period);
      const auto [entry, isNew] = periods.try_emplace(first, Totals{.first = first, .position = i});
      add(entry->second, *run);
    }
  }
  for (const auto& [first, sum] : periods) {
    table.periods.push_back(sum);
  }
  return table;
}

QString nameOf(QDate first, Period period) {
  if (!first.isValid()) {
    return u"すべて"_s;
  }
  switch (period) {
    case Period::week:
      return first.toString(u"yyyy-MM-dd"_s) + u'〜';
    case Period::month:
      return first.toString(u"yyyy-MM"_s);
    case Period::year:
      break;
  }
  return first.toString(u"yyyy"_s);
}

}  // namespace totals

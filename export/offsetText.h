#pragma once

#include <QString>

/// The zone text behind every time of an exported file: "+", the whole hours of `seconds` (the
/// local zone's offset from GMT), ":00".
///
/// The sign is always "+", hours west of Greenwich keep their own "-" behind it, and parts of an
/// hour are dropped: UTC+9 gives "+09:00", UTC+5:30 "+05:00", UTC-5 "+-5:00". Kept: stored files
/// and their readers rely on it.
QString offsetText(int seconds);

/// offsetText() of the local zone at this moment: exported times carry it whatever the run's date.
QString offsetNow();

#pragma once

#include <QString>
#include <QStringView>

// The units of stored values, and how the program writes them. Pure; any thread. Texts that are no
// numbers count as 0.
namespace units {

/// Kilometres of a stored distance in centimetres.
double kilometres(QStringView centimetres);
/// km/h of a stored run or lap speed in tenths of km/h.
double kmh(QStringView tenths);
/// km/h of a stored point speed in fiftieths of km/h.
double pointKmh(QStringView fiftieths);
/// Beats per minute, truncated, of a stored point heart rate in fifths of a beat.
qint32 pointHeartRate(QStringView fifths);
/// Kilocalories of a stored energy in ten thousandths of a kilocalorie.
double kilocalories(QStringView stored);

/// The pace per kilometre of a speed in km/h, "MM'SS"; "00'00" when the speed is not above 0.
/// Minutes above 99 take three digits.
QString paceText(double speed);
/// The same of the seconds that a kilometre took.
QString paceOfSeconds(double seconds);

/// A duration in seconds, fractions cut: "H:MM:SS", as many digits of hours as it takes.
QString durationText(double seconds);

}  // namespace units

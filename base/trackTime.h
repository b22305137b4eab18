#pragma once

#include <QStringView>

/// The seconds of a time of day "HH:MM:SS". Each part is read as a decimal number, so a part that
/// is none counts 0 and a fraction of a second is kept. Pure, any thread.
double trackTimeValue(QStringView time);

#pragma once

#include <QString>
#include <QStringList>

/// What the program prints instead of opening its window; null when the window is asked for.
/// Arguments that are not the program's own stay for Qt. Needs no display.
QString answerTo(const QStringList& arguments);

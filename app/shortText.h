#pragma once

#include <QString>

/// The text as long as the window can paint it at any time: what goes beyond `longest` characters
/// is replaced by "…". A restored file may hold texts of megabytes, and laying out one of combining
/// characters takes minutes. Pure; any thread.
QString shortened(const QString& text, qsizetype longest = 300);

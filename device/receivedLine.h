#pragma once

#include <QString>
#include <QStringView>

#include <cstddef>
#include <span>

/// The line of text that a received block becomes: `count` bytes as two upper-case hexadecimal
/// digits each, with single blanks between them. Positions behind the buffer are zeros.
QString hexLine(std::span<const std::byte> buffer, qsizetype count);

/// True for the line that ends a download: it begins with four bytes EE.
bool isEndMarker(QStringView line);

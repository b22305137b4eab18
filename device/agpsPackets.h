#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

/// AssistNow Offline data as the watch takes it: packets of 256 bytes, written as hexadecimal
/// digits in lower case.
namespace agps {

/// Two digits that make the bytes of `hex` add up to 0xFF modulo 256. Blanks are skipped, a last
/// odd digit is ignored, and a pair counts as far as it is a number.
QString checksum(const QString& hex);

/// The packets of a file, in order: "475053" ("GPS"), the packet's number, 256 bytes of data with
/// zeros behind the end of the file, the checksum of the data.
///
/// The number is the low byte in as few digits as it takes, with "000" in front up to packet 255
/// only: "0000" for the first, "00010" for packet 16, "0" for packet 256.
///
/// Because of their numbers, packets from 16 on have an odd number of digits or one byte less than
/// those before: whoever sends them has to settle with the watch what that means.
QStringList packets(const QByteArray& file);

}  // namespace agps

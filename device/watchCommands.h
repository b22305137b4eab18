#pragma once

#include <QString>
#include <QStringView>

#include <array>
#include <cstddef>

/// The watch's commands as texts of 64 hexadecimal digits.
namespace watchCommand {
extern const QString link;
extern const QString downloadAll;
extern const QString erase;
extern const QString agpsStart;
extern const QString disconnect;
}  // namespace watchCommand

/// The 32 bytes that a command text stands for: two digits each, zeros behind a shorter text; what
/// is beyond 32 bytes and a last odd character are dropped.
///
/// The letter case of a pair's second digit is judged by its first: "AA" is 0xAA and "0a" is 0x0A,
/// but "0A" is 0xEA. All commands are texts that this reads correctly.
std::array<std::byte, 32> commandBytes(QStringView hex);

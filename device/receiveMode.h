#pragma once

#include <QtGlobal>

/// What the receive thread does with a block (usbOperating::checkGetDataType). In all modes but the
/// first two a block is dropped and no wait can succeed.
namespace receiveMode {
constexpr qint32 link = 1;      ///< Takes the first block as the answer, closes the port and ends.
constexpr qint32 download = 2;  ///< Collects lines until the end marker.
constexpr qint32 agps = 5;
constexpr qint32 erase = 6;
constexpr qint32 disconnect = 7;
}  // namespace receiveMode

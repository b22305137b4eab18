#pragma once

#include <QtGlobal>

/// Sets any line speed in both directions, whether or not it is one of the terminal interface's
/// named speeds. False with errno when the driver refuses.
bool setLineSpeed(int descriptor, qint32 baud);

/// Asks the driver to hand received bytes on at once. True also when the driver has no such control
/// (it delivers at once anyway); false with errno on other failures.
bool setLowLatency(int descriptor);

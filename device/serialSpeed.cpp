#include "device/serialSpeed.h"

// <asm/termbits.h> defines the same names as <termios.h> differently: keep them apart.
#include <asm/termbits.h>
#include <cerrno>
#include <linux/serial.h>
#include <linux/tty_flags.h>
#include <sys/ioctl.h>

namespace {

constexpr unsigned inputSpeedShift = IBSHIFT;

bool isMissingControl(int error) {
  return error == ENOTTY || error == EINVAL || error == EOPNOTSUPP;
}

}  // namespace

bool setLineSpeed(int descriptor, qint32 baud) {
  if (baud <= 0) {
    errno = EINVAL;
    return false;
  }
  termios2 attributes{};
  if (ioctl(descriptor, TCGETS2, &attributes) != 0) {
    return false;
  }
  constexpr auto speedBits = static_cast<tcflag_t>(CBAUD | (CBAUD << inputSpeedShift));
  attributes.c_cflag &= ~speedBits;
  attributes.c_cflag |= static_cast<tcflag_t>(BOTHER | (BOTHER << inputSpeedShift));
  attributes.c_ispeed = static_cast<speed_t>(baud);
  attributes.c_ospeed = static_cast<speed_t>(baud);
  return ioctl(descriptor, TCSETS2, &attributes) == 0;
}

bool setLowLatency(int descriptor) {
  serial_struct settings{};
  if (ioctl(descriptor, TIOCGSERIAL, &settings) != 0) {
    return isMissingControl(errno);
  }
  if ((static_cast<unsigned>(settings.flags) & ASYNC_LOW_LATENCY) != 0) {
    return true;
  }
  settings.flags = static_cast<int>(static_cast<unsigned>(settings.flags) | ASYNC_LOW_LATENCY);
  return ioctl(descriptor, TIOCSSERIAL, &settings) == 0 || isMissingControl(errno);
}

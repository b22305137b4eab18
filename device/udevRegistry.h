#pragma once

#include "device/deviceEnvironment.h"
#include "device/usbRegistry.h"

/// The devices of this computer, through libudev.
///
/// The serial port of a bridge with one of the watch's ids goes by the watch's call-out name, other
/// ports by their device file. The registry paths of a device and of its ports share characters
/// that identify the device.
class UdevRegistry : public UsbRegistry {
 public:
  /// `extraNode` is a device file that is offered as one more watch (an emulated one, an adapter
  /// with other ids) and preferred to all others; empty for none.
  explicit UdevRegistry(const QString& extraNode = qEnvironmentVariable("TRAKKO_WATCH_PORT"));

  std::optional<QList<UsbDevice>> devices(quint16 vendor, quint16 product) const override;
  QList<SerialClient> serialClients() const override;

 private:
  const QString extraNode_;
};

/// The surroundings on this machine: its devices, with a watch behind the serial port `extraNode`
/// (by default the one that the environment variable TRAKKO_WATCH_PORT names), and the kept lines
/// beside the main bundle, which must be set.
DeviceEnvironment environmentHere(
    std::shared_ptr<Messenger> messenger,
    const QString& extraNode = qEnvironmentVariable("TRAKKO_WATCH_PORT"));

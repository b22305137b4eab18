#pragma once

#include <QList>
#include <QString>
#include <QStringView>

#include <optional>

/// The USB ids of the bridge that the watch sits behind.
namespace watchUsb {
constexpr quint16 vendor = 4292;         ///< 10c4 in the kernel's lists.
constexpr quint16 product = 60000;       ///< ea60
constexpr quint16 otherProduct = 60001;  ///< ea61
}  // namespace watchUsb

/// A USB device as the registry knows it.
struct UsbDevice {
  QString name;
  QString path;          ///< Registry path; see samePhysicalDevice().
  QString serialNumber;  ///< Serial number text, null when the device has none.
};

/// A serial port that programs can call out through.
struct SerialClient {
  QString name;
  QString path;           ///< Registry path; see samePhysicalDevice().
  QString calloutDevice;  ///< The name under which programs know it; null when it has none.
  QString node;           ///< The device file behind that name.
};

/// The USB devices and serial ports present at the moment of asking. Any thread.
class UsbRegistry {
 public:
  virtual ~UsbRegistry() = default;

  /// The devices with these ids; nothing at all (not: an empty list) when the system cannot be
  /// asked.
  virtual std::optional<QList<UsbDevice>> devices(quint16 vendor, quint16 product) const = 0;

  /// All serial ports, in the order in which a search walks them.
  virtual QList<SerialClient> serialClients() const = 0;

  /// The device file behind a call-out name; the name itself when no serial port has it.
  QString deviceNode(const QString& calloutDevice) const;
};

/// The call-out name of the watch's serial port.
extern const QString watchCalloutDevice;

/// True when two registry paths lead to one USB device: characters 75 to 100 are equal. Paths of
/// fewer than 101 characters cannot be compared and belong to nothing.
bool samePhysicalDevice(QStringView usbPath, QStringView serialPath);

#pragma once

#include "base/messenger.h"
#include "device/usbRegistry.h"

#include <QHash>
#include <QStringList>

#include <mutex>
#include <utility>

// What the user is told.
inline const QString notRecognised =
    QStringLiteral("時計を認識出来ません、再度USB接続を確認して下さい。");
inline const QString noData = QStringLiteral("データが見当たりません、USBの接続を確認して下さい。");

/// A registry path that belongs to the device `id` (one character).
inline QString registryPathOf(char16_t id) {
  return QString(75, u'/') + QString(26, id) + QStringLiteral("/tail");
}

/// A registry filled by hand.
class FakeRegistry : public UsbRegistry {
 public:
  std::optional<QList<UsbDevice>> devices(quint16 vendor, quint16 product) const override {
    const std::lock_guard lock(mutex_);
    asked.append(product);
    if (vendor != 4292 || broken) {
      return std::nullopt;
    }
    return usb.value(product);
  }
  QList<SerialClient> serialClients() const override { return clients; }

  /// One watch with the usual ids at this device file.
  void plugWatch(const QString& node, quint16 product = 60000) {
    usb[product] = {{QStringLiteral("bridge"), registryPathOf(u'w'), QStringLiteral("0001")}};
    clients = {{QStringLiteral("port"), registryPathOf(u'w'), watchCalloutDevice, node}};
  }

  QHash<quint16, QList<UsbDevice>> usb;  ///< By product.
  QList<SerialClient> clients;
  bool broken = false;
  mutable QList<quint16> asked;  ///< Products in the order of the searches.

 private:
  mutable std::mutex mutex_;
};

/// Takes down what the user would be told.
class RecordedMessages : public Messenger {
 public:
  void message(const QString& text) override {
    const std::lock_guard lock(mutex_);
    messages_.append(text);
  }

  QStringList take() {
    const std::lock_guard lock(mutex_);
    return std::exchange(messages_, {});
  }

 private:
  std::mutex mutex_;
  QStringList messages_;
};

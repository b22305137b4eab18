#pragma once

#include "device/usbRegistry.h"

#include <QList>
#include <QString>

#include <thread>

class usbOperating;

/// What a search asked to be told about.
struct MatchNotification {
  QString className;
  quint16 vendor = 0;
  quint16 product = 0;
  void (*callback)(usbOperating* reference, const QList<UsbDevice>& iterator) = nullptr;
  /// Always null: a watch that is plugged in after the search reaches no object, the next command
  /// searches anew.
  usbOperating* reference = nullptr;
};

/// The last search of the process.
struct DetectionState {
  MatchNotification gNotifyPort;
  std::thread::id gRunLoop;     ///< The thread that searched.
  QList<UsbDevice> gAddedIter;  ///< The devices it found.
};

/// Any thread.
DetectionState detectionState();
/// Any thread.
void setDetectionState(const DetectionState& state);

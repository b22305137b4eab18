#pragma once

#include "data/bundle.h"
#include "data/dataControl.h"
#include "device/usbOperating.h"
#include "fakeRegistry.h"
#include "tests/files.h"
#include "tools/watchsim/emulatedWatch.h"
#include "tools/watchsim/watchMemory.h"

#include <QtTest>

#include <future>
#include <optional>

const inline QByteArray unknownBlock(36, '\x12');

template <typename Work>
auto inBackground(Work work) {
  return std::async(std::launch::async, work);
}

/// A test of the link: an empty database and a registry for each function.
class LinkTest : public QObject {
 protected:
  void startAnew() {
    folder_.emplace();
    setMainBundle({folder_->filePath("Trakko.app"), "Trakko"});
    registry_ = std::make_shared<FakeRegistry>();
    messages_ = std::make_shared<RecordedMessages>();
  }
  /// Runs as fast as the line takes it.
  std::unique_ptr<EmulatedWatch> plug(EmulatedWatchOptions options) {
    options.fullSpeed = true;
    auto watch = std::make_unique<EmulatedWatch>(options);
    if (const QString reason = watch->start(); !reason.isNull()) {
      qFatal("%s", qPrintable(reason));
    }
    registry_->plugWatch(watch->path());
    return watch;
  }
  DeviceEnvironment environment(double answerLimit = 1.0) const {
    return {registry_, messages_, answerLimit, keptFile()};
  }
  QString keptFile() const { return folder_->filePath("lastDownload.txt"); }
  static QList<QByteArray> blocksIn(const QString& path) {
    return blocksFromLines(QString::fromLatin1(bytesOf(path)));
  }
  static qsizetype storedRuns() { return dataControl().getRunData("ALL", {}).size(); }

  std::shared_ptr<FakeRegistry> registry_;
  std::shared_ptr<RecordedMessages> messages_;
  std::optional<QTemporaryDir> folder_;
};

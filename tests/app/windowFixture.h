#pragma once

#include "app/MainWindow.h"
#include "app/TrakkoAppDelegate.h"
#include "base/detachThread.h"
#include "data/bundle.h"
#include "tests/device/fakeRegistry.h"
#include "web/mapView.h"

#include <QtTest>

#include <functional>
#include <memory>
#include <mutex>

/// Answers the program's questions by itself and remembers what was said.
class ScriptedDialogs : public Dialogs {
 public:
  bool eraseAnswer = false;
  bool confirmAnswer = false;
  QString fileAnswer;                    ///< Null cancels the panels.
  std::function<void()> duringQuestion;  ///< What happens while the question stands.
  std::function<void()> duringPanel;     ///< And while a file is chosen.

  void message(const QString& text) override {
    const std::lock_guard lock(mutex_);
    messages_ << text;
  }
  bool confirmErase(const QString& text) override {
    questions << text;
    if (duringQuestion) {
      duringQuestion();
    }
    return eraseAnswer;
  }
  bool confirm(const QString& text, const QString& action) override {
    questions << text + u'|' + action;
    return confirmAnswer;
  }
  QString fileToSave(const QString& title, const QString& name, const QString& type) override {
    panels << title + u'|' + name + u'|' + type;
    if (duringPanel) {
      duringPanel();
    }
    return fileAnswer;
  }
  QString fileToOpen(const QString& title, const QString& type) override {
    panels << title + u'|' + type;
    return fileAnswer;
  }

  QStringList messages() {
    const std::lock_guard lock(mutex_);
    return messages_;
  }
  void forget() {
    const std::lock_guard lock(mutex_);
    messages_ = questions = panels = {};
  }
  QStringList questions;
  QStringList panels;

 private:
  std::mutex mutex_;
  QStringList messages_;
};

/// Stands for the map page and remembers what was asked of it.
class RecordingMap : public MapView {
 public:
  QStringList calls;

  void loadPage(const QString& html, const QUrl& baseUrl) override {
    calls << QStringLiteral("load ") + baseUrl.toString() +
                 (html.contains(QStringLiteral("AMap")) ? QStringLiteral(" AMap") : QString());
  }
  void evaluate(const QString& script) override { calls << script; }
  void callFunction(const QString& name, const QStringList& arguments) override {
    calls << name + u'(' + arguments.join(QStringLiteral(" | ")) + u')';
  }
};

/// The real window and controller on a database in a folder of its own, with short pauses.
struct WindowFixture {
  QTemporaryDir folder;
  std::shared_ptr<ScriptedDialogs> dialogs = std::make_shared<ScriptedDialogs>();
  std::shared_ptr<FakeRegistry> registry = std::make_shared<FakeRegistry>();
  RecordingMap map;
  std::unique_ptr<TrakkoAppDelegate> controller;
  std::unique_ptr<MainWindow> window;

  WindowFixture() {
    QDir(folder.path()).mkpath(QStringLiteral("Trakko.app/Contents"));
    setMainBundle({folder.path() + QStringLiteral("/Trakko.app"), QStringLiteral("Trakko")});
    ControllerContext context;
    context.dialogs = dialogs;
    context.device.messenger = dialogs;
    context.device.registry = registry;
    context.device.answerLimit = 0.5;
    context.device.lastDownloadPath = file(QStringLiteral("lastDownload.txt"));
    context.startUpStep = std::chrono::milliseconds(20);
    context.lapPause = std::chrono::milliseconds(20);
    controller = std::make_unique<TrakkoAppDelegate>(context);
    window = std::make_unique<MainWindow>(controller.get());
    controller->theWebView = &map;
  }

  ~WindowFixture() { settle(); }
  WindowFixture(const WindowFixture&) = delete;
  WindowFixture& operator=(const WindowFixture&) = delete;

  QString file(const QString& name) const { return folder.filePath(name); }

  void start() {
    controller->awakeFromNib();
    window->show();
    controller->applicationDidFinishLaunching();
    QTRY_VERIFY_WITH_TIMEOUT(!map.calls.isEmpty(), 20000);  // the start-up timer has fired
    settle();
  }

  /// Until every thread has ended and what they handed over has been taken, threads and blocks that
  /// follow from it included.
  static void settle() {
    constexpr int longestChain = 10;
    for (int link = 0; link < longestChain; ++link) {
      QTRY_COMPARE_WITH_TIMEOUT(detachedThreadCount(), 0, 20000);
      QCoreApplication::processEvents();
    }
  }
};

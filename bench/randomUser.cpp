// The real window, with a stand-in for the map, in the hands of someone without patience: selects,
// types, resizes, downloads from an emulated watch, exports, backs up, restores (damaged files
// too), deletes. After every round all runs are deleted and what is left is printed; growth of it
// counts as a failure. Meant for the sanitizers:
//
//   cmake --preset asan-ubsan -DTRAKKO_BENCHMARKS=ON
//   cmake --build --preset asan-ubsan --target random_user
//   build/asan-ubsan/bench/random_user [SECONDS]   60 without a number

#include "app/DFView.h"
#include "app/exportManyDialog.h"
#include "app/statusLine.h"
#include "tests/app/windowFixture.h"
#include "tests/files.h"
#include "tools/watchsim/emulatedWatch.h"
#include "tools/watchsim/watchMemory.h"

#include <QAction>
#include <QApplication>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QLoggingCategory>
#include <QPixmapCache>
#include <QTabWidget>
#include <QTableView>
#include <QTimer>
#include <QToolButton>

#include <array>
#include <cstdio>
#include <malloc.h>
#include <random>
#include <unistd.h>

// NOLINTNEXTLINE(bugprone-reserved-identifier): the sanitizer's own name
extern "C" __attribute__((weak)) size_t __sanitizer_get_current_allocated_bytes();

namespace {

std::mt19937 dice(1);  // NOLINT(cert-msc51-cpp,bugprone-random-generator-seed)

int below(int limit) {
  return int(dice() % unsigned(limit));
}

/// What a round leaves behind.
struct Footprint {
  size_t liveBytes = __sanitizer_get_current_allocated_bytes != nullptr
                         ? __sanitizer_get_current_allocated_bytes()
                         : mallinfo2().uordblks;
  qint64 residentKiB =
      bytesOf("/proc/self/statm").split(' ').value(1).toLongLong() * sysconf(_SC_PAGESIZE) / 1024;
  qsizetype threads = entries("/proc/self/task");
  qsizetype descriptors = entries("/proc/self/fd");

 private:
  static qsizetype entries(const QString& folder) {
    return QDir(folder).entryList(QDir::NoDotAndDotDot | QDir::AllEntries).size();
  }
};

class User {
 public:
  User() {
    fixture_.registry->plugWatch(fixture_.file("watch"));
    fixture_.start();
    copy(fixture_.file("gpsData.db3"), fixture_.file("empty.db3"));
  }

  /// Some hundred commands, then everything deleted.
  Footprint round(int commands) {
    for (int left = commands; left > 0;) {
      EmulatedWatch watch(
          {.memory = makeMemory(
               {.seed = quint32(dice()), .runs = 1 + below(5), .pointsPerRun = below(90)}),
           .link = fixture_.file("watch"),
           .fullSpeed = below(2) == 0});
      watch.start();
      for (int i = 0; i < 40 && left > 0; ++i, --left) {
        act();
        QTest::qWait(below(40));
      }
    }
    // A download that lost its watch stalls, and is given up by the next.
    for (int tries = 0; detachedThreadCount() > 0 && tries < 20; ++tries) {
      QTest::qWait(800);
      fixture_.controller->downloadDataBu();
      QTest::qWait(200);
    }
    settle();
    fixture_.dialogs->fileAnswer = fixture_.file("empty.db3");
    fixture_.dialogs->confirmAnswer = true;
    fixture_.controller->RecoverData();  // a database that works, whatever was restored last
    settle();
    fixture_.dialogs->eraseAnswer = true;
    fixture_.controller->deleteAllData();
    settle();
    if (!fixture_.controller->runViewData.empty()) {
      qFatal("runs are shown after everything was deleted: %s",
             qPrintable(fixture_.controller->statusLine->text()));
    }
    fixture_.window->resize(900, 700);  // its pixels count as well
    QTest::qWait(50);
    QPixmapCache::clear();
    fixture_.map.calls.clear();
    fixture_.dialogs->forget();
    return {};
  }

 private:
  static void copy(const QString& from, const QString& to) {
    QFile::remove(to);
    QFile::copy(from, to);
  }

  static void settle() {
    QElapsedTimer timer;
    timer.start();
    for (int quiet = 0; quiet < 20; ++quiet) {
      QTest::qWait(20);
      quiet = detachedThreadCount() > 0 ? 0 : quiet;
      if (timer.hasExpired(60000)) {
        qFatal("a thread does not end");
      }
    }
  }

  void trigger(const char* action) { fixture_.window->findChild<QAction*>(action)->trigger(); }

  void act() {
    TrakkoAppDelegate& controller = *fixture_.controller;
    ScriptedDialogs& answers = *fixture_.dialogs;
    answers.eraseAnswer = below(6) == 0;
    answers.confirmAnswer = below(2) == 0;
    answers.fileAnswer = below(8) == 0 ? QString() : fixture_.file("export");
    switch (below(16)) {
      case 0:
        return trigger("actionDownload");
      case 1:
        return trigger("actionDeleteOne");
      case 2:
        return trigger("actionExportTcx");
      case 3:
        return trigger("actionExportGpx");
      case 4:
        answers.fileAnswer = fixture_.file("copy.db3");
        return trigger("actionBackup");
      case 5:
        damage();
        answers.fileAnswer = fixture_.file("copy.db3");
        return trigger("actionRecover");
      case 6:
        return fixture_.window->resize(400 + below(1200), 300 + below(800));
      case 7:
        return below(4) == 0 ? trigger("actionDeleteAll") : exportMany();
      case 8:
        return totals();
      case 9:
        return clickInto(controller.viewMonth);
      case 10:
        return clickInto(controller.lapView->viewport());
      case 11:
        return clickInto(controller.pointView->viewport());
      case 12:
      case 13:
        return clickInto(controller.tView->viewport());
      default:
        return type();
    }
  }

  static void clickInto(QWidget* widget) {
    const QPoint place(below(qMax(1, widget->width())), below(qMax(1, widget->height())));
    QTest::mouseClick(widget, Qt::LeftButton, {}, place);
  }

  void type() {
    constexpr std::array keys{Qt::Key_Up,  Qt::Key_Down,   Qt::Key_Home, Qt::Key_End,
                              Qt::Key_Tab, Qt::Key_PageUp, Qt::Key_2,    Qt::Key_Left};
    QWidget* focus = fixture_.window->focusWidget();
    QTest::keyClick(focus != nullptr ? focus : fixture_.window.get(),
                    keys.at(size_t(below(int(keys.size())))));
  }

  void totals() {
    auto* table = fixture_.window->findChild<QTableView*>("totalsView");
    auto* tabs = fixture_.window->findChild<QTabWidget*>();
    if (tabs != nullptr) {
      tabs->setCurrentIndex(below(tabs->count()));
    }
    const auto periods = table->parentWidget()->findChildren<QToolButton*>();
    periods[below(int(periods.size()))]->click();
    clickInto(table->viewport());
  }

  /// The dialog is answered from within its own loop.
  void exportMany() {
    QTimer answer;
    QObject::connect(&answer, &QTimer::timeout, fixture_.window.get(), [this] {
      if (auto* dialog = fixture_.window->findChild<ExportManyDialog*>()) {
        QDir().mkpath(fixture_.file("many"));
        dialog->findChild<QLineEdit*>({}, Qt::FindDirectChildrenOnly)
            ->setText(fixture_.file("many"));
        below(4) > 0 ? dialog->accept() : dialog->reject();
      }
    });
    answer.start(20);
    trigger("actionExportMany");
  }

  /// Now and then the backup has a byte changed or its end cut off, or is gone.
  void damage() {
    const QString path = fixture_.file("copy.db3");
    QByteArray bytes = bytesOf(path);
    if (bytes.isEmpty() || below(3) > 0) {
      return;
    }
    const qsizetype at = below(int(bytes.size()));
    below(4) == 0 ? bytes.truncate(at) : void(bytes[at] = char(dice()));
    QFile::remove(path);
    if (below(8) > 0) {
      writeBytes(path, bytes);
    }
  }

  WindowFixture fixture_;
};

}  // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QLoggingCategory::setFilterRules("*=false");
  const QApplication application(argc, argv);
  const qint64 seconds = argc > 1 ? std::atoi(argv[1]) : 60;
  constexpr int commands = 400;
  QElapsedTimer timer;
  timer.start();
  User user;
  QList<Footprint> left;
  while (timer.elapsed() < seconds * 1000) {
    left << user.round(commands);
    const Footprint& now = left.last();
    std::printf(
        "%6lld s %8lld commands %9zu bytes alive %8lld KiB resident %4lld threads %4lld "
        "descriptors\n",
        static_cast<long long>(timer.elapsed() / 1000),
        static_cast<long long>(left.size() * commands), now.liveBytes,
        static_cast<long long>(now.residentKiB), static_cast<long long>(now.threads),
        static_cast<long long>(now.descriptors));
    std::fflush(stdout);
  }
  const Footprint& early = left[left.size() / 4];
  const Footprint& late = left.last();
  const bool grows = late.liveBytes > early.liveBytes + early.liveBytes / 10 ||
                     late.threads > early.threads + 2 || late.descriptors > early.descriptors;
  std::puts(grows ? "GROWS" : "no growth");
  return grows ? EXIT_FAILURE : EXIT_SUCCESS;
}

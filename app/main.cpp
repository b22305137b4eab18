#include "app/MainWindow.h"
#include "app/TrakkoAppDelegate.h"
#include "app/application.h"
#include "app/commandLine.h"
#include "app/messageBoxes.h"
#include "app/profileLink.h"
#include "app/profilePane.h"
#include "app/singleInstance.h"
#include "app/startUpCheck.h"
#include "app/windowState.h"
#include "base/detachThread.h"
#include "base/memory.h"
#include "data/bundle.h"
#include "device/udevRegistry.h"
#include "web/webEngine.h"
#include "web/webMapView.h"

#include <QApplication>
#include <QFile>
#include <QIcon>
#include <QLibraryInfo>
#include <QMessageBox>
#include <QTranslator>

#include <cstdio>
#include <cstdlib>
#include <memory>

namespace {

/// The standard buttons of file panels speak the program's language, whatever the desktop's is.
void speakJapanese(QApplication& application) {
  auto* translator = new QTranslator(&application);
  if (translator->load(QStringLiteral("qtbase_ja"),
                       QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
    QApplication::installTranslator(translator);
  }
}

void connectMap(WebMapView* map, TrakkoAppDelegate* controller) {
  controller->theWebView = map;
  QObject::connect(map, &WebMapView::titleReceived, controller,
                   &TrakkoAppDelegate::didReceiveTitle);
  QObject::connect(map, &WebMapView::pageReset, controller, &TrakkoAppDelegate::pageReset);
  QObject::connect(map, &WebMapView::gaveUp, controller, &TrakkoAppDelegate::mapGaveUp);
}

void raiseWindow(MainWindow* window) {
  window->setWindowState(window->windowState() & ~Qt::WindowMinimized);
  window->show();
  window->raise();
  window->activateWindow();
}

/// A box where there is no window yet.
void showBox(const QString& text) {
  QMessageBox box(QMessageBox::Information, QStringLiteral("Morvel GPS"), text);
  box.setTextFormat(Qt::PlainText);
  box.addButton(QStringLiteral("OK"), QMessageBox::AcceptRole);
  box.exec();
}

/// Shows what kept the launcher from making the user's folder; false when nothing did. Launchers
/// have no boxes of their own where the desktop's tools for it are not installed.
bool tellLauncherProblem() {
  const QString problem = qEnvironmentVariable("TRAKKO_STARTUP_PROBLEM");
  if (problem.isEmpty()) {
    return false;
  }
  showBox(problem);
  return true;
}

/// Prints what was asked for instead of the window; false when nothing was.
bool answersInstead(int argc, char** argv) {
  const QCoreApplication console(argc, argv);  // needs no display
  const QString answer = answerTo(QCoreApplication::arguments());
  std::fputs(qUtf8Printable(answer), stdout);
  return !answer.isNull();
}

/// Whatever lies in the database's place, the window is there, and with it the restore.
void tellStartUpProblems(const std::shared_ptr<Dialogs>& dialogs, SingleInstance::Claim claim) {
  detachThread("start-up-check", [dialogs, claim] {
    const QString problem = startUpProblem();
    if (!problem.isNull()) {
      dialogs->message(problem);
    } else if (claim == SingleInstance::Claim::unprotected) {
      dialogs->message(
          QStringLiteral("データベースのフォルダをロックできません。"
                         "Trakko を同時に二つ起動しないで下さい。"));
    }
  });
}

}  // namespace

int main(int argc, char* argv[]) {
  qputenv("NSZombieEnabled", "NO");
  if (answersInstead(argc, argv)) {
    return EXIT_SUCCESS;
  }
  registerMapScheme();
  setUpWebEngine();
  shareHeaps();
  Application application(argc, argv);
  QApplication::setApplicationName(QStringLiteral("Trakko"));
  QApplication::setApplicationVersion(QStringLiteral(TRAKKO_VERSION));
  QGuiApplication::setDesktopFileName(QStringLiteral("com.morvel.Trakko"));
  QApplication::setWindowIcon(QIcon(QStringLiteral(":/icons/com.morvel.Trakko.svg")));
  speakJapanese(application);
  if (tellLauncherProblem()) {
    return EXIT_FAILURE;
  }
  setMainBundle(bundleOfProgram(programPath(QFile::decodeName(argv[0]))));

  SingleInstance instance(folderBeside(mainBundle()));
  const SingleInstance::Claim claim = instance.claim();
  if (claim == SingleInstance::Claim::passedOn) {
    return EXIT_SUCCESS;
  }
  if (claim == SingleInstance::Claim::unanswered) {
    showBox(
        QStringLiteral("データベースは他の Trakko が使用中ですが、応答がありません。"
                       "それを終了してから、もう一度起動して下さい。"));
    return EXIT_FAILURE;
  }

  // Neither the controller nor the window is ever destroyed: a download thread may still use them
  // when the program ends.
  const auto dialogs = std::make_shared<MessageBoxes>();
  auto* controller =
      new TrakkoAppDelegate({.device = environmentHere(dialogs), .dialogs = dialogs});
  auto* window = new MainWindow(controller);
  dialogs->setWindow(window);
  auto* map = new WebMapView(dialogs);
  window->setMapWidget(map);
  auto* profile = new ProfilePane(map->engine(), dialogs);
  window->setProfileWidget(profile);
  window->keepStateIn(windowStatePath());
  connectMap(map, controller);
  auto* link = new ProfileLink(controller, profile);
  QObject::connect(map, &WebMapView::pageReset, link, &ProfileLink::mapReset);
  QObject::connect(&instance, &SingleInstance::raiseRequested, window,
                   [window] { raiseWindow(window); });

  controller->awakeFromNib();
  window->show();
  tellStartUpProblems(dialogs, claim);
  controller->applicationDidFinishLaunching();
  const int result = QApplication::exec();
  // Leaving without unwinding ends running threads at once. A run that is just being stored is
  // rolled back by SQLite at the next start, and still is on the watch.
  std::_Exit(result);
}

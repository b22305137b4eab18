// Draws a picture of the window, or of one part of it, with the runs of an emulated watch. The real
// window, controller, map and profile work on a database of their own.

#include "app/MainWindow.h"
#include "app/TrakkoAppDelegate.h"
#include "app/profileLink.h"
#include "app/profilePane.h"
#include "base/text.h"
#include "data/bundle.h"
#include "device/udevRegistry.h"
#include "tools/watchsim/emulatedWatch.h"
#include "tools/watchsim/watchMemory.h"
#include "web/webMapView.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QElapsedTimer>
#include <QScreen>
#include <QStatusBar>
#include <QStyleFactory>
#include <QTabWidget>
#include <QTableView>
#include <QTemporaryDir>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <unistd.h>

namespace {

/// Says nothing and keeps the watch as it is.
class NoDialogs : public Dialogs {
 public:
  void message(const QString& text) override { std::fputs(qUtf8Printable(text + u'\n'), stderr); }
  bool confirmErase(const QString& /*text*/) override { return false; }
  bool confirm(const QString&, const QString&) override { return false; }
  QString fileToSave(const QString&, const QString&, const QString&) override { return {}; }
  QString fileToOpen(const QString&, const QString&) override { return {}; }
};

void addOptions(QCommandLineParser& parser) {
  parser.addHelpOption();
  parser.addOptions(
      {{QStringLiteral("size"), QStringLiteral("Of the window."), QStringLiteral("WxH"),
        QStringLiteral("1280x800")},
       {QStringLiteral("font"), QStringLiteral("Size in points."), QStringLiteral("N"),
        QStringLiteral("10")},
       {QStringLiteral("dark"), QStringLiteral("Light on dark.")},
       {QStringLiteral("totals"), QStringLiteral("With the totals in place of the runs.")},
       {QStringLiteral("runs"), QStringLiteral("On the watch."), QStringLiteral("N"),
        QStringLiteral("12")},
       {QStringLiteral("part"), QStringLiteral("Name of the only widget to draw."),
        QStringLiteral("NAME")}});
  parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("The picture to write."));
}

void goDark() {
  QPalette palette(QColor(49, 54, 59));
  palette.setColor(QPalette::Base, QColor(35, 38, 41));
  palette.setColor(QPalette::AlternateBase, QColor(42, 46, 50));
  palette.setColor(QPalette::Highlight, QColor(61, 174, 233));
  QApplication::setPalette(palette);
}

void wait(int milliseconds) {
  QElapsedTimer passed;
  passed.start();
  while (passed.elapsed() < milliseconds) {
    QApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
  }
}

ControllerContext contextFor(const std::shared_ptr<Dialogs>& dialogs) {
  ControllerContext context{.device = environmentHere(dialogs), .dialogs = dialogs};
  // Plain ground, the same on every machine: tiles of one clear pixel.
  context.mapServices.googleKey.clear();
  context.mapServices.tileAddress = QStringLiteral(
      "data:image/gif;base64,R0lGODlhAQABAIAAAAAAAP///yH5BAEAAAAALAAAAAABAAEAAAIBRAA7");
  return context;
}

/// With channels in steps too fine to be seen, of which the format makes a smaller file.
QImage inFewColours(QImage picture) {
  constexpr int fineness = 5;
  const auto rounded = [](int channel) { return (channel + fineness / 2) / fineness * fineness; };
  for (int y = 0; y < picture.height(); ++y) {
    for (int x = 0; x < picture.width(); ++x) {
      const QRgb colour = picture.pixel(x, y);
      picture.setPixel(
          x, y, qRgb(rounded(qRed(colour)), rounded(qGreen(colour)), rounded(qBlue(colour))));
    }
  }
  return picture;
}

/// Downloads from the watch and lets the map draw.
void fill(TrakkoAppDelegate* controller, qsizetype runs) {
  constexpr int step = 200;
  constexpr int longest = 300;
  controller->applicationDidFinishLaunching();
  wait(5 * step);
  controller->downloadDataBu();
  for (int i = 0; i < longest && controller->runKArr.size() < runs; ++i) {
    wait(step);
  }
  wait(10 * step);
  // Points at a place on the way, for the cursor and the mark on the map.
  controller->pointView->selectRow(static_cast<int>(controller->pointViewData.size() * 2 / 5));
  wait(10 * step);
}

}  // namespace

int main(int argc, char** argv) {
  if (geteuid() == 0) {
    qputenv("QTWEBENGINE_DISABLE_SANDBOX", "1");  // the engine refuses to sandbox root's pages
  }
  registerMapScheme();
  QApplication application(argc, argv);
  QCommandLineParser parser;
  addOptions(parser);
  parser.process(application);
  QApplication::setStyle(QStyleFactory::create(QStringLiteral("fusion")));
  QFont font(QStringLiteral("Noto Sans CJK JP"));
  font.setPointSize(text::toInt32(parser.value(QStringLiteral("font"))));
  QApplication::setFont(font);
  if (parser.isSet(QStringLiteral("dark"))) {
    goDark();
  }

  const QTemporaryDir folder;
  QFile::link(QStringLiteral(TRAKKO_IMAGES), folder.filePath(QStringLiteral("png")));
  setMainBundle({folder.filePath(QStringLiteral("Trakko.app")), QStringLiteral("Trakko")});
  const qint32 runs = text::toInt32(parser.value(QStringLiteral("runs")));
  EmulatedWatch watch({.memory = makeMemory({.runs = runs}), .fullSpeed = true});
  watch.start();
  qputenv("TRAKKO_WATCH_PORT", watch.path().toUtf8());

  const auto dialogs = std::make_shared<NoDialogs>();
  const ControllerContext context = contextFor(dialogs);
  auto* controller = new TrakkoAppDelegate(context);
  auto* window = new MainWindow(controller);
  auto* map = new WebMapView(dialogs, context.mapServices, {});
  window->setMapWidget(map);
  auto* profile = new ProfilePane(map->engine(), dialogs);
  window->setProfileWidget(profile);
  new ProfileLink(controller, profile);
  controller->theWebView = map;
  QObject::connect(map, &WebMapView::titleReceived, controller,
                   &TrakkoAppDelegate::didReceiveTitle);
  const QStringList size = parser.value(QStringLiteral("size")).split(u'x');
  window->setWindowState(Qt::WindowNoState);
  window->resize(text::toInt32(size.value(0)), text::toInt32(size.value(1)));
  controller->awakeFromNib();
  window->show();
  fill(controller, runs);
  if (parser.isSet(QStringLiteral("totals"))) {
    window->findChild<QTabWidget*>(QStringLiteral("runTabs"))->setCurrentIndex(1);
    wait(500);
  }

  auto* part = parser.isSet(QStringLiteral("part"))
                   ? window->findChild<QWidget*>(parser.value(QStringLiteral("part")))
                   : window;
  // The engine's pages draw past Qt, so on a real screen it is asked for what it shows.
  const QPixmap picture = QGuiApplication::platformName() == QStringLiteral("xcb")
                              ? window->screen()->grabWindow(0, part->mapToGlobal(QPoint()).x(),
                                                             part->mapToGlobal(QPoint()).y(),
                                                             part->width(), part->height())
                              : part->grab();
  constexpr int smallest = 0;  // file, not quality: the format loses nothing
  const bool isSaved =
      inFewColours(picture.toImage()).save(parser.positionalArguments().value(0), "PNG", smallest);
  // Threads of the controller may still run.
  std::_Exit(isSaved ? EXIT_SUCCESS : EXIT_FAILURE);
}

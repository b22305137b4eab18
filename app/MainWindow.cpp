#include "app/MainWindow.h"

#include "app/TrakkoAppDelegate.h"
#include "app/columnFitter.h"
#include "app/manyExport.h"
#include "app/statusLine.h"
#include "app/tableLook.h"
#include "app/tableModel.h"
#include "ui_MainWindow.h"

#include <QCloseEvent>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>

MainWindow::MainWindow(TrakkoAppDelegate* controller)
    : controller_(controller),
      ui_(std::make_unique<Ui::MainWindow>()),
      downloadButton_(std::make_unique<QPushButton>(QStringLiteral("ダウンロード"))),
      hint_(new QLabel(this)) {
  ui_->setupUi(this);
  connectOutlets();
  setUpTables();
  connectCommands();
  connectTables();
  connectTotals();
  addContextMenus();
  arrangePanes();
  fitScreen();
  setAcceptDrops(true);
}

MainWindow::~MainWindow() = default;

void MainWindow::connectOutlets() {
  auto* progress = new QProgressBar(this);
  progress->setRange(0, 100);
  progress->setTextVisible(false);
  progress->setFixedWidth(180);
  progress->setAccessibleName(QStringLiteral("ダウンロード中"));
  ui_->statusBar->addPermanentWidget(progress);
  progress->hide();
  auto* line = new StatusLine(this);
  ui_->statusBar->addWidget(line, 1);

  controller_->window = this;
  controller_->viewMonth = ui_->viewMonth;
  controller_->tView = ui_->tView;
  controller_->lapView = ui_->lapView;
  controller_->pointView = ui_->pointView;
  controller_->getDBu = downloadButton_.get();
  controller_->progressBar = progress;
  controller_->statusLine = line;
  manyExport_ = new ManyExport(this, line);
}

void MainWindow::setUpTables() {
  const auto setUp = [this](const QString& name, QTableView* table,
                            std::vector<TableColumn> columns) {
    auto* model = new TableModel(table, controller_, std::move(columns));
    columns_.insert(name, dressTable(table, model->widestTexts()));
  };
  setUp(QStringLiteral("runs"), ui_->tView, runColumns());
  setUp(QStringLiteral("laps"), ui_->lapView, lapColumns());
  setUp(QStringLiteral("points"), ui_->pointView, pointColumns());
  columns_.insert(QStringLiteral("totals"), ui_->totalsPane->columns());
}

void MainWindow::setMapWidget(QWidget* map) {
  map->setAcceptDrops(false);  // the engine would take the files that the window restores from
  ui_->mapFrame->layout()->addWidget(map);
}

void MainWindow::setProfileWidget(QWidget* profile) {
  ui_->profilePane->layout()->addWidget(profile);
  ui_->profilePane->show();
}

void MainWindow::closeEvent(QCloseEvent* event) {
  if (!statePath_.isNull()) {
    writeWindowState(statePath_, state());
  }
  event->setAccepted(controller_->windowShouldClose());
}

void MainWindow::resizeEvent(QResizeEvent* event) {
  QMainWindow::resizeEvent(event);
  controller_->windowDidResize();
}

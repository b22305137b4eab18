#include "app/MainWindow.h"

#include "app/TrakkoAppDelegate.h"
#include "app/columnFitter.h"
#include "app/tableModel.h"
#include "ui_MainWindow.h"

#include <QCloseEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>

namespace {

void setUpTable(QTableView* table, TrakkoAppDelegate* source, std::vector<TableColumn> columns) {
  constexpr int rowMargin = 6;
  auto* model = new TableModel(table, source, std::move(columns));
  table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  table->verticalHeader()->setDefaultSectionSize(table->fontMetrics().height() + rowMargin);
  QFont headerFont = table->font();
  headerFont.setPointSizeF(headerFont.pointSizeF() * 0.9);
  table->horizontalHeader()->setFont(headerFont);
  new ColumnFitter(table, model);  // the table owns it
}

}  // namespace

MainWindow::MainWindow(TrakkoAppDelegate* controller)
    : controller_(controller), ui_(std::make_unique<Ui::MainWindow>()) {
  ui_->setupUi(this);
  connectOutlets();
  connectCommands();
  arrangePanes();
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
  auto* line = new QLabel(this);
  line->setTextFormat(Qt::PlainText);
  line->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  ui_->statusBar->addWidget(line, 1);
  auto* button = new QPushButton(QStringLiteral("ダウンロード"), this);
  button->hide();

  controller_->window = this;
  controller_->viewMonth = ui_->viewMonth;
  controller_->tView = ui_->tView;
  controller_->lapView = ui_->lapView;
  controller_->pointView = ui_->pointView;
  controller_->getDBu = button;
  controller_->progressBar = progress;
  controller_->statusLine = line;
  setUpTable(ui_->tView, controller_, runColumns());
  setUpTable(ui_->lapView, controller_, lapColumns());
  setUpTable(ui_->pointView, controller_, pointColumns());
}

void MainWindow::connectCommands() {
  // Slots are called in the order of their connections: the highlighted run is the current one
  // before a command acts on it.
  const auto on = [this](QAction* action, void (TrakkoAppDelegate::*command)()) {
    connect(action, &QAction::triggered, controller_, &TrakkoAppDelegate::followSelection);
    connect(action, &QAction::triggered, controller_, command);
  };
  on(ui_->actionDownload, &TrakkoAppDelegate::downloadDataBu);
  on(ui_->actionDeleteOne, &TrakkoAppDelegate::deleteOneData);
  on(ui_->actionDeleteAll, &TrakkoAppDelegate::deleteAllData);
  on(ui_->actionExportTcx, &TrakkoAppDelegate::SaveTCXFile);
  on(ui_->actionExportGpx, &TrakkoAppDelegate::saveGPXFile);
  on(ui_->actionBackup, &TrakkoAppDelegate::BackupData);
  on(ui_->actionRecover, &TrakkoAppDelegate::RecoverData);
  connect(ui_->actionQuit, &QAction::triggered, this, &QWidget::close);
  connect(ui_->tView, &QTableView::clicked, controller_,
          [this](const QModelIndex& cell) { controller_->tableviewClick(cell.row()); });
  ui_->tView->installEventFilter(this);
  ui_->tView->viewport()->installEventFilter(this);
  // Without runs these two have nothing to do; the others act, or at least ask, at any time.
  const auto greyOut = [this] {
    const bool anyRuns = ui_->tView->model()->rowCount() > 0;
    ui_->actionDeleteOne->setEnabled(anyRuns);
    ui_->actionDeleteAll->setEnabled(anyRuns);
  };
  connect(ui_->tView->model(), &QAbstractItemModel::modelReset, this, greyOut);
  greyOut();
  ui_->tView->setFocus();
}

// Keys, typing and dragging choose a run, too, but only once the key or button is up: a key held
// down runs through the list without drawing every run.
bool MainWindow::eventFilter(QObject* watched, QEvent* event) {
  const bool isRelease =
      event->type() == QEvent::MouseButtonRelease ||
      (event->type() == QEvent::KeyRelease && !static_cast<QKeyEvent*>(event)->isAutoRepeat());
  if (isRelease) {
    controller_->followSelection();
  }
  return QMainWindow::eventFilter(watched, event);
}

void MainWindow::arrangePanes() {
  ui_->mainSplitter->setStretchFactor(0, 0);
  ui_->mainSplitter->setStretchFactor(1, 1);
  ui_->mainSplitter->setSizes({430, 850});
  ui_->rightSplitter->setStretchFactor(0, 3);
  ui_->rightSplitter->setStretchFactor(1, 2);
  ui_->rightSplitter->setStretchFactor(2, 1);
  ui_->rightSplitter->setStretchFactor(3, 1);
  ui_->rightSplitter->setSizes({300, 150, 120, 100});
}

void MainWindow::setMapWidget(QWidget* map) {
  ui_->mapFrame->layout()->addWidget(map);
}

void MainWindow::setProfileWidget(QWidget* profile) {
  ui_->profilePane->layout()->addWidget(profile);
  ui_->profilePane->show();
}

void MainWindow::closeEvent(QCloseEvent* event) {
  event->setAccepted(controller_->windowShouldClose());
}

void MainWindow::resizeEvent(QResizeEvent* event) {
  QMainWindow::resizeEvent(event);
  controller_->windowDidResize();
}

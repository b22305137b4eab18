// The sizes of the window and of its parts.

#include "app/MainWindow.h"
#include "app/columnFitter.h"
#include "app/tableLook.h"
#include "app/totalsPane.h"
#include "ui_MainWindow.h"

#include <QLabel>
#include <QScreen>
#include <QScrollBar>
#include <QStyle>
#include <QTabBar>

#include <algorithm>
#include <array>
#include <numeric>

namespace {

/// What a pane would like to have of the height, and what it can do with.
struct Wish {
  int wanted;
  int least;
};

/// Shares the height among the panes: each gets what it wants, and what is left over goes to the
/// first in particular; what is missing is taken from the last first.
QList<int> shared(int height, const std::array<Wish, 3>& wishes) {
  QList<int> heights;
  int spare = height;
  for (const Wish& wish : wishes) {
    heights << wish.wanted;
    spare -= wish.wanted;
  }
  if (spare >= 0) {
    const int each = spare / 5;
    return {heights[0] + spare - 2 * each, heights[1] + (wishes[1].wanted > 0 ? each : 0),
            heights[2] + each};
  }
  for (const std::size_t pane : {2U, 0U, 1U}) {
    const int taken = std::min(-spare, wishes[pane].wanted - wishes[pane].least);
    heights[static_cast<qsizetype>(pane)] -= taken;
    spare += taken;
  }
  return heights;
}

bool areSizes(const std::vector<int>& sizes, int count) {
  return static_cast<int>(sizes.size()) == count &&
         std::all_of(sizes.begin(), sizes.end(), [](int size) { return size >= 0; }) &&
         std::any_of(sizes.begin(), sizes.end(), [](int size) { return size > 0; });
}

const QString mainName = QStringLiteral("main");
const QString rightName = QStringLiteral("right");

}  // namespace

void MainWindow::arrangePanes() {
  ui_->mainSplitter->setStretchFactor(0, 0);
  ui_->mainSplitter->setStretchFactor(1, 1);
  const int margin = ui_->tView->verticalScrollBar()->sizeHint().width() + 2;
  const int left = std::max(columns_.value(QStringLiteral("runs"))->neededWidth(),
                            columns_.value(QStringLiteral("totals"))->neededWidth());
  // With a large font the map and the laps need the room more.
  const int most = std::max(ui_->viewMonth->minimumSizeHint().width() + 2, width() * 2 / 5);
  const int shown = std::min(left + margin, most);
  ui_->mainSplitter->setSizes({shown, width() - shown});
  ui_->rightSplitter->setStretchFactor(0, 3);
  ui_->rightSplitter->setStretchFactor(1, 1);
  ui_->rightSplitter->setStretchFactor(2, 1);
  ui_->rightSplitter->installEventFilter(this);
  connect(ui_->rightSplitter, &QSplitter::splitterMoved, this, [this] { heightsChosen_ = true; });

  auto* overRuns = new QVBoxLayout(ui_->tView->viewport());
  overRuns->addWidget(hint_);
  hint_->setWordWrap(true);
  hint_->setAlignment(Qt::AlignCenter);
  hint_->setAttribute(Qt::WA_TransparentForMouseEvents);
  hint_->setText(
      QStringLiteral("ランはまだありません。\n"
                     "時計をUSBケーブルで接続し、\nCtrl+D でダウンロードして下さい。\n\n"
                     "時計がなくても、./run.sh --demo で\nお試しになれます。"));
}

void MainWindow::arrangeHeights(int height) {
  constexpr int mapWanted = 300;
  constexpr int profileWanted = 140;
  constexpr int profileLeast = 100;
  constexpr int rowsWanted = 6;
  constexpr int rowsLeast = 3;
  const bool scrolls =
      columns_.value(QStringLiteral("laps"))->neededWidth() > ui_->rightSplitter->width();
  const int above = ui_->trackTabs->tabBar()->sizeHint().height() +
                    (scrolls ? ui_->lapView->horizontalScrollBar()->sizeHint().height() : 0);
  const bool hasProfile = !ui_->profilePane->isHidden();
  const int line = fontMetrics().height();
  const int handles = (hasProfile ? 2 : 1) * ui_->rightSplitter->handleWidth();
  ui_->rightSplitter->setSizes(
      shared(height - handles,
             {Wish{mapWanted, ui_->mapFrame->minimumHeight()},
              hasProfile ? Wish{std::max(profileWanted, 7 * line), profileLeast} : Wish{0, 0},
              Wish{above + heightFor(ui_->lapView, rowsWanted),
                   above + heightFor(ui_->lapView, rowsLeast)}}));
}

// A window that would not fit between the screen's edges with its frame around it fills the screen.
void MainWindow::fitScreen() {
  const QRect available = screen()->availableGeometry();
  const int title = style()->pixelMetric(QStyle::PM_TitleBarHeight) + fontMetrics().height() / 2;
  if (width() > available.width() || height() + title > available.height()) {
    setGeometry(placeWithin(geometry(), available));
    setWindowState(windowState() | Qt::WindowMaximized);
  }
}

void MainWindow::keepStateIn(const QString& path) {
  statePath_ = path;
  restore(readWindowState(path));
}

void MainWindow::restore(const WindowState& state) {
  const QScreen* there =
      state.place.isNull() ? nullptr : QGuiApplication::screenAt(state.place.center());
  if (there != nullptr) {
    setWindowState(windowState() & ~Qt::WindowMaximized);
    setGeometry(placeWithin(state.place, there->availableGeometry()));
    fitScreen();
  }
  if (state.maximised) {
    setWindowState(windowState() | Qt::WindowMaximized);
  }
  for (QSplitter* splitter : {ui_->mainSplitter, ui_->rightSplitter}) {
    const bool isMain = splitter == ui_->mainSplitter;
    const std::vector<int> sizes = state.sizes.value(isMain ? mainName : rightName);
    if (areSizes(sizes, splitter->count())) {
      splitter->setSizes(QList<int>(sizes.begin(), sizes.end()));
      heightsChosen_ = heightsChosen_ || !isMain;
    }
  }
  for (auto table = columns_.begin(); table != columns_.end(); ++table) {
    table.value()->setChosenWidths(state.sizes.value(table.key()));
  }
}

WindowState MainWindow::state() const {
  WindowState state{.place = normalGeometry(), .maximised = isMaximized(), .sizes = {}};
  const auto sizesOf = [](const QSplitter* splitter) {
    const QList<int> sizes = splitter->sizes();
    return std::vector<int>(sizes.begin(), sizes.end());
  };
  state.sizes.insert(mainName, sizesOf(ui_->mainSplitter));
  if (heightsChosen_) {
    state.sizes.insert(rightName, sizesOf(ui_->rightSplitter));
  }
  for (auto table = columns_.begin(); table != columns_.end(); ++table) {
    state.sizes.insert(table.key(), table.value()->chosenWidths());
  }
  return state;
}

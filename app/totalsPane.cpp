#include "app/totalsPane.h"

#include "app/barDelegate.h"
#include "app/columnFitter.h"
#include "app/tableKeys.h"
#include "app/tableLook.h"
#include "app/totalsModel.h"

#include <QButtonGroup>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QTableView>
#include <QToolButton>

using namespace Qt::StringLiterals;
using totals::Period;

TotalsPane::TotalsPane(QWidget* parent)
    : QWidget(parent), model_(new TotalsModel(this)), table_(new QTableView(this)) {
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 3, 0, 0);
  column->setSpacing(3);
  addPeriodButtons();
  column->addWidget(table_);
  setUpTable();
}

void TotalsPane::addPeriodButtons() {
  auto* row = new QHBoxLayout;
  row->setSpacing(0);
  auto* group = new QButtonGroup(this);
  const QList<std::pair<QString, Period>> periods = {{u"週ごと(&1)"_s, Period::week},
                                                     {u"月ごと(&2)"_s, Period::month},
                                                     {u"年ごと(&3)"_s, Period::year}};
  for (const auto& [text, period] : periods) {
    auto* button = new QToolButton(this);
    button->setText(text);
    button->setCheckable(true);
    button->setChecked(period == period_);
    group->addButton(button);
    row->addWidget(button);
    connect(button, &QToolButton::clicked, this,
            [this, chosenPeriod = period] { setPeriod(chosenPeriod); });
  }
  row->addStretch();
  static_cast<QVBoxLayout*>(layout())->addLayout(row);
}

void TotalsPane::setUpTable() {
  table_->setObjectName(u"totalsView"_s);
  table_->setAccessibleName(u"期間ごとの集計"_s);
  table_->setModel(model_);
  table_->setItemDelegateForColumn(TotalsModel::distance,
                                   new BarDelegate(TotalsModel::shareRole, this));
  columns_ = dressTable(table_, {u"2000-00-00〜"_s, u"0000"_s, u"00000.000"_s, u"0000:00:00"_s,
                                 u"00'00"_s, u"000.000"_s});
  new TableKeys(table_, TableKeys::Search::dates);
  table_->installEventFilter(this);
  connect(table_, &QTableView::clicked, this, &TotalsPane::choose);
  setFocusProxy(table_);
}

void TotalsPane::setRuns(const RunDictionary& runs, const QStringList& keys) {
  runs_ = runs;
  keys_ = keys;
  count();
}

void TotalsPane::setPeriod(Period period) {
  period_ = period;
  count();
}

std::pair<QDate, QDate> TotalsPane::chosenDays() const {
  const totals::Totals* sum = model_->at(table_->currentIndex().row());
  if (sum == nullptr || !sum->first.isValid()) {
    return {};
  }
  return {sum->first, totals::lastDay(sum->first, period_)};
}

// The period that was chosen stays so when its runs are counted anew.
void TotalsPane::count() {
  const totals::Totals* before = model_->at(table_->currentIndex().row());
  const bool hadChoice = before != nullptr;
  const QDate first = hadChoice ? before->first : QDate();
  model_->setTotals(totals::count(runs_, keys_, period_), period_);
  if (const int row = model_->rowOf(first); hadChoice && row >= 0) {
    table_->setCurrentIndex(model_->index(row, 0));
  }
}

void TotalsPane::choose() {
  if (const totals::Totals* sum = model_->at(table_->currentIndex().row())) {
    Q_EMIT chosen(sum->position);
  }
}

// A key held down runs through the periods without choosing a run for each.
bool TotalsPane::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::KeyRelease) {
    const auto& key = *static_cast<QKeyEvent*>(event);
    const bool moves = key.key() != Qt::Key_Tab && key.key() != Qt::Key_Backtab &&
                       (key.modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier &&
                       key.key() != Qt::Key_Alt && key.key() != Qt::Key_Control;
    if (!key.isAutoRepeat() && moves) {
      choose();
    }
  }
  return QWidget::eventFilter(watched, event);
}

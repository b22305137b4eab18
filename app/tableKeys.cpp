#include "app/tableKeys.h"

#include "base/text.h"

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QTableView>

#include <algorithm>

namespace {

QString digitsOf(const QString& typed) {
  QString digits;
  std::copy_if(typed.cbegin(), typed.cend(), std::back_inserter(digits), text::isDigit);
  return digits;
}

}  // namespace

TableKeys::TableKeys(QTableView* table, Search search)
    : QObject(table), table_(table), search_(search) {
  table->installEventFilter(this);
  auto* copy = new QAction(QStringLiteral("行をコピー(&C)"), table);
  copy->setShortcut(QKeySequence::Copy);
  copy->setShortcutContext(Qt::WidgetShortcut);
  connect(copy, &QAction::triggered, this, &TableKeys::copyRow);
  table->addAction(copy);
  table->setContextMenuPolicy(Qt::ActionsContextMenu);
}

bool TableKeys::eventFilter(QObject* watched, QEvent* event) {
  return event->type() == QEvent::KeyPress ? takes(*static_cast<QKeyEvent*>(event))
                                           : QObject::eventFilter(watched, event);
}

bool TableKeys::takes(const QKeyEvent& key) {
  const bool isPlain = (key.modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
  if (!isPlain) {
    return false;
  }
  if (key.key() == Qt::Key_Home || key.key() == Qt::Key_End) {
    choose(key.key() == Qt::Key_Home ? 0 : table_->model()->rowCount() - 1);
    return true;
  }
  return search_ == Search::dates && searches(key.text());
}

bool TableKeys::searches(const QString& typed) {
  constexpr qint64 pause = 2000;  // milliseconds; a date is typed slowly
  if (!sinceTyped_.isValid() || sinceTyped_.elapsed() > pause) {
    typed_.clear();
  }
  const QString digits = digitsOf(typed);
  const bool separates = !typed_.isEmpty() && QStringLiteral("-/: ").contains(typed);
  if (typed.isEmpty() || (digits.isEmpty() && !separates)) {
    return false;
  }
  sinceTyped_.start();
  typed_ += digits;
  const QAbstractItemModel& model = *table_->model();
  for (int row = 0; row < model.rowCount(); ++row) {
    if (digitsOf(model.index(row, 0).data().toString()).startsWith(typed_)) {
      choose(row);
      break;
    }
  }
  return true;
}

void TableKeys::choose(int row) {
  const QModelIndex cell =
      table_->model()->index(row, std::max(0, table_->currentIndex().column()));
  if (cell.isValid()) {
    table_->setCurrentIndex(cell);
    table_->scrollTo(cell);
  }
}

void TableKeys::copyRow() const {
  const QModelIndex current = table_->currentIndex();
  if (!current.isValid()) {
    return;
  }
  QStringList texts;
  for (int column = 0; column < table_->model()->columnCount(); ++column) {
    texts << current.siblingAtColumn(column).data().toString().simplified();
  }
  QGuiApplication::clipboard()->setText(texts.join(u'\t'));
}

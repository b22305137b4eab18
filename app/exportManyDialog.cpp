#include "app/exportManyDialog.h"

#include <QComboBox>
#include <QDateEdit>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace {

/// What the box of periods holds.
enum Choice { allRuns, chosenPeriod, otherDays };

}  // namespace

ExportManyDialog::ExportManyDialog(QWidget* parent, const Days& offered, const QString& folder)
    : QDialog(parent),
      offered_(offered),
      period_(new QComboBox(this)),
      first_(new QDateEdit(this)),
      last_(new QDateEdit(this)),
      format_(new QComboBox(this)),
      folder_(new QLineEdit(folder, this)) {
  setWindowTitle(u"まとめて書き出す"_s);
  auto* form = new QFormLayout(this);
  addPeriod();
  format_->addItem(u"TCX"_s, static_cast<int>(ExportFormat::Tcx));
  format_->addItem(u"GPX"_s, static_cast<int>(ExportFormat::Gpx));
  form->addRow(u"形式(&T):"_s, format_);
  addFolder(folder);
  form->addRow(new QLabel(u"同じ名前のファイルは上書きしません。"_s, this));
  auto* buttons = new QDialogButtonBox(this);
  start_ = buttons->addButton(u"書き出す"_s, QDialogButtonBox::AcceptRole);
  buttons->addButton(u"キャンセル"_s, QDialogButtonBox::RejectRole);
  form->addRow(buttons);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  enableParts();
}

void ExportManyDialog::addPeriod() {
  period_->addItem(u"すべてのラン"_s, allRuns);
  if (offered_.first.isValid()) {
    period_->addItem(u"集計で選んだ期間"_s, chosenPeriod);
  }
  period_->addItem(u"期間を指定"_s, otherDays);
  first_->setDate(QDate(QDate::currentDate().year(), 1, 1));
  last_->setDate(QDate::currentDate());
  for (QDateEdit* day : {first_, last_}) {
    day->setDisplayFormat(u"yyyy-MM-dd"_s);
    day->setCalendarPopup(true);
    connect(day, &QDateEdit::dateChanged, this, &ExportManyDialog::enableParts);
  }
  connect(period_, &QComboBox::currentIndexChanged, this, &ExportManyDialog::choosePeriod);
  auto* days = new QHBoxLayout;
  days->addWidget(period_);
  days->addWidget(first_);
  days->addWidget(new QLabel(u"〜"_s, this));
  days->addWidget(last_);
  days->addStretch();
  addRow(u"期間(&P):"_s, days, period_);
}

/// A row of several parts, whose label stands for one of them.
void ExportManyDialog::addRow(const QString& title, QLayout* row, QWidget* buddy) {
  auto* label = new QLabel(title, this);
  label->setBuddy(buddy);
  static_cast<QFormLayout*>(layout())->addRow(label, row);
}

void ExportManyDialog::choosePeriod() {
  if (period_->currentData() == chosenPeriod) {
    first_->setDate(offered_.first);
    last_->setDate(offered_.second);
  }
  enableParts();
}

void ExportManyDialog::addFolder(const QString& folder) {
  folder_->setMinimumWidth(30 * fontMetrics().averageCharWidth());
  folder_->setText(folder);
  auto* browse = new QPushButton(u"選択(&B)..."_s, this);
  auto* row = new QHBoxLayout;
  row->addWidget(folder_);
  row->addWidget(browse);
  addRow(u"フォルダ(&F):"_s, row, folder_);
  connect(browse, &QPushButton::clicked, this, &ExportManyDialog::chooseFolder);
  connect(folder_, &QLineEdit::textChanged, this, &ExportManyDialog::enableParts);
}

void ExportManyDialog::chooseFolder() {
  const QString chosen =
      QFileDialog::getExistingDirectory(this, u"フォルダを選択"_s, folder_->text());
  if (!chosen.isEmpty()) {
    folder_->setText(chosen);
  }
}

void ExportManyDialog::enableParts() {
  first_->setEnabled(period_->currentData() == otherDays);
  last_->setEnabled(period_->currentData() == otherDays);
  if (start_ != nullptr) {
    const bool hasDays = period_->currentData() != otherDays || first_->date() <= last_->date();
    start_->setEnabled(hasDays && QFileInfo(folder_->text()).isDir());
  }
}

ExportManyDialog::Days ExportManyDialog::days() const {
  return period_->currentData() == allRuns ? Days() : Days(first_->date(), last_->date());
}

ExportFormat ExportManyDialog::format() const {
  return static_cast<ExportFormat>(format_->currentData().toInt());
}

QString ExportManyDialog::folder() const {
  return folder_->text();
}

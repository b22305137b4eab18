#include "app/profilePane.h"

#include <QCheckBox>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPixmap>
#include <QPushButton>
#include <QRadioButton>
#include <QStringList>

#include <utility>

namespace {

using namespace Qt::StringLiterals;

constexpr int spacing = 3;  // px, as between the other panes and their titles

/// What the run lacks, in one line; null when nothing.
QString noteOf(const RunProfile* run) {
  if (!run) {
    return u"ランを選ぶとプロフィールが表示されます。"_s;
  }
  if (run->points.empty()) {
    return u"このランにはトラックポイントがありません。"_s;
  }
  QStringList missing;
  if (!run->speed) {
    missing << u"ペース"_s;
  }
  if (!run->heartRate) {
    missing << u"心拍数"_s;
  }
  if (!run->altitude) {
    missing << u"高度"_s;
  }
  return missing.isEmpty() ? QString()
                           : u"このランには%1のデータがありません。"_s.arg(missing.join(u"、"_s));
}

QIcon lineOf(const QColor& colour) {
  QPixmap line(12, 3);
  line.fill(colour);
  return line;
}

}  // namespace

ProfilePane::ProfilePane(std::shared_ptr<QWebEngineProfile> engine,
                         std::shared_ptr<Messenger> messenger)
    : view(new ProfileView(std::move(engine), std::move(messenger))) {
  view->setAcceptDrops(false);  // files are the window's
  auto* frame = new QFrame;
  frame->setFrameShape(QFrame::StyledPanel);
  auto* inside = new QVBoxLayout(frame);
  inside->setContentsMargins({});
  inside->addWidget(view);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins({});
  layout->setSpacing(spacing);
  layout->addWidget(makeControls());
  layout->addWidget(frame, 1);
  connect(view, &ProfileView::lookChanged, this, &ProfilePane::showColours);
  showColours();
  showRun(nullptr);
}

QWidget* ProfilePane::makeControls() {
  auto* controls = new QWidget;
  auto* row = new QHBoxLayout(controls);
  row->setContentsMargins({});
  auto* title = new QLabel(u"プロフィール(&O)"_s);
  QFont bold = title->font();
  bold.setBold(true);
  title->setFont(bold);
  title->setBuddy(view);
  row->addWidget(title);
  pace_ = addCurve(u"ペース"_s);
  heartRate_ = addCurve(u"心拍数"_s);
  altitude_ = addCurve(u"高度"_s);
  note_ = new QLabel;
  note_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  auto* distance = new QRadioButton(u"距離"_s);
  auto* time = new QRadioButton(u"時間"_s);
  distance->setChecked(true);
  connect(distance, &QRadioButton::toggled, view, [this](bool isDistance) {
    view->showAxis(isDistance ? ProfileAxis::Distance : ProfileAxis::Time);
  });
  whole_ = new QPushButton(u"全体"_s);
  whole_->setToolTip(u"ラン全体を表示します (ダブルクリック)"_s);
  whole_->setEnabled(false);
  connect(whole_, &QPushButton::clicked, view, &ProfileView::zoomOut);
  connect(view, &ProfileView::zoomed, whole_, &QWidget::setEnabled);
  for (QWidget* widget : std::initializer_list<QWidget*>{pace_, heartRate_, altitude_}) {
    row->addWidget(widget);
  }
  row->addWidget(note_, 1);
  for (QWidget* widget : std::initializer_list<QWidget*>{distance, time, whole_}) {
    row->addWidget(widget);
  }
  return controls;
}

QCheckBox* ProfilePane::addCurve(const QString& name) {
  auto* box = new QCheckBox(name);
  box->setChecked(true);
  box->setIconSize({12, 12});
  connect(box, &QCheckBox::toggled, this, &ProfilePane::curvesChosen);
  return box;
}

void ProfilePane::curvesChosen() {
  view->showCurves({pace_->isChecked(), heartRate_->isChecked(), altitude_->isChecked()});
}

void ProfilePane::showRun(const std::shared_ptr<const RunProfile>& run) {
  note_->setText(noteOf(run.get()));
  note_->setToolTip(note_->text());
  pace_->setEnabled(run && run->speed);
  heartRate_->setEnabled(run && run->heartRate);
  altitude_->setEnabled(run && run->altitude);
  view->showRun(run ? run : std::make_shared<const RunProfile>());
}

void ProfilePane::showColours() {
  const ProfileView::Colours colours = view->colours();
  pace_->setIcon(lineOf(colours.pace));
  heartRate_->setIcon(lineOf(colours.heartRate));
  altitude_->setIcon(lineOf(colours.altitude));
}

#include "app/statusLine.h"

#include "app/shortText.h"

#include <QAccessible>
#include <QDesktopServices>
#include <QEvent>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QStyle>
#include <QTextDocument>
#include <QToolButton>
#include <QUrl>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/// Enough for the longest path that the system takes.
constexpr qsizetype longestTip = 4200;

/// The path between 「 and 」, empty when there is none.
QString pathIn(const QString& line) {
  const qsizetype start = line.indexOf(u"「/"_s);
  const qsizetype end = line.indexOf(u'」', start);
  return start < 0 || end < 0 ? QString() : line.sliced(start + 1, end - start - 1);
}

QString wordFor(Verdict verdict) {
  switch (verdict) {
    case Verdict::done:
      return u"完了: "_s;
    case Verdict::failure:
      return u"失敗: "_s;
    case Verdict::note:
    case Verdict::progress:
      break;
  }
  return {};
}

}  // namespace

StatusLine::StatusLine(QWidget* parent)
    : QWidget(parent),
      sign_(new QLabel(this)),
      label_(new QLabel(this)),
      open_(new QToolButton(this)) {
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(4, 0, 0, 0);
  row->addWidget(sign_);
  row->addWidget(label_, 1);
  row->addWidget(open_);
  label_->setTextFormat(Qt::PlainText);
  // The line never asks the window to grow.
  label_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  open_->setText(u"フォルダを開く"_s);
  open_->setAutoRaise(true);
  connect(open_, &QToolButton::clicked, this,
          [this] { QDesktopServices::openUrl(QUrl::fromLocalFile(folder_)); });
  sign_->hide();
  open_->hide();
}

void StatusLine::tell(const QString& line, Verdict verdict) {
  text_ = line;
  verdict_ = verdict;
  // A tip that looks like markup would be read as such.
  setToolTip(line.isEmpty() ? QString() : Qt::convertFromPlainText(shortened(line, longestTip)));
  showSign();
  showFolder();
  fit();
  update();
  announce();
}

void StatusLine::showSign() {
  const bool isFailure = verdict_ == Verdict::failure;
  const bool hasSign = !text_.isEmpty() && (isFailure || verdict_ == Verdict::done);
  if (hasSign) {
    const int size = fontMetrics().height();
    sign_->setPixmap(
        style()
            ->standardIcon(isFailure ? QStyle::SP_MessageBoxWarning : QStyle::SP_DialogApplyButton)
            .pixmap(size, size));
  }
  sign_->setVisible(hasSign);
  QFont font = label_->font();
  font.setBold(isFailure);
  label_->setFont(font);
}

void StatusLine::showFolder() {
  const QString path = pathIn(text_);
  const QFileInfo place(path);
  folder_ = path.isEmpty() ? QString() : (place.isDir() ? path : place.absolutePath());
  open_->setVisible(!folder_.isEmpty() && QFileInfo(folder_).isDir());
  open_->setToolTip(Qt::convertFromPlainText(shortened(folder_, longestTip)));
}

void StatusLine::fit() {
  label_->setText(elidedLine(text_, label_->fontMetrics(), label_->width()));
}

void StatusLine::announce() {
  const QString spoken = text_.isEmpty() ? QString() : wordFor(verdict_) + shortened(text_);
  setAccessibleName(spoken);
  label_->setAccessibleName(spoken);
  QAccessibleEvent event(label_, QAccessible::Alert);
  QAccessible::updateAccessibility(&event);
}

void StatusLine::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  layout()->activate();
  fit();
}

void StatusLine::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::FontChange || event->type() == QEvent::PaletteChange) {
    showSign();
    fit();
  }
}

void StatusLine::paintEvent(QPaintEvent* event) {
  QWidget::paintEvent(event);
  if (verdict_ == Verdict::failure && !text_.isEmpty()) {
    // Lets the palette's own text stay readable, on light and on dark.
    QPainter(this).fillRect(rect(), QColor(220, 40, 40, 70));
  }
}

QString elidedLine(const QString& line, const QFontMetrics& metrics, int width) {
  QString fitting = shortened(line, longestTip);
  fitting.replace(u'\n', u' ');
  const QString path = pathIn(fitting);
  if (!path.isEmpty() && metrics.horizontalAdvance(fitting) > width) {
    constexpr int fewest = 12;
    const int others = metrics.horizontalAdvance(fitting) - metrics.horizontalAdvance(path);
    const int room = std::max(width - others, fewest * metrics.averageCharWidth());
    fitting.replace(path, metrics.elidedText(path, Qt::ElideMiddle, room));
  }
  return metrics.elidedText(shortened(fitting, 600), Qt::ElideRight, width);
}

#include "app/outlinedText.h"

#include <QFont>
#include <QFontMetricsF>
#include <QPaintDevice>
#include <QPainter>
#include <QPainterPath>

using namespace Qt::StringLiterals;

namespace {

QFont heavyFont(int size) {
  QFont font;
  // Arial Black where it is installed, else the face that comes nearest to it. Neither has Japanese
  // glyphs; those come from the last family.
  font.setFamilies({u"Arial Black"_s, u"DejaVu Sans"_s, u"Noto Sans CJK JP"_s});
  font.setWeight(QFont::Black);
  font.setPixelSize(size);
  return font;
}

}  // namespace

void OutlinedText::draw(QPainter& painter, const QString& text, QPointF origin, const Style& style,
                        const QColor& foreground) {
  if (const qreal ratio = painter.device()->devicePixelRatioF(); ratio != pixelRatio_) {
    pictures_.clear();  // the window has moved to another screen
    pixelRatio_ = ratio;
  }
  const Key key(text, {style.size, foreground.rgb()});
  Picture picture;
  if (const Picture* known = pictures_.object(key)) {
    picture = *known;
  } else {
    picture = paint(text, style, foreground);
    pictures_.insert(key, new Picture(picture));
  }
  const QTransform transform = painter.worldTransform();
  painter.resetTransform();
  painter.drawPixmap(transform.map(origin) + picture.offset, picture.pixmap);
  painter.setWorldTransform(transform);
}

OutlinedText::Picture OutlinedText::paint(const QString& text, const Style& style,
                                          const QColor& foreground) const {
  const QFont font = heavyFont(style.size);
  QPainterPath glyphs;
  glyphs.addText(0, -QFontMetricsF(font).descent(), font, text);
  const QRect area = glyphs.boundingRect().adjusted(-1, -1, 1, 1).toAlignedRect();

  QPixmap pixmap((QSizeF(area.size()) * pixelRatio_).toSize());
  pixmap.setDevicePixelRatio(pixelRatio_);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.translate(-area.topLeft());
  painter.setPen(QPen(Qt::black, style.size * style.strokeWidthPercent / 100));
  painter.setBrush(foreground);
  painter.drawPath(glyphs);
  return {pixmap, area.topLeft()};
}

#include "app/outlinedText.h"

#include <QFont>
#include <QFontMetricsF>
#include <QPainter>
#include <QTransform>

using namespace Qt::StringLiterals;

namespace {

QFont heavyFont(qreal size) {
  QFont font;
  // Arial Black where it is installed, else the face that comes nearest to it. Neither has Japanese
  // glyphs; those come from the last family.
  font.setFamilies({u"Arial Black"_s, u"DejaVu Sans"_s, u"Noto Sans CJK JP"_s});
  font.setWeight(QFont::Black);
  font.setPixelSize(static_cast<int>(size));
  return font;
}

}  // namespace

void OutlinedText::draw(QPainter& painter, const QString& text, QPointF origin, const Style& style,
                        const QColor& foreground) {
  painter.setPen(QPen(Qt::black, style.size * style.strokeWidthPercent / 100));
  painter.setBrush(foreground);
  painter.translate(origin);
  painter.drawPath(shape(text, style.size));
  painter.translate(-origin);
}

QPainterPath OutlinedText::shape(const QString& text, qreal size) {
  const std::pair key(size, text);
  if (const QPainterPath* known = shapes.object(key)) {
    return *known;
  }
  const QFont font = heavyFont(size);
  QPainterPath glyphs;
  glyphs.addText(0, 0, font, text);
  const QTransform upward(1, 0, 0, -1, 0, QFontMetricsF(font).descent());
  const QPainterPath path = upward.map(glyphs);
  shapes.insert(key, new QPainterPath(path));
  return path;
}

#pragma once

#include <QCache>
#include <QColor>
#include <QPainterPath>
#include <QPointF>
#include <QString>

class QPainter;

/// Draws short texts as filled glyphs with a black outline, for a painter whose y grows upward.
///
/// Keeps the shapes of the texts it has drawn: making them takes five times as long as filling
/// them, and the calendar draws the same ones each time. Main thread.
class OutlinedText {
 public:
  struct Style {
    qreal size;                ///< Of the font, in view points.
    qreal strokeWidthPercent;  ///< Width of the outline in percent of the size.
  };

  /// The lower-left corner of the text's line is put at `origin`.
  void draw(QPainter& painter, const QString& text, QPointF origin, const Style& style,
            const QColor& foreground);

 private:
  /// Shapes with the lower-left corner of the line at 0, 0 and y growing upward, by size and text.
  QCache<std::pair<qreal, QString>, QPainterPath> shapes{100};

  QPainterPath shape(const QString& text, qreal size);
};

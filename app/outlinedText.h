#pragma once

#include <QCache>
#include <QColor>
#include <QPixmap>
#include <QPointF>
#include <QString>

#include <utility>

class QPainter;

/// Draws short texts as filled glyphs with a black outline.
///
/// Keeps the pictures of the texts it has drawn: the calendar draws the same ones each time, and
/// making them takes longer than asking the store about a whole month. Main thread.
class OutlinedText {
 public:
  struct Style {
    int size;                  ///< Of the font, in view points.
    qreal strokeWidthPercent;  ///< Width of the outline in percent of the size.
  };

  /// Puts the lower-left corner of the text's line at `origin`, upright whatever way the painter's
  /// y grows. The painter may move and mirror but not scale.
  void draw(QPainter& painter, const QString& text, QPointF origin, const Style& style,
            const QColor& foreground);

 private:
  /// Text, size and colour.
  using Key = std::pair<QString, std::pair<int, QRgb>>;
  struct Picture {
    QPixmap pixmap;
    QPoint offset;  ///< From the lower-left corner of the line to the upper-left of the pixmap.
  };
  QCache<Key, Picture> pictures_{150};  ///< For a paint device of `pixelRatio_`.
  qreal pixelRatio_ = 1;

  Picture paint(const QString& text, const Style& style, const QColor& foreground) const;
};

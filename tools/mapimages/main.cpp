// Draws the images of the map: `mapimages FOLDER` writes start.png, end.png, 2.png and arr/ there.
// All are one family: a strong fill, a white rim for dark ground and a thin dark edge for light.

#include <QDir>
#include <QImage>
#include <QPainter>
#include <QPainterPath>

#include <cmath>
#include <cstdio>
#include <functional>

namespace {

using namespace Qt::StringLiterals;

constexpr QSize markerSize(12, 20);
constexpr QSize arrowSize(24, 24);
constexpr int arrowStep = 3;   // degrees
constexpr int arrowEnd = 120;  // the map page folds bearings into this range
constexpr QColor edge(0x20, 0x20, 0x20);

using Drawing = std::function<void(QPainter&)>;

bool write(const QString& path, QSize size, const Drawing& draw) {
  QImage image(size, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  draw(painter);
  painter.end();
  if (!image.save(path)) {
    std::fprintf(stderr, "mapimages: cannot write %s\n", qPrintable(path));
    return false;
  }
  return true;
}

/// Fill, white rim and dark edge, from the outside in.
void paint(QPainter& painter, const QPainterPath& shape, const QColor& fill,
           Qt::PenJoinStyle join) {
  constexpr double rim = 1.1;
  constexpr double edgeWidth = 0.7;
  painter.strokePath(shape, QPen(edge, 2 * (rim + edgeWidth), Qt::SolidLine, Qt::RoundCap, join));
  painter.strokePath(shape, QPen(Qt::white, 2 * rim, Qt::SolidLine, Qt::RoundCap, join));
  painter.fillPath(shape, fill);
}

/// A pin whose tip is the middle of the lower edge.
QPainterPath pin() {
  constexpr double middle = 6;
  constexpr double radius = 4.2;
  constexpr double top = 2;
  constexpr double tip = 18;
  QPainterPath shape(QPointF(middle, tip));
  shape.cubicTo(middle - 0.8, 13, middle - radius, 10, middle - radius, top + radius);
  shape.arcTo(QRectF(middle - radius, top, 2 * radius, 2 * radius), 180, -180);
  shape.cubicTo(middle + radius, 10, middle + 0.8, 13, middle, tip);
  shape.closeSubpath();
  return shape;
}

/// A pin with a white sign in its head, so that it is recognised without its colour, too.
Drawing marker(const QColor& fill, const QPainterPath& sign) {
  return [fill, sign](QPainter& painter) {
    paint(painter, pin(), fill, Qt::RoundJoin);
    painter.fillPath(sign, Qt::white);
  };
}

QPainterPath triangle() {
  QPainterPath shape(QPointF(4.2, 3.4));
  shape.lineTo(9, 6);
  shape.lineTo(4.2, 8.6);
  shape.closeSubpath();
  return shape;
}

QPainterPath square() {
  QPainterPath shape;
  shape.addRect(4, 4, 4, 4);
  return shape;
}

QPainterPath dot() {
  QPainterPath shape;
  shape.addEllipse(QPointF(6, 6), 1.7, 1.7);
  return shape;
}

/// An arrow head that points to the bearing: degrees clockwise from the upper edge.
Drawing arrow(int degrees) {
  return [degrees](QPainter& painter) {
    painter.translate(arrowSize.width() / 2.0, arrowSize.height() / 2.0);
    painter.rotate(degrees);
    QPainterPath shape(QPointF(0, -7.5));
    shape.lineTo(5.5, 6);
    shape.lineTo(0, 3);
    shape.lineTo(-5.5, 6);
    shape.closeSubpath();
    paint(painter, shape, QColor(0x1b, 0x2a, 0x49), Qt::MiterJoin);
  };
}

bool drawAll(const QDir& folder) {
  bool good = folder.mkpath(u"arr"_s);
  good = write(folder.filePath(u"start.png"_s), markerSize,
               marker(QColor(0x12, 0x8a, 0x3a), triangle())) &&
         good;
  good = write(folder.filePath(u"end.png"_s), markerSize,
               marker(QColor(0x1c, 0x5c, 0xd6), square())) &&
         good;
  good = write(folder.filePath(u"2.png"_s), markerSize, marker(QColor(0xc8, 0x24, 0x1c), dot())) &&
         good;
  for (int degrees = 0; degrees < arrowEnd; degrees += arrowStep) {
    good =
        write(folder.filePath(u"arr/dir_%1.png"_s.arg(degrees)), arrowSize, arrow(degrees)) && good;
  }
  return good;
}

}  // namespace

int main(int argc, char* argv[]) {
  if (argc != 2) {
    std::fputs("usage: mapimages FOLDER\n", stderr);
    return 2;
  }
  return drawAll(QDir(QString::fromLocal8Bit(argv[1]))) ? 0 : 1;
}

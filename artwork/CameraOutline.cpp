#include "artwork/CameraOutline.h"

#include <stdexcept>
#include <utility>

#include <QtCore/QString>
#include <QtGui/QImage>
#include <QtGui/QPainter>
#include <QtGui/QPainterPath>

#include "artwork/Strokes.h"

namespace kestrova::artwork {

namespace {

constexpr int kScale = 3;
constexpr int kWidth = 300;
constexpr int kHeight = 400;
constexpr double kHalfWidth = 142;
constexpr double kHalfHeight = 89.5;  // the proportions of a card, 85.6 by 54
constexpr double kRadius = 14;

QPainterPath edge() {
  QPainterPath path;
  path.addRoundedRect(QRectF(-kHalfWidth, -kHalfHeight, 2 * kHalfWidth, 2 * kHalfHeight), kRadius,
                      kRadius);
  return path;
}

QPainterPath corners() {
  constexpr double kLength = 22;
  QPainterPath path;
  for (const double right : {-1.0, 1.0}) {
    for (const double down : {-1.0, 1.0}) {
      const auto at = [right, down](double x, double y) {
        return QPointF(right * (kHalfWidth - x), down * (kHalfHeight - y));
      };
      path.moveTo(at(0, kRadius + kLength));
      path.lineTo(at(0, kRadius));
      // A quarter of a circle.
      path.cubicTo(at(0, kRadius * 0.448), at(kRadius * 0.448, 0), at(kRadius, 0));
      path.lineTo(at(kRadius + kLength, 0));
    }
  }
  return path;
}

QPainterPath frontHint() {
  QPainterPath path;
  path.addRoundedRect(QRectF(-118, -46, 84, 106), 8, 8);
  path.addEllipse(QPointF(-76, -6), 16, 20);
  path.moveTo(-108, 60);
  path.cubicTo(-106, 38, -92, 28, -76, 28);
  path.cubicTo(-60, 28, -46, 38, -44, 60);
  path.moveTo(-118, -66);
  path.lineTo(-58, -66);
  for (const auto& [y, right] : {std::pair{-34, 112}, {-6, 72}, {22, 96}, {50, 36}}) {
    path.moveTo(-8, y);
    path.lineTo(right, y);
  }
  return path;
}

QPainterPath backHint() {
  QPainterPath path;
  for (const int y : {-62, -32}) {
    path.moveTo(-kHalfWidth + 6, y);
    path.lineTo(kHalfWidth - 6, y);
  }
  path.addRoundedRect(QRectF(-118, -8, 100, 30), 6, 6);
  for (const auto& [y, right] : {std::pair{44, 118}, {62, 118}}) {
    path.moveTo(-118, y);
    path.lineTo(right, y);
  }
  return path;
}

// White that stays visible on a white table.
void draw(QPainter& painter, const QPainterPath& path, double width, double opacity) {
  painter.setOpacity(0.35 * opacity);
  setLines(painter, kInk, width + 2);
  painter.drawPath(path);
  painter.setOpacity(opacity);
  setLines(painter, kGround, width);
  painter.drawPath(path);
}

}  // namespace

void writeCameraOutline(CardSide side, const std::string& file) {
  QImage image(kScale * kWidth, kScale * kHeight, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  {
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(kScale, kScale);
    painter.translate(kWidth / 2.0, kHeight / 2.0);
    draw(painter, side == CardSide::front ? frontHint() : backHint(), kLine, 0.45);
    draw(painter, edge(), kLine, 0.8);
    draw(painter, corners(), 5, 1);
  }
  if (!image.save(QString::fromStdString(file), "PNG")) {
    throw std::runtime_error("cannot write " + file);
  }
}

}  // namespace kestrova::artwork

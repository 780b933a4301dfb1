#include "examples/host/EveningPicture.h"

#include <algorithm>

#include <QtGui/QLinearGradient>
#include <QtGui/QPainter>
#include <QtGui/QPainterPath>

namespace host {

namespace {

// The scene is drawn in a space of its own: 400 wide, the water's edge at 0, upward negative.
constexpr double kWidth = 400;
constexpr double kLeast = 330;
constexpr double kMiddle = 190;
constexpr double kAbove = 190;
constexpr double kBelow = 60;
constexpr double kHeight = kAbove + kBelow;
// The share of the picture's height that is above the water.
constexpr double kHorizon = 0.76;

const QColor kSand("#F7E3C4");

void drawSky(QPainter& painter, const QRectF& all) {
  QLinearGradient sky(0, -kAbove, 0, 0);
  sky.setColorAt(0, QColor("#16333F"));
  sky.setColorAt(0.45, QColor("#3F6470"));
  sky.setColorAt(0.8, QColor("#D9A77C"));
  sky.setColorAt(1, QColor("#F2CD9B"));
  painter.fillRect(all, sky);
  painter.setBrush(QColor("#FBE9CB"));
  painter.drawEllipse(QPointF(268, -12), 30, 30);
}

// A ridge through points of x and height.
void drawRidge(QPainter& painter, const QColor& color, std::initializer_list<QPointF> points) {
  QPainterPath path(QPointF(-kWidth * 2, 0));
  QPointF last(-kWidth * 2, points.begin()->y());
  path.lineTo(last);
  for (const QPointF& point : points) {
    const double middle = (last.x() + point.x()) / 2;
    path.cubicTo(middle, last.y(), middle, point.y(), point.x(), point.y());
    last = point;
  }
  path.lineTo(kWidth * 3, last.y());
  path.lineTo(kWidth * 3, 0);
  path.closeSubpath();
  painter.fillPath(path, color);
}

void drawHotel(QPainter& painter) {
  const QColor wall("#12262B");
  // In one piece, so that no seam shows.
  painter.setBrush(wall);
  painter.drawPolygon(QPolygonF({{92, -34},
                                 {92, -74},
                                 {88, -74},
                                 {123, -90},
                                 {154, -75.8},
                                 {154, -92},
                                 {151, -92},
                                 {164, -106},
                                 {177, -92},
                                 {174, -92},
                                 {174, -34}}));
  painter.setBrush(QColor("#F6C877"));
  for (int row = 0; row < 2; ++row) {
    for (int column = 0; column < 5; ++column) {
      if (row == 0 && column == 3) continue;
      painter.drawRoundedRect(QRectF(97 + 11.5 * column, -68 + 15.0 * row, 6, 8), 1, 1);
    }
  }
  painter.drawRoundedRect(QRectF(161, -84, 6, 9), 3, 3);
  painter.drawRoundedRect(QRectF(161, -66, 6, 8), 1, 1);
}

void drawWater(QPainter& painter, const QRectF& all) {
  QLinearGradient water(0, 0, 0, kBelow);
  water.setColorAt(0, QColor("#C08F6B"));
  water.setColorAt(0.35, QColor("#3D5A63"));
  water.setColorAt(1, QColor("#16333F"));
  painter.fillRect(QRectF(all.left(), 0, all.width(), all.bottom()), water);
  painter.setBrush(QColor(251, 233, 203, 110));
  for (int line = 0; line < 6; ++line) {
    const double width = 46.0 - 6 * line;
    painter.drawRoundedRect(QRectF(268 - width / 2 + (line % 2 ? 5 : -4), 5 + 7.0 * line, width, 2),
                            1, 1);
  }
}

// The name in wide capitals over a thin line.
void drawName(QPainter& painter, const QRectF& all) {
  const double size = std::clamp(all.width() / 22, 15.0, 30.0);
  QFont font = painter.font();
  font.setPixelSize(int(size));
  font.setWeight(QFont::Light);
  font.setLetterSpacing(QFont::AbsoluteSpacing, size * 0.34);
  painter.setFont(font);
  painter.setPen(kSand);
  const double margin = std::clamp(all.width() * 0.064, 20.0, 56.0);
  const QPointF origin(margin, margin + size * 0.72);
  painter.drawText(origin, "CALYRA");
  font.setPixelSize(int(size * 0.46));
  font.setWeight(QFont::Normal);
  font.setLetterSpacing(QFont::AbsoluteSpacing, size * 0.14);
  painter.setFont(font);
  painter.drawText(origin + QPointF(1, size * 0.95), "HOTEL ON THE BAY");
}

}  // namespace

void EveningPicture::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.save();
  // High pictures have more sky, and the hotel and the sun stay in view where the sides are cut
  // off. From right to left: the name has the sky to itself.
  const double scale = std::max(width() / kWidth, std::min(height() / kHeight, width() / kLeast));
  painter.translate(width() / 2.0 + kMiddle * scale,
                    std::min(height() - kBelow * scale, height() * kHorizon));
  painter.scale(-scale, scale);
  const QRectF all = painter.transform().inverted().mapRect(QRectF(rect()));
  drawSky(painter, all);
  drawRidge(painter, QColor("#A98873"),
            {{-60, -30}, {30, -58}, {120, -40}, {210, -22}, {300, -34}, {400, -62}, {520, -30}});
  drawRidge(painter, QColor("#4B5F62"),
            {{-40, -60}, {40, -44}, {140, -30}, {215, -8}, {260, -3}, {330, -14}, {430, -34}});
  drawHotel(painter);
  drawRidge(painter, QColor("#20393E"),
            {{-80, -20}, {20, -30}, {92, -38}, {176, -36}, {214, -12}, {240, -2}, {330, 0}});
  drawWater(painter, all);
  painter.restore();
  drawName(painter, QRectF(rect()));
}

}  // namespace host

#include "artwork/BadgeAnimation.h"

#include <cmath>
#include <numbers>

#include <QtGui/QPainter>
#include <QtGui/QPainterPath>
#include <QtGui/QPen>

#include "artwork/Motion.h"
#include "artwork/Strokes.h"

namespace kestrova::artwork {

namespace {

constexpr int kPoints = 160;
constexpr int kSide = 240;
constexpr std::size_t kFrames = 34;
constexpr int kLobes = 10;
constexpr int kRest = 20'000;  // a minute on the screen

// The scalloped outline from the top clockwise, as far as `reach`.
QPainterPath seal(double reach) {
  constexpr int kSteps = 360;
  const auto at = [](double share) {
    const double angle = 2 * std::numbers::pi * share;
    const double radius = 44 + 4.6 * std::pow(std::abs(std::cos(kLobes / 2.0 * angle)), 0.9);
    return QPointF(radius * std::sin(angle), -radius * std::cos(angle));
  };
  QPainterPath path(at(0));
  for (int i = 1; i <= kSteps; ++i) path.lineTo(at(reach * i / kSteps));
  if (reach >= 1) path.closeSubpath();
  return path;
}

void drawCheck(QPainter& painter, double reach) {
  const QPointF left(-19, 1);
  const QPointF bottom(-6, 14);
  const QPointF right(20, -14);
  const double corner = 0.33;  // of the whole length
  QPainterPath path(left);
  path.lineTo(left + (bottom - left) * share(reach, 0, corner));
  if (reach > corner) path.lineTo(bottom + (right - bottom) * share(reach, corner, 1));
  setLines(painter, kBlue, 5);
  painter.drawPath(path);
}

// Short lines and dots by turns, on their way out.
void drawMarks(QPainter& painter, double reach) {
  constexpr int kMarks = 2 * kLobes;
  for (int i = 0; i < kMarks; ++i) {
    painter.save();
    painter.rotate(360.0 * i / kMarks);
    if (i % 2 == 0) {
      setLines(painter, kInk);
      const double tip = mix(52, 69, reach);
      painter.drawLine(QPointF(0, -tip), QPointF(0, -tip + mix(0, 8, reach)));
    } else {
      painter.setPen(Qt::NoPen);
      painter.setBrush(QColor(kBlue));
      painter.drawEllipse(QPointF(0, -mix(52, 65, reach)), 2.2 * reach, 2.2 * reach);
    }
    painter.restore();
  }
}

}  // namespace

Animation::Format BadgeAnimation::format() const {
  return {kSide,
          kSide,
          kGround,
          {{kInk, kGround}, {kInk, kTint}, {kTint, kGround}, {kBlue, kGround}, {kBlue, kTint}}};
}

std::size_t BadgeAnimation::frameCount() const {
  return kFrames;
}

int BadgeAnimation::delay(std::size_t frame) const {
  return frame + 1 == kFrames ? kRest : 10;
}

void BadgeAnimation::draw(QPainter& painter, std::size_t frame) const {
  const auto at = static_cast<double>(frame) + 1;
  painter.scale(double(kSide) / kPoints, double(kSide) / kPoints);
  painter.translate(kPoints / 2.0, kPoints / 2.0);
  if (const double reach = share(at, 21, 32); reach > 0) drawMarks(painter, easeOut(reach));

  const double beat = share(at, 20, 30);
  const double swell = 1 + 0.06 * std::sin(std::numbers::pi * beat);
  painter.scale(swell, swell);
  if (const double grown = easeOut(share(at, 8, 16)); grown > 0) {
    painter.save();
    painter.scale(grown, grown);
    painter.fillPath(seal(1), QColor(kTint));
    painter.restore();
  }
  painter.setPen(curveStroke(kInk));
  painter.setBrush(Qt::NoBrush);
  painter.drawPath(seal(easeInOut(share(at, 0, 14))));
  if (const double reach = share(at, 13, 22); reach > 0) drawCheck(painter, easeInOut(reach));
}

}  // namespace kestrova::artwork

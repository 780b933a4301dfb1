#include "artwork/HeadAnimation.h"

#include <cmath>

#include <QtGui/QPainter>
#include <QtGui/QPainterPath>

#include "artwork/Head.h"
#include "artwork/Motion.h"
#include "artwork/Strokes.h"

namespace kestrova::artwork {

namespace {

constexpr int kSide = 220;
constexpr double kFarthest = 0.62;  // radians
// Frame 0 looks straight ahead; then to the left, across to the right, and back.
constexpr std::size_t kLeft = 10;
constexpr std::size_t kRight = 30;
constexpr std::size_t kFrames = 40;

// From -1, all to the left, to 1.
double turnOf(std::size_t frame) {
  const auto at = static_cast<double>(frame);
  if (frame <= kLeft) return -easeInOut(share(at, 0, kLeft));
  if (frame <= kRight) return mix(-1, 1, easeInOut(share(at, kLeft, kRight)));
  return 1 - easeInOut(share(at, kRight, kFrames));
}

// The arrow beside the head, drawn for the right side: a piece of the circle, seen from the front
// and a little above, on which the nose turns.
QPointF onTrack(double share) {
  const double angle = mix(0.62, 1.18, share);
  return {95 * std::sin(angle), 26 * std::cos(angle)};
}

void drawArrow(QPainter& painter, double reach) {
  constexpr int kSteps = 24;
  const auto track = [](double end) {
    QPainterPath path(onTrack(0));
    for (int i = 1; i <= kSteps; ++i) path.lineTo(onTrack(end * i / kSteps));
    return path;
  };
  const QPointF end = onTrack(1);
  QPainterPath tip(end + QPointF(-10.5, -1));
  tip.lineTo(end);
  tip.lineTo(end + QPointF(-2.5, 10));
  setLines(painter, kDeepTint, 3);
  painter.drawPath(track(1));
  painter.drawPath(tip);
  if (reach <= 0) return;
  setLines(painter, kBlue, 3);
  painter.drawPath(track(reach));
  if (reach > 0.95) painter.drawPath(tip);
}

}  // namespace

Animation::Format HeadAnimation::format() const {
  return {kSide,
          kSide,
          kTint,
          {{kInk, kTint},
           {kInk, kGround},
           {kInk, kDeepTint},
           {kDeepTint, kTint},
           {kBlue, kTint},
           {kBlue, kDeepTint}}};
}

std::size_t HeadAnimation::frameCount() const {
  return kFrames;
}

int HeadAnimation::delay(std::size_t frame) const {
  if (frame == 0) return 250;
  return frame == kLeft || frame == kRight ? 120 : 20;
}

void HeadAnimation::draw(QPainter& painter, std::size_t frame) const {
  const double turn = turnOf(frame);
  painter.translate(kSide / 2.0, 98);
  drawHead(painter, kFarthest * turn);
  for (int side : {-1, 1}) {
    painter.save();
    painter.scale(side, 1);
    drawArrow(painter, side * turn);
    painter.restore();
  }
}

}  // namespace kestrova::artwork

#include "platform/liveness/OvalView.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/uikit/Canvas.h"
#include "platform/uikit/UIBezierPath.h"

namespace kestrova::platform {

namespace {

const UIColor kEmpty(29 / 255.0, 41 / 255.0, 57 / 255.0, 1);

UIColor between(const UIColor& a, const UIColor& b, double share) {
  const auto from = a.sRGB();
  const auto to = b.sRGB();
  const auto mix = [share](double x, double y) { return x + (y - x) * share; };
  return {mix(from.redComponent(), to.redComponent()),
          mix(from.greenComponent(), to.greenComponent()),
          mix(from.blueComponent(), to.blueComponent()),
          mix(from.alphaComponent(), to.alphaComponent())};
}

// A rectangle with its ellipse left out.
CGPath corners(const CGRect& rect) {
  auto path = UIBezierPath::ovalIn(rect).cgPath();
  path.append(CGPath::Move{rect.origin});
  path.append(CGPath::Line{{rect.maxX(), rect.minY()}});
  path.append(CGPath::Line{{rect.maxX(), rect.maxY()}});
  path.append(CGPath::Line{{rect.minX(), rect.maxY()}});
  return path;
}

}  // namespace

OvalView::OvalView(const ZoomCustomization::Oval& look) : look_(look) {
  setUserInteractionEnabled(false);
}

double OvalView::margin() const {
  const double outer = std::max(look_.progressRadialOffset, 0.0) + look_.progressStrokeWidth / 2;
  return std::ceil(std::max(outer, look_.strokeWidth / 2)) + 1;
}

void OvalView::setProgress(double progress) {
  if (std::exchange(progress_, progress) != progress) setNeedsDisplay();
}

void OvalView::setPicture(const CGImage& picture) {
  const auto face = CGRect{{}, bounds().size}.insetBy(margin(), margin());
  if (!(face.size.width > 0 && face.size.height > 0)) return;
  const auto all = std::pair(double(picture.width()), double(picture.height()));
  // Pixels of the picture for a point.
  const double scale =
      std::min(kWidth * all.first / face.size.width, kHeight * all.second / face.size.height);
  const auto pixels = [scale](double points, double most) {
    return std::clamp(std::round(points * scale), 1.0, most);
  };
  const double width = pixels(face.size.width, all.first);
  const double height = pixels(face.size.height, all.second);
  const auto left = std::size_t((all.first - width) / 2);
  const auto top = std::size_t((all.second - height) / 2);
  const auto mirrored = CGImage::make(std::size_t(width), std::size_t(height));
  if (!mirrored) return;
  for (std::size_t y = 0; y < mirrored->height(); ++y) {
    std::ranges::reverse_copy(picture.row(top + y).subspan(left, mirrored->width()),
                              mirrored->row(y).begin());
  }
  picture_.emplace(mirrored);
  setNeedsDisplay();
}

void OvalView::draw(Canvas& canvas) {
  const auto face = CGRect{{}, bounds().size}.insetBy(margin(), margin());
  if (picture_) {
    canvas.draw(*picture_, face);
  } else {
    canvas.fill(face, kEmpty);
  }
  canvas.fill(corners(face), UIColor::black());
  canvas.stroke(UIBezierPath::ovalIn(face).cgPath(), look_.strokeColor, look_.strokeWidth);
  if (progress_ <= 0) return;
  const double offset = look_.progressRadialOffset;
  canvas.stroke(UIBezierPath::ovalIn(face.insetBy(-offset, -offset)).cgPath(),
                between(look_.progressColor1, look_.progressColor2, progress_),
                look_.progressStrokeWidth, progress_);
}

}  // namespace kestrova::platform

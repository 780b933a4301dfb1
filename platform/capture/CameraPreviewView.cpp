#include "platform/capture/CameraPreviewView.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/uikit/Canvas.h"

namespace kestrova::platform {

CameraPreviewView::CameraPreviewView() {
  setUserInteractionEnabled(false);
  setBackgroundColor(UIColor::black());
  setAccessibilityRole(UIAccessibilityRole::image);
}

void CameraPreviewView::setPicture(std::shared_ptr<const CGImage> picture) {
  // A camera that sees a still picture gives the same one again and again.
  if (picture_ == picture) return;
  picture_ = std::move(picture);
  setNeedsDisplay();
}

void CameraPreviewView::setMiddle(double y) {
  if (middle_ == y) return;
  middle_ = y;
  setNeedsDisplay();
}

PixelSize CameraPreviewView::room() const {
  const double scale = contentScaleFactor();
  const CGSize size = bounds().size;
  return {std::size_t(std::max(0L, std::lround(size.width * scale))),
          std::size_t(std::max(0L, std::lround(size.height * scale)))};
}

CGRect CameraPreviewView::place() const {
  const PixelSize all = room();
  if (!picture_ || all.width == 0 || all.height == 0) return {};
  const double scale = contentScaleFactor();
  const PixelSize shown = fitting({picture_->width(), picture_->height()}, all);
  const double left = std::floor(double(all.width - std::min(all.width, shown.width)) / 2);
  const double lowest = double(all.height - std::min(all.height, shown.height));
  const double top =
      std::clamp(std::round(middle_ * scale - double(shown.height) / 2), 0.0, lowest);
  return {{left / scale, top / scale}, {double(shown.width) / scale, double(shown.height) / scale}};
}

void CameraPreviewView::draw(Canvas& canvas) {
  if (picture_) canvas.draw(UIImage(picture_), place());
}

}  // namespace kestrova::platform

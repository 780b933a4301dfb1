#include "platform/uikit/UIImageView.h"

#include <algorithm>
#include <cmath>

#include "platform/uikit/AnimationClock.h"
#include "platform/uikit/Canvas.h"

namespace kestrova::platform {

UIImageView::UIImageView(const std::optional<UIImage>& image) {
  setUserInteractionEnabled(false);
  if (image) setFrame({{}, image->size()});
  setImage(image);
}

void UIImageView::setImage(const std::optional<UIImage>& image) {
  const CGSize before = image_ ? image_->size() : CGSize{};
  image_ = image;
  findSteps();
  start_ = AnimationClock::shared().now();
  if ((image_ ? image_->size() : CGSize{}) != before) invalidateIntrinsicContentSize();
  setNeedsDisplay();
}

void UIImageView::findSteps() {
  steps_.clear();
  if (!image_ || image_->images().size() < 2 || !(image_->duration() > 0)) return;
  const auto& images = image_->images();
  const void* shown = nullptr;
  for (std::size_t index = 0; index < images.size(); ++index) {
    // A picture that is to stay longer comes several times.
    const auto bitmap = images[index].cgImage();
    const void* const pixels = bitmap ? bitmap.value().get() : nullptr;
    const double end = double(index + 1) / double(images.size());
    if (!steps_.empty() && pixels == shown) {
      steps_.back().end = end;
    } else {
      steps_.push_back({index, end});
    }
    shown = pixels;
  }
}

const UIImage& UIImageView::current() {
  if (steps_.size() < 2) return *image_;
  const double duration = image_->duration();
  const double elapsed = AnimationClock::shared().now() - start_;
  // Clocks are not exact: what is due within a thousandth of a second is shown.
  constexpr double kSoon = 0.001;
  const double round = std::floor((elapsed + kSoon) / duration);
  const double share = (elapsed + kSoon) / duration - round;
  const auto step = std::find_if(steps_.begin(), steps_.end() - 1,
                                 [share](const Step& each) { return share < each.end; });
  redrawAt(start_ + (round + step->end) * duration);
  return image_->images()[step->index];
}

CGRect UIImageView::place(CGSize size) const {
  const CGRect all{{}, bounds().size};
  const auto centered = [&all](CGSize of) {
    return CGRect{{all.midX() - of.width / 2, all.midY() - of.height / 2}, of};
  };
  if (size.width <= 0 || size.height <= 0) return all;
  const double across = all.size.width / size.width;
  const double down = all.size.height / size.height;
  const auto scaled = [size](double by) { return CGSize{size.width * by, size.height * by}; };
  switch (contentMode()) {
    case UIViewContentMode::scaleAspectFit:
      return centered(scaled(std::min(across, down)));
    case UIViewContentMode::scaleAspectFill:
      return centered(scaled(std::max(across, down)));
    case UIViewContentMode::center:
      return centered(size);
    case UIViewContentMode::scaleToFill:
      break;
  }
  return all;
}

void UIImageView::draw(Canvas& canvas) {
  if (!image_) return;
  const UIImage& image = current();
  canvas.draw(image, place(image.size()));
}

CGSize UIImageView::sizeThatFits(CGSize) const {
  return image_ ? image_->size() : CGSize{-1, -1};
}

UIAccessibilityRole UIImageView::accessibilityRole() const {
  const auto set = UIView::accessibilityRole();
  if (set != UIAccessibilityRole::none || accessibilityLabel().empty()) return set;
  return UIAccessibilityRole::image;
}

}  // namespace kestrova::platform

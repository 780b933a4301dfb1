#include "platform/uikit/CALayer.h"

#include <algorithm>

#include "platform/uikit/AnimationClock.h"
#include "platform/uikit/Canvas.h"

namespace kestrova::platform {

void CALayer::add(const CAKeyframeAnimation& animation, std::string_view forKey) {
  animations_.insert_or_assign(std::string(forKey),
                               Running{animation, AnimationClock::shared().now()});
  if (onChange_) onChange_();
}

std::optional<CAKeyframeAnimation> CALayer::animation(std::string_view forKey) const {
  const auto found = animations_.find(forKey);
  if (found == animations_.end()) return std::nullopt;
  return found->second.animation;
}

std::vector<std::string> CALayer::animationKeys() const {
  std::vector<std::string> keys;
  for (const auto& [key, running] : animations_) keys.push_back(key);
  return keys;
}

void CALayer::removeAnimation(std::string_view forKey) {
  const auto found = animations_.find(forKey);
  if (found == animations_.end()) return;
  animations_.erase(found);
  if (onChange_) onChange_();
}

void CALayer::removeAllAnimations() {
  animations_.clear();
  if (onChange_) onChange_();
}

std::optional<double> CALayer::presentationValue(std::string_view keyPath) const {
  const double now = AnimationClock::shared().now();
  for (const auto& [key, running] : animations_) {
    if (running.animation.keyPath != keyPath) continue;
    if (running.animation.isOver(now - running.start)) continue;
    return running.animation.value(now - running.start);
  }
  return std::nullopt;
}

bool CALayer::isMoving() const {
  const double now = AnimationClock::shared().now();
  return std::any_of(animations_.begin(), animations_.end(), [now](const auto& entry) {
    return !entry.second.animation.isOver(now - entry.second.start);
  });
}

void CALayer::draw(Canvas& canvas, CGSize size, const std::function<void()>& content) const {
  const CGRect rect{{}, size};
  if (backgroundColor_) canvas.fill(rect, *backgroundColor_, cornerRadius_);
  canvas.save();
  if (masksToBounds_ && cornerRadius_ > 0) canvas.clip(rect, cornerRadius_);
  if (const auto turn = presentationValue("transform.rotation")) {
    canvas.rotate(*turn, {rect.midX(), rect.midY()});
  }
  drawInside(canvas, size);
  content();
  canvas.restore();
  if (borderWidth_ > 0) canvas.stroke(rect, borderColor_, borderWidth_, cornerRadius_);
}

}  // namespace kestrova::platform

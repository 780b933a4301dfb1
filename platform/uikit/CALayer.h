#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/foundation/Export.h"
#include "platform/graphics/CGGeometry.h"
#include "platform/graphics/UIColor.h"
#include "platform/uikit/CAKeyframeAnimation.h"

namespace kestrova::platform {

class Canvas;

// How a view's ground and edge look, and what moves on it. Owned by its view. Main thread.
class KESTROVA_EXPORT CALayer {
 public:
  CALayer() = default;
  CALayer(const CALayer&) = delete;
  CALayer& operator=(const CALayer&) = delete;
  virtual ~CALayer() = default;

  // Points; 0 at first.
  double cornerRadius() const { return cornerRadius_; }
  void setCornerRadius(double radius) { change(cornerRadius_, radius); }
  double borderWidth() const { return borderWidth_; }
  void setBorderWidth(double width) { change(borderWidth_, width); }
  // Black at first.
  const UIColor& borderColor() const { return borderColor_; }
  void setBorderColor(const UIColor& color) { change(borderColor_, color); }
  const std::optional<UIColor>& backgroundColor() const { return backgroundColor_; }
  void setBackgroundColor(const std::optional<UIColor>& color) { change(backgroundColor_, color); }
  // Whether the view's own content ends at the rounded corners. Subviews always end at the view's
  // rectangle.
  bool masksToBounds() const { return masksToBounds_; }
  void setMasksToBounds(bool masks) { change(masksToBounds_, masks); }

  // Starts now; takes the place of the one under the same key.
  void add(const CAKeyframeAnimation& animation, std::string_view forKey);
  // None where there is none under that key.
  std::optional<CAKeyframeAnimation> animation(std::string_view forKey) const;
  std::vector<std::string> animationKeys() const;
  void removeAnimation(std::string_view forKey);
  void removeAllAnimations();

  // The value that an animation gives the property now; none where none runs.
  std::optional<double> presentationValue(std::string_view keyPath) const;
  // Whether what is drawn changes by itself.
  bool isMoving() const;

  // Draws ground and border, in a view of that size; `content` draws what lies between.
  void draw(Canvas& canvas, CGSize size, const std::function<void()>& content) const;

  // Called after each change; set by the view.
  void setOnChange(std::function<void()> onChange) { onChange_ = std::move(onChange); }

 protected:
  // Over the ground, below the view's content.
  virtual void drawInside(Canvas&, CGSize) const {}

  template <typename T>
  void change(T& field, const T& value) {
    if (field == value) return;
    field = value;
    if (onChange_) onChange_();
  }

 private:
  struct Running {
    CAKeyframeAnimation animation;
    double start;
  };

  double cornerRadius_ = 0;
  double borderWidth_ = 0;
  UIColor borderColor_ = UIColor::black();
  std::optional<UIColor> backgroundColor_;
  bool masksToBounds_ = false;
  std::map<std::string, Running, std::less<>> animations_;
  std::function<void()> onChange_;
};

}  // namespace kestrova::platform

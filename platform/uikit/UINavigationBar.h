#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "platform/graphics/UIImage.h"
#include "platform/uikit/UINavigationItem.h"
#include "platform/uikit/UIView.h"

namespace kestrova::platform {

class UIControl;

enum class UIBarPosition { any = 0 };
enum class UIBarMetrics { standard = 0 };

// How all navigation bars of the process look, those that exist included. Main thread.
class UINavigationBarAppearance {
 public:
  // An image without pixels (none) leaves the bar clear.
  void setBackgroundImage(const std::optional<UIImage>& image, UIBarPosition position,
                          UIBarMetrics metrics);
  const std::optional<std::optional<UIImage>>& backgroundImage() const { return background_; }
  // Stands for the hairline below the bar; none takes it away.
  void setShadowImage(const std::optional<UIImage>& image);
  const std::optional<std::optional<UIImage>>& shadowImage() const { return shadow_; }

 private:
  std::optional<std::optional<UIImage>> background_;
  std::optional<std::optional<UIImage>> shadow_;
};

// The strip on top of a navigation controller: the way back, and the title. Main thread.
class UINavigationBar : public UIView {
 public:
  static constexpr double kHeight = 56;
  static UINavigationBarAppearance& appearance();

  // `onBack` is called for each tap on the way back.
  explicit UINavigationBar(std::function<void()> onBack);

  // `offersBack`: there is a screen below.
  void show(const UINavigationItem& item, bool offersBack);
  // Shown where there is a way back.
  const std::shared_ptr<UIControl>& backButton() const { return back_; }

  void layoutSubviews() override;
  // Touches beside the controls go to the screen below.
  std::shared_ptr<UIView> hitTest(CGPoint point) override;

 protected:
  void draw(Canvas& canvas) override;

 private:
  std::shared_ptr<UIControl> back_;
  UINavigationItem item_;
};

}  // namespace kestrova::platform

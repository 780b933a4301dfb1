#pragma once

#include <memory>
#include <optional>
#include <string>

#include "platform/foundation/Export.h"
#include "platform/graphics/UIFont.h"
#include "platform/graphics/UIImage.h"
#include "platform/uikit/UIControl.h"

namespace kestrova::platform {

class NSLayoutManager;

enum class UIControlState { normal, disabled };

// A title, with an image before it, in the middle of its ground. Pressed it is 8 % darker. Takes
// touches up to 44 x 44 points about its middle where no other control lies there. Main thread.
class KESTROVA_EXPORT UIButton : public UIControl {
 public:
  static constexpr double kFontSize = 17;
  static constexpr double kLeastTarget = 44;

  UIButton();
  UIButton(const UIButton&) = delete;
  UIButton& operator=(const UIButton&) = delete;
  ~UIButton() override;

  const std::string& title() const { return title_; }
  void setTitle(std::string title);
  // Black at first; a disabled button has its normal colour until it is given another.
  const UIColor& titleColor(UIControlState state = UIControlState::normal) const;
  void setTitleColor(const UIColor& color, UIControlState state = UIControlState::normal);
  const UIFont& titleFont() const { return titleFont_; }
  // None for the system's, 17 points.
  void setTitleFont(const std::optional<UIFont>& font);
  const std::optional<UIImage>& image() const { return image_; }
  void setImage(const std::optional<UIImage>& image);
  // Kept free at the left and right, in points; 12 at first.
  double contentInset() const { return contentInset_; }
  void setContentInset(double inset);

  void setEnabled(bool enabled) override;

  CGSize sizeThatFits(CGSize size) const override;
  std::shared_ptr<UIView> hitTest(CGPoint point) override;
  // What is not set is the title, else the text of a label inside.
  std::string accessibilityLabel() const override;
  UIAccessibilityRole accessibilityRole() const override;

 protected:
  void draw(Canvas& canvas) override;

 private:
  void contentChanged();
  void lay(NSLayoutManager& manager, double width) const;
  bool isOtherControlAt(CGPoint point) const;

  std::string title_;
  UIColor titleColor_ = UIColor::black();
  std::optional<UIColor> disabledTitleColor_;
  UIFont titleFont_;
  std::optional<UIImage> image_;
  double contentInset_ = 12;

  // The title as it was drawn last.
  std::unique_ptr<NSLayoutManager> drawn_;
  double drawnWidth_ = 0;
  UIColor drawnColor_ = UIColor::black();
};

}  // namespace kestrova::platform

#pragma once

#include <memory>
#include <string>

#include "platform/liveness/OvalView.h"
#include "platform/liveness/ZoomCustomization.h"
#include "platform/uikit/UIView.h"

namespace kestrova::platform {

class UIButton;
class UILabel;

// What the development engine's capture screen shows: a black frame with the oval, what the user is
// to do, what the engine is not, and a way out. Main thread.
class DevelopmentView : public UIView {
 public:
  explicit DevelopmentView(ZoomCustomization customization);

  const std::shared_ptr<OvalView>& oval() const { return oval_; }
  void setFeedback(const std::string& text);
  // Whether to ask for more light.
  void setDark(bool isDark);
  const std::shared_ptr<UIButton>& cancelButton() const { return cancel_; }

  void layoutSubviews() override;

 protected:
  void draw(Canvas& canvas) override;

 private:
  CGRect frameOnScreen() const;
  CGRect ovalInFrame() const;
  // The customisation's margin, scaled with the view's height since the first layout.
  double feedbackTop() const;

  ZoomCustomization customization_;
  // The view's height at the first layout, which the customisation's margin refers to.
  double designedHeight_ = 0;
  std::shared_ptr<OvalView> oval_;
  std::shared_ptr<UILabel> notice_;
  std::shared_ptr<UILabel> feedback_;
  std::shared_ptr<UILabel> hint_;
  std::shared_ptr<UIButton> cancel_;
};

}  // namespace kestrova::platform

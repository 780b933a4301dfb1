#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "platform/graphics/UIImage.h"
#include "platform/uikit/UIView.h"

namespace kestrova::platform {

// Shows a picture, or several in turn, for ever. Takes no touches until user interaction is
// enabled. Main thread.
class UIImageView : public UIView {
 public:
  UIImageView() : UIImageView(std::nullopt) {}
  // As large as the picture.
  explicit UIImageView(const std::optional<UIImage>& image);

  const std::optional<UIImage>& image() const { return image_; }
  // One of several pictures begins with its first.
  void setImage(const std::optional<UIImage>& image);

  CGSize sizeThatFits(CGSize size) const override;
  // A picture without a label is an ornament.
  UIAccessibilityRole accessibilityRole() const override;

 protected:
  void draw(Canvas& canvas) override;

 private:
  // A picture of several, until when it is shown: a share of the round.
  struct Step {
    std::size_t index;
    double end;
  };

  void findSteps();
  // The picture to be shown now; sees to it that the next one follows.
  const UIImage& current();
  CGRect place(CGSize size) const;

  std::optional<UIImage> image_;
  double start_ = 0;
  std::vector<Step> steps_;
};

}  // namespace kestrova::platform

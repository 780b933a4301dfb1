#pragma once

#include <optional>

#include "platform/uikit/UIView.h"
#include "sdk/Platform.h"

namespace kestrova {

// Shows its only subview at its size in the storyboard; scaled down with its corners and contents
// where there is less room. Main thread.
class ArtworkView : public UIView {
 public:
  // The subview's place in what is free: 0 for the left or upper edge, 1 for the right or lower
  // one.
  double alignmentX = 0.5;
  double alignmentY = 0.5;

  void bind(UIBindings& bindings) override;
  CGSize sizeThatFits(CGSize size) const override;
  void layoutSubviews() override;

 private:
  struct Design {
    CGSize size;
    double cornerRadius;
  };
  // None until the storyboard has added the subview.
  const std::optional<Design>& design() const;

  mutable std::optional<Design> design_;
};

}  // namespace kestrova

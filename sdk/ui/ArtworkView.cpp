#include "sdk/ui/ArtworkView.h"

#include <algorithm>
#include <cmath>

#include "platform/uikit/UIBindings.h"

namespace kestrova {

const std::optional<ArtworkView::Design>& ArtworkView::design() const {
  if (!design_ && !subviews().empty()) {
    const UIView& picture = *subviews().front();
    design_ = Design{picture.bounds().size, picture.layer().cornerRadius()};
  }
  return design_;
}

void ArtworkView::bind(UIBindings& bindings) {
  UIView::bind(bindings);
  bindings.property("alignmentX", alignmentX);
  bindings.property("alignmentY", alignmentY);
}

CGSize ArtworkView::sizeThatFits(CGSize) const {
  return design() ? design()->size : CGSize{-1, -1};
}

void ArtworkView::layoutSubviews() {
  if (!design()) return;
  const auto& [designed, cornerRadius] = *design();
  const CGSize given = bounds().size;
  const double scale =
      std::min({1.0, given.width / designed.width, given.height / designed.height});
  const CGSize size{std::round(designed.width * scale), std::round(designed.height * scale)};
  const auto& picture = subviews().front();
  picture->setFrame({{std::round((given.width - size.width) * alignmentX),
                      std::round((given.height - size.height) * alignmentY)},
                     size});
  picture->layer().setCornerRadius(cornerRadius * scale);
  for (const auto& each : picture->subviews()) {
    each->setFrame({{}, size});
    each->layer().setCornerRadius(cornerRadius * scale);
  }
}

}  // namespace kestrova

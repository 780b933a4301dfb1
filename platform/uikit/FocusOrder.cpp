#include "platform/uikit/FocusOrder.h"

#include "platform/uikit/UIControl.h"
#include "platform/uikit/UIScrollView.h"
#include "platform/uikit/UIWindow.h"

namespace kestrova::platform {

namespace {

// True while something else, for example an overlay, lies over the middle of the view. For a view
// that is scrolled out of sight its scroll view counts instead.
bool isCovered(const UIView& view) {
  const auto window = view.window();
  const CGSize size = view.bounds().size;
  const CGPoint middle{view.bounds().origin.x + size.width / 2,
                       view.bounds().origin.y + size.height / 2};
  for (auto above = view.superview(); above; above = above->superview()) {
    const auto* const scrollView = dynamic_cast<const UIScrollView*>(above.get());
    if (scrollView && !scrollView->bounds().contains(view.convert(middle, scrollView))) {
      return isCovered(*scrollView);
    }
  }
  const auto hit = window ? window->hitTest(view.convert(middle, nullptr)) : nullptr;
  return hit && !hit->isDescendant(view) && !view.isDescendant(*hit);
}

void collect(const std::shared_ptr<UIView>& view, std::vector<std::shared_ptr<UIView>>& found) {
  if (view->isHidden() || !view->isUserInteractionEnabled()) return;
  if (view->isFocusable() && !isCovered(*view)) {
    const auto* control = dynamic_cast<const UIControl*>(view.get());
    if (!control || control->isEnabled()) found.push_back(view);
  }
  for (const auto& subview : view->reachableSubviews()) collect(subview, found);
}

}  // namespace

std::vector<std::shared_ptr<UIView>> focusOrder(const std::shared_ptr<UIView>& root) {
  std::vector<std::shared_ptr<UIView>> found;
  collect(root, found);
  return found;
}

}  // namespace kestrova::platform

#pragma once

#include <memory>
#include <string_view>

#include "platform/uikit/UIButton.h"
#include "platform/uikit/UIWindow.h"
#include "sdk/Platform.h"

namespace kestrova {

// The button of that name in a view; null unless it is seen, enabled and takes taps now.
inline std::shared_ptr<UIButton> usableButton(const UIView& in, std::string_view label) {
  for (const auto& view : in.subviews()) {
    if (view->isHidden()) continue;
    auto found = std::dynamic_pointer_cast<UIButton>(view);
    if (found && found->isEnabled() && found->accessibilityLabel() == label) {
      const auto window = found->window();
      return window && found->isReachable() && !window->ignoresTaps(*found) ? found : nullptr;
    }
    if (auto below = usableButton(*view, label)) return below;
  }
  return nullptr;
}

}  // namespace kestrova

#pragma once

#include <memory>
#include <string_view>

#include "platform/uikit/UIButton.h"
#include "sdk/Platform.h"

namespace kestrova {

// A button below a view that is seen and enabled, by its name; null where there is none.
inline std::shared_ptr<UIButton> usableButton(const UIView& in, std::string_view label) {
  for (const auto& view : in.subviews()) {
    if (view->isHidden()) continue;
    auto found = std::dynamic_pointer_cast<UIButton>(view);
    if (found && found->isEnabled() && found->accessibilityLabel() == label) return found;
    if (auto below = usableButton(*view, label)) return below;
  }
  return nullptr;
}

}  // namespace kestrova

#pragma once

#include <memory>
#include <vector>

namespace kestrova::platform {

class UIView;

// The views in `root` that can take the keyboard's focus now, in reading order: focusable, enabled
// and covered by nothing. Main thread.
std::vector<std::shared_ptr<UIView>> focusOrder(const std::shared_ptr<UIView>& root);

}  // namespace kestrova::platform

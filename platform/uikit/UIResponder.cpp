#include "platform/uikit/UIResponder.h"

#include "platform/uikit/UIControl.h"

namespace kestrova::platform {

void UIResponder::setActions(std::map<std::string, Action, std::less<>> actions) {
  actions_ = std::move(actions);
}

bool UIResponder::tryToPerform(std::string_view name, const std::shared_ptr<UIControl>& sender) {
  for (auto responder = shared_from_this(); responder; responder = responder->next()) {
    const auto found = responder->actions_.find(name);
    if (found == responder->actions_.end()) continue;
    const Action action = found->second;
    action(sender);
    return true;
  }
  return false;
}

}  // namespace kestrova::platform

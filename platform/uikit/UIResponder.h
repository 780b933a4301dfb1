#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "platform/foundation/Export.h"

namespace kestrova::platform {

class UIBindings;
class UIControl;

// What can answer events: views, view controllers, the application. Objects of this layer live on
// the main thread and are made by std::make_shared.
class KESTROVA_EXPORT UIResponder : public std::enable_shared_from_this<UIResponder> {
 public:
  using Action = std::function<void(const std::shared_ptr<UIControl>& sender)>;

  UIResponder() = default;
  UIResponder(const UIResponder&) = delete;
  UIResponder& operator=(const UIResponder&) = delete;
  virtual ~UIResponder() = default;

  // Who is asked after this one; null at the chain's end.
  virtual std::shared_ptr<UIResponder> next() const { return nullptr; }

  // Names the outlets and actions that a storyboard or nib connects; called once for each load.
  virtual void bind(UIBindings&) {}
  // After everything of the storyboard or nib is there and connected.
  virtual void awakeFromNib() {}

  // The actions that bind() named. Kept by the loader, so that first-responder actions find them.
  void setActions(std::map<std::string, Action, std::less<>> actions);
  bool hasAction(std::string_view name) const { return actions_.contains(name); }
  // Runs the action on this responder, or on the nearest after it that has it; false where none
  // has.
  bool tryToPerform(std::string_view name, const std::shared_ptr<UIControl>& sender);

 protected:
  // This object under its own type.
  template <typename Self>
  static std::shared_ptr<Self> shared(Self* self) {
    return std::static_pointer_cast<Self>(self->shared_from_this());
  }

 private:
  std::map<std::string, Action, std::less<>> actions_;
};

}  // namespace kestrova::platform

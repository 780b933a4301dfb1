#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/uikit/UIControl.h"
#include "platform/uikit/UIResponder.h"

namespace kestrova::platform {

class NSLayoutConstraint;

// What an object wants connected when it comes out of a storyboard or nib. Filled by
// UIResponder::bind(), read by the loader.
class UIBindings {
 public:
  struct Outlet {
    std::string name;
    // Sets the outlet, or clears it where null; false where the object is of another type than the
    // outlet.
    std::function<bool(const std::shared_ptr<UIView>&)> connect;
  };
  struct ConstraintOutlet {
    std::string name;
    std::function<void(const std::shared_ptr<NSLayoutConstraint>&)> connect;
  };

  struct NumberProperty {
    std::string name;
    std::function<void(double)> set;
  };

  // The view of that name. `slot` is a member of the object that is being bound.
  template <typename View>
  void outlet(std::string_view name, std::weak_ptr<View>& slot) {
    addOutlet<View>(name, slot);
  }
  template <typename View>
  void outlet(std::string_view name, std::shared_ptr<View>& slot) {
    addOutlet<View>(name, slot);
  }
  // The layout constraint of that identifier.
  void outlet(std::string_view name, std::weak_ptr<NSLayoutConstraint>& slot) {
    constraintOutlets.push_back(
        {std::string(name), [&slot](const auto& constraint) { slot = constraint; }});
  }

  // A number of the object, a view, that each of its kind in a storyboard may set; goes before a
  // property of all views of that name.
  template <typename Number>
  void property(std::string_view name, Number& slot) {
    properties.push_back(
        {std::string(name), [&slot](double number) { slot = static_cast<Number>(number); }});
  }

  // A member function of the object that is being bound, by the name that the storyboard uses.
  // `self` is not kept.
  template <typename Self>
  void action(std::string_view name, const std::shared_ptr<Self>& self,
              void (Self::*call)(const std::shared_ptr<UIControl>& sender)) {
    actions.insert_or_assign(std::string(name), [weak = std::weak_ptr<Self>(self),
                                                 call](const std::shared_ptr<UIControl>& sender) {
      if (const auto alive = weak.lock()) ((*alive).*call)(sender);
    });
  }

  std::vector<Outlet> outlets;
  std::vector<ConstraintOutlet> constraintOutlets;
  std::vector<NumberProperty> properties;
  std::map<std::string, UIResponder::Action, std::less<>> actions;

 private:
  template <typename View, typename Slot>
  void addOutlet(std::string_view name, Slot& slot) {
    outlets.push_back({std::string(name), [&slot](const std::shared_ptr<UIView>& view) {
                         auto typed = std::dynamic_pointer_cast<View>(view);
                         if (view && !typed) return false;
                         slot = std::move(typed);
                         return true;
                       }});
  }
};

}  // namespace kestrova::platform

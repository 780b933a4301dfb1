#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/foundation/Bundle.h"
#include "platform/foundation/Result.h"

namespace kestrova::platform {

class UIViewController;

// The folder `name` of a bundle: storyboard.json, which lists screens and the ways between them,
// and a Designer file for each screen and each kind of row. Read once; its screens keep it. Main
// thread.
class UIStoryboard : public std::enable_shared_from_this<UIStoryboard> {
 public:
  // One error for all that is wrong with the files and with what they say of each other.
  static Result<std::shared_ptr<UIStoryboard>> make(const std::string& name, const Bundle& bundle);
  UIStoryboard(const UIStoryboard&) = delete;
  UIStoryboard& operator=(const UIStoryboard&) = delete;
  ~UIStoryboard();

  // New controllers. Their views are loaded when first asked for.
  Result<std::shared_ptr<UIViewController>> instantiateInitialViewController() const;
  Result<std::shared_ptr<UIViewController>> instantiateViewController(
      std::string_view withIdentifier) const;

  // Loads every screen and row once: one error for all outlets, actions and classes that do not
  // fit. No screen's viewDidLoad() runs.
  Result<Done> verify() const;

 private:
  struct Contents;

  explicit UIStoryboard(std::unique_ptr<const Contents> contents);

  std::unique_ptr<const Contents> contents_;
};

}  // namespace kestrova::platform

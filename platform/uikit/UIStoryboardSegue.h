#pragma once

#include <memory>
#include <string>

namespace kestrova::platform {

class UIViewController;

// A way from one screen of a storyboard to another.
struct UIStoryboardSegue {
  enum class Kind { push, present, embed };

  std::string identifier;
  Kind kind = Kind::push;
  std::shared_ptr<UIViewController> source;
  std::shared_ptr<UIViewController> destination;
};

}  // namespace kestrova::platform

#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/foundation/Result.h"
#include "platform/uikit/UIStoryboardSegue.h"

namespace kestrova::platform {

class UIView;
class UIViewController;

// What a storyboard knows of one screen; given to the controller that it makes.
struct UIStoryboardScene {
  struct Segue {
    std::string identifier;
    UIStoryboardSegue::Kind kind;
    // Of the scene it leads to.
    std::string destination;
    // Of an embed segue: the view of this scene that the destination's view fills.
    std::string container;
  };

  std::string identifier;
  std::vector<Segue> segues;
  // Loads the screen's view for `controller`, outlets, actions and prototypes connected and
  // everything awake.
  std::function<Result<std::shared_ptr<UIView>>(UIViewController& controller)> loadView;
  // The view that loadView() made under that name; null where there is none.
  std::function<std::shared_ptr<UIView>(const UIView& root, const std::string& name)> viewNamed;
  // Another screen of the same storyboard.
  std::function<Result<std::shared_ptr<UIViewController>>(const std::string& identifier)>
      instantiate;
};

}  // namespace kestrova::platform

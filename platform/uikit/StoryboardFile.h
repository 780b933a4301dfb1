#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/uikit/NibFaults.h"
#include "platform/uikit/UINavigationItem.h"
#include "platform/uikit/UIStoryboardScene.h"

namespace kestrova::platform {

// A storyboard's list of scenes, storyboard.json. A value.
struct StoryboardFile {
  static constexpr int kFormat = 1;

  struct Prototype {
    // The table view's name.
    std::string table;
    std::string identifier;
    // The cell's Designer file.
    std::string view;
  };
  struct Scene {
    std::string identifier;
    // The controller's class.
    std::string className;
    // The screen's Designer file; empty for a navigation controller.
    std::string view;
    // The scene that a navigation controller begins with; empty for other scenes.
    std::string root;
    UINavigationItem item;
    std::vector<UIStoryboardScene::Segue> segues;
    std::vector<Prototype> prototypes;
  };

  std::string initial;
  std::vector<Scene> scenes;

  // What is wrong within the list itself is added to `faults`: keys, types, names that occur twice,
  // scenes that are named and not there, a scene that holds itself.
  static StoryboardFile parse(std::string_view json, NibFaults& faults);

  const Scene* scene(std::string_view identifier) const;
};

}  // namespace kestrova::platform

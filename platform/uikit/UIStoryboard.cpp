#include "platform/uikit/UIStoryboard.h"

#include <filesystem>
#include <map>
#include <utility>

#include "platform/foundation/FileManager.h"
#include "platform/foundation/JSONValue.h"
#include "platform/foundation/Print.h"
#include "platform/uikit/NibLoader.h"
#include "platform/uikit/StoryboardFile.h"
#include "platform/uikit/UIClassRegistry.h"
#include "platform/uikit/UINavigationController.h"
#include "platform/uikit/UITableView.h"
#include "platform/uikit/UITableViewCell.h"

namespace kestrova::platform {

struct UIStoryboard::Contents {
  using Scene = StoryboardFile::Scene;

  Bundle bundle;
  std::string name;
  StoryboardFile list;
  NamedColors colors;
  // The Designer files by their names.
  std::map<std::string, DesignerFile, std::less<>> files;

  void readFiles(const std::filesystem::path& folder, NibFaults& faults);
  void checkAgainstFiles(const Scene& scene, NibFaults& faults) const;

  // Of the scene's class; null with a line in `faults`.
  std::shared_ptr<UIViewController> controller(const Scene& scene, NibFaults& faults) const;
  // `keep` is what the rows that are made later live on.
  std::shared_ptr<UIView> load(const Scene& scene, UIViewController& controller,
                               const std::shared_ptr<const UIStoryboard>& keep,
                               NibFaults& faults) const;
  std::shared_ptr<UITableViewCell> cell(const std::string& file, NibFaults& faults) const;
};

void UIStoryboard::Contents::readFiles(const std::filesystem::path& folder, NibFaults& faults) {
  const auto read = [&](const std::string& file) {
    if (file.empty() || files.contains(file)) return;
    if (file.find('/') != std::string::npos || file.front() == '.') {
      return faults.add(platform::quoted(file) + " is no name of a file");
    }
    files.emplace(file, DesignerFile::read(folder / file, faults));
  };
  for (const auto& scene : list.scenes) {
    read(scene.view);
    for (const auto& prototype : scene.prototypes) read(prototype.view);
  }
}

void UIStoryboard::Contents::checkAgainstFiles(const Scene& scene, NibFaults& faults) const {
  if (!scene.className.empty() && !UIClassRegistry::contains(scene.className)) {
    faults.add("the class " + platform::quoted(scene.className) + " is unknown");
  }
  const auto file = files.find(scene.view);
  // One that could not be read is reported already.
  if (file != files.end() && file->second.objects().empty()) return;
  const auto hasView = [&](const std::string& view) {
    return view.empty() || (file != files.end() && file->second.object(view));
  };
  for (const auto& segue : scene.segues) {
    if (!hasView(segue.container)) {
      faults.add("the container " + platform::quoted(segue.container) + " of the segue " +
                 segue.identifier + " is missing");
    }
  }
  for (const auto& prototype : scene.prototypes) {
    if (!hasView(prototype.table)) {
      faults.add("the table " + platform::quoted(prototype.table) + " of the prototype " +
                 prototype.identifier + " is missing");
    }
  }
}

std::shared_ptr<UIViewController> UIStoryboard::Contents::controller(const Scene& scene,
                                                                     NibFaults& faults) const {
  auto made = std::dynamic_pointer_cast<UIViewController>(UIClassRegistry::make(scene.className));
  const bool isNavigation = std::dynamic_pointer_cast<UINavigationController>(made) != nullptr;
  if (made && isNavigation == !scene.root.empty()) return made;
  faults.add("the class " + platform::quoted(scene.className) + " is no " +
             (scene.root.empty() ? "screen" : "navigation controller"));
  return nullptr;
}

std::shared_ptr<UIView> UIStoryboard::Contents::load(
    const Scene& scene, UIViewController& controller,
    const std::shared_ptr<const UIStoryboard>& keep, NibFaults& faults) const {
  const auto owner = controller.shared_from_this();
  const auto& file = files.find(scene.view)->second;
  auto view = NibLoader(file, bundle, colors, owner).load(faults);
  if (!view) return nullptr;
  for (const auto& prototype : scene.prototypes) {
    const auto table = std::dynamic_pointer_cast<UITableView>(viewNamed(*view, prototype.table));
    if (!table) {
      faults.add(platform::quoted(prototype.table) + ", which has prototypes, is no table");
      continue;
    }
    table->registerPrototype(
        prototype.identifier,
        [keep, cellFile = prototype.view]() -> std::shared_ptr<UITableViewCell> {
          NibFaults own;
          auto cell = keep->contents_->cell(cellFile, own);
          if (!cell) {
            print("Kestrova: a row cannot be made: " + own.error().localizedDescription);
          }
          return cell;
        });
  }
  return faults.isEmpty() ? view : nullptr;
}

std::shared_ptr<UITableViewCell> UIStoryboard::Contents::cell(const std::string& file,
                                                              NibFaults& faults) const {
  const auto view = NibLoader(files.find(file)->second, bundle, colors, nullptr).load(faults);
  auto cell = std::dynamic_pointer_cast<UITableViewCell>(view);
  if (view && !cell) faults.add(file + ": it is no cell");
  return cell;
}

UIStoryboard::UIStoryboard(std::unique_ptr<const Contents> contents)
    : contents_(std::move(contents)) {}

UIStoryboard::~UIStoryboard() = default;

Result<std::shared_ptr<UIStoryboard>> UIStoryboard::make(const std::string& name,
                                                         const Bundle& bundle) {
  NibFaults faults;
  const auto folder = bundle.path(name, "");
  if (!folder) {
    faults.add("the bundle " + bundle.bundlePath().filename().string() + " has no storyboard " +
               name);
    return faults.error();
  }
  const auto json = FileManager::contents(*folder / "storyboard.json");
  if (!json) {
    faults.add(name + ": " + json.error().localizedDescription);
    return faults.error();
  }
  NibFaults own;
  auto contents = std::make_unique<Contents>(
      Contents{bundle, name, StoryboardFile::parse(json.value().view(), own), {}, {}});
  contents->colors = NamedColors::of(bundle, own);
  contents->readFiles(*folder, own);
  for (const auto& scene : contents->list.scenes) {
    NibFaults ofScene;
    contents->checkAgainstFiles(scene, ofScene);
    own.add("scene " + scene.identifier, ofScene);
  }
  faults.add(name, own);
  if (!faults.isEmpty()) return faults.error();
  return std::shared_ptr<UIStoryboard>(new UIStoryboard(std::move(contents)));
}

Result<std::shared_ptr<UIViewController>> UIStoryboard::instantiateInitialViewController() const {
  return instantiateViewController(contents_->list.initial);
}

Result<std::shared_ptr<UIViewController>> UIStoryboard::instantiateViewController(
    std::string_view withIdentifier) const {
  NibFaults faults;
  const auto* const scene = contents_->list.scene(withIdentifier);
  if (!scene) {
    faults.add(contents_->name + ": there is no scene " + platform::quoted(withIdentifier));
    return faults.error();
  }
  NibFaults own;
  auto controller = contents_->controller(*scene, own);
  if (!controller) {
    faults.add(contents_->name + ": scene " + scene->identifier, own);
    return faults.error();
  }
  const auto self = shared_from_this();
  auto known = std::make_shared<UIStoryboardScene>();
  known->identifier = scene->identifier;
  known->segues = scene->segues;
  known->viewNamed = viewNamed;
  known->instantiate = [self](const std::string& identifier) {
    return self->instantiateViewController(identifier);
  };
  if (scene->root.empty()) {
    known->loadView = [self, scene](UIViewController& owner) -> Result<std::shared_ptr<UIView>> {
      NibFaults ofLoad;
      if (auto view = self->contents_->load(*scene, owner, self, ofLoad)) return view;
      return ofLoad.error();
    };
  }
  controller->setScene(std::move(known));
  controller->setNavigationItem(scene->item);
  controller->awakeFromNib();
  if (!scene->root.empty()) {
    auto root = instantiateViewController(scene->root);
    if (!root) return root.error();
    std::static_pointer_cast<UINavigationController>(controller)
        ->setViewControllers({root.value()});
  }
  return controller;
}

Result<Done> UIStoryboard::verify() const {
  NibFaults faults;
  for (const auto& scene : contents_->list.scenes) {
    NibFaults own;
    const auto controller = contents_->controller(scene, own);
    if (controller && !scene.view.empty()) {
      (void)contents_->load(scene, *controller, shared_from_this(), own);
    }
    for (const auto& prototype : scene.prototypes) (void)contents_->cell(prototype.view, own);
    faults.add("scene " + scene.identifier, own);
  }
  if (!faults.isEmpty()) return faults.error();
  return Done{};
}

}  // namespace kestrova::platform

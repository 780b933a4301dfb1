#include "platform/uikit/StoryboardFile.h"

#include <algorithm>
#include <functional>
#include <initializer_list>
#include <set>
#include <utility>

#include "platform/foundation/JSONSerialization.h"

namespace kestrova::platform {

namespace {

// One dictionary of the file, whose keys are taken one by one.
class Entry {
 public:
  Entry(const JSONValue& value, std::string name, NibFaults& faults)
      : dictionary_(value.dictionary()), name_(std::move(name)), faults_(faults) {
    if (!dictionary_) fault("it is no dictionary");
  }
  Entry(const Entry&) = delete;
  Entry& operator=(const Entry&) = delete;
  // Whatever has not been taken is a mistake.
  ~Entry() {
    if (!dictionary_) return;
    for (const auto& [key, value] : *dictionary_) {
      if (!taken_.contains(key)) fault("it has the unknown key " + platform::quoted(key));
    }
  }

  void fault(const std::string& what) { faults_.add(name_ + ": " + what); }
  void setName(std::string name) { name_ = std::move(name); }

  std::string text(const std::string& key) {
    const auto* const value = take(key);
    const auto* const text = value ? value->text() : nullptr;
    if (!text || text->empty()) {
      if (dictionary_) fault("it needs a text " + platform::quoted(key));
      return {};
    }
    return *text;
  }
  std::string optionalText(const std::string& key) {
    return dictionary_ && dictionary_->contains(key) ? text(key) : std::string();
  }
  bool flag(const std::string& key) {
    const auto* const value = take(key);
    if (!value) return false;
    if (!value->boolean()) fault("its " + platform::quoted(key) + " is neither true nor false");
    return value->boolean() && *value->boolean();
  }
  JSONArray list(const std::string& key) {
    const auto* const value = take(key);
    if (!value) return {};
    if (!value->array()) fault("its " + platform::quoted(key) + " is no list");
    return value->array() ? *value->array() : JSONArray{};
  }
  const JSONValue* take(const std::string& key) {
    taken_.insert(key);
    if (!dictionary_) return nullptr;
    const auto found = dictionary_->find(key);
    return found == dictionary_->end() ? nullptr : &found->second;
  }

 private:
  const JSONDictionary* dictionary_;
  std::string name_;
  NibFaults& faults_;
  std::set<std::string, std::less<>> taken_;
};

UIStoryboardScene::Segue readSegue(const JSONValue& value, const std::string& scene,
                                   NibFaults& faults) {
  Entry entry(value, scene + ", a segue", faults);
  UIStoryboardScene::Segue segue;
  segue.identifier = entry.text("identifier");
  if (!segue.identifier.empty()) entry.setName(scene + ", the segue " + segue.identifier);
  using Kind = UIStoryboardSegue::Kind;
  const std::string kind = entry.text("kind");
  segue.kind = kind == "embed" ? Kind::embed : kind == "present" ? Kind::present : Kind::push;
  if (!kind.empty() && kind != "push" && kind != "present" && kind != "embed") {
    entry.fault("there is no kind " + platform::quoted(kind));
  }
  segue.destination = entry.text("destination");
  if (segue.kind == Kind::embed) segue.container = entry.text("container");
  return segue;
}

StoryboardFile::Scene readScene(const JSONValue& value, NibFaults& faults) {
  Entry entry(value, "a scene", faults);
  StoryboardFile::Scene scene;
  scene.identifier = entry.text("id");
  const std::string name = "scene " + scene.identifier;
  if (!scene.identifier.empty()) entry.setName(name);
  scene.className = entry.text("class");
  const std::string kind = entry.optionalText("kind");
  if (kind == "navigation") {
    scene.root = entry.text("root");
  } else {
    if (!kind.empty()) entry.fault("there is no kind " + platform::quoted(kind));
    scene.view = entry.text("view");
  }
  scene.item = {entry.optionalText("title"), entry.flag("hidesBackButton")};
  for (const auto& each : entry.list("segues"))
    scene.segues.push_back(readSegue(each, name, faults));
  for (const auto& each : entry.list("prototypes")) {
    Entry prototype(each, name + ", a prototype", faults);
    scene.prototypes.push_back(
        {prototype.text("table"), prototype.text("identifier"), prototype.text("view")});
  }
  return scene;
}

// The scenes that are made together with this one.
std::vector<std::string> inside(const StoryboardFile::Scene& scene) {
  std::vector<std::string> names;
  if (!scene.root.empty()) names.push_back(scene.root);
  for (const auto& segue : scene.segues) {
    if (segue.kind == UIStoryboardSegue::Kind::embed) names.push_back(segue.destination);
  }
  return names;
}

void checkNames(const StoryboardFile& file, NibFaults& faults) {
  const auto exists = [&](const std::string& name) {
    return name.empty() || file.scene(name) != nullptr;
  };
  if (!exists(file.initial))
    faults.add("there is no initial scene " + platform::quoted(file.initial));
  std::set<std::string> scenes;
  for (const auto& scene : file.scenes) {
    const std::string name = "scene " + scene.identifier;
    if (!scenes.insert(scene.identifier).second) {
      faults.add("two scenes are called " + platform::quoted(scene.identifier));
    }
    if (!exists(scene.root))
      faults.add(name + ": there is no scene " + platform::quoted(scene.root));
    std::set<std::string> segues;
    for (const auto& segue : scene.segues) {
      if (!segues.insert(segue.identifier).second) {
        faults.add(name + ": two segues are called " + platform::quoted(segue.identifier));
      }
      if (!exists(segue.destination)) {
        faults.add(name + ", the segue " + segue.identifier + ": there is no scene " +
                   platform::quoted(segue.destination));
      }
    }
  }
}

void checkNesting(const StoryboardFile& file, NibFaults& faults) {
  std::set<std::string> sound;
  std::vector<std::string> path;
  const std::function<void(const std::string&)> visit = [&](const std::string& name) {
    if (sound.contains(name)) return;
    if (std::find(path.begin(), path.end(), name) != path.end()) {
      return faults.add("scene " + name + " holds itself");
    }
    const auto* const scene = file.scene(name);
    if (!scene) return;
    path.push_back(name);
    for (const auto& each : inside(*scene)) visit(each);
    path.pop_back();
    sound.insert(name);
  };
  for (const auto& scene : file.scenes) visit(scene.identifier);
}

}  // namespace

StoryboardFile StoryboardFile::parse(std::string_view json, NibFaults& faults) {
  StoryboardFile file;
  const auto value = JSONSerialization::jsonObject(json);
  if (!value) {
    faults.add(value.error().localizedDescription);
    return file;
  }
  // More would only take longer: nesting is checked by recursion.
  constexpr std::size_t kMostScenes = 500;
  NibFaults own;
  {
    Entry entry(value.value(), "the storyboard", own);
    const auto* const format = entry.take("format");
    if (!format || !format->integer() || *format->integer() != kFormat) {
      entry.fault("its format is not " + std::to_string(kFormat));
    }
    file.initial = entry.text("initial");
    const auto scenes = entry.list("scenes");
    if (scenes.empty() || scenes.size() > kMostScenes) entry.fault("it has no sensible scenes");
    for (const auto& each : scenes) {
      if (file.scenes.size() < kMostScenes) file.scenes.push_back(readScene(each, own));
    }
  }
  checkNames(file, own);
  checkNesting(file, own);
  faults.add("storyboard.json", own);
  return file;
}

const StoryboardFile::Scene* StoryboardFile::scene(std::string_view identifier) const {
  const auto found = std::find_if(scenes.begin(), scenes.end(),
                                  [&](const auto& each) { return each.identifier == identifier; });
  return found == scenes.end() ? nullptr : &*found;
}

}  // namespace kestrova::platform

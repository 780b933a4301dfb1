#include "platform/uikit/UINib.h"

#include <algorithm>
#include <filesystem>

#include "platform/uikit/NibLoader.h"

namespace kestrova::platform {

namespace {

// The nibs that are being loaded, of which each may hold another.
std::vector<std::filesystem::path>& underWay() {
  static auto& paths = *new std::vector<std::filesystem::path>;
  return paths;
}

}  // namespace

Result<std::vector<std::shared_ptr<UIView>>> UINib::instantiate(
    const std::shared_ptr<UIResponder>& withOwner) const {
  NibFaults faults;
  const auto path = bundle_.path(nibName_, "ui");
  if (!path) {
    faults.add("the bundle " + bundle_.bundlePath().filename().string() + " has no nib " +
               nibName_);
    return faults.error();
  }
  if (std::find(underWay().begin(), underWay().end(), *path) != underWay().end()) {
    faults.add("the nib " + nibName_ + " holds itself");
    return faults.error();
  }
  const auto file = DesignerFile::read(*path, faults);
  const auto colors = NamedColors::of(bundle_, faults);
  if (!faults.isEmpty()) return faults.error();
  underWay().push_back(*path);
  auto view = NibLoader(file, bundle_, colors, withOwner).load(faults);
  underWay().pop_back();
  if (!view) return faults.error();
  return std::vector{std::move(view)};
}

}  // namespace kestrova::platform

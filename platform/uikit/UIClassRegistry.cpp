#include "platform/uikit/UIClassRegistry.h"

#include <map>
#include <typeindex>
#include <utility>

#include "platform/uikit/UIButton.h"
#include "platform/uikit/UIImageView.h"
#include "platform/uikit/UILabel.h"
#include "platform/uikit/UINavigationController.h"
#include "platform/uikit/UIScrollView.h"
#include "platform/uikit/UIStackView.h"
#include "platform/uikit/UITableView.h"
#include "platform/uikit/UITableViewCell.h"
#include "platform/uikit/UITextField.h"

namespace kestrova::platform {

namespace {

class Classes {
 public:
  using Factory = std::function<std::shared_ptr<UIResponder>()>;

  // With the classes of this layer.
  static Classes& shared() {
    static Classes& known = *new Classes;
    return known;
  }

  void add(std::string_view name, const std::type_info& type, Factory factory) {
    factories_.insert_or_assign(std::string(name), std::move(factory));
    names_.insert_or_assign(std::type_index(type), name);
  }

  const Factory* factory(std::string_view name) const {
    const auto found = factories_.find(name);
    return found == factories_.end() ? nullptr : &found->second;
  }

  std::string name(const std::type_info& type) const {
    const auto found = names_.find(std::type_index(type));
    return found == names_.end() ? std::string() : found->second;
  }

 private:
  Classes() {
    add<UIView>("UIView");
    add<UILabel>("UILabel");
    add<UIImageView>("UIImageView");
    add<UIButton>("UIButton");
    add<UITextField>("UITextField");
    add<UIStackView>("UIStackView");
    add<UIScrollView>("UIScrollView");
    add<UITableView>("UITableView");
    add<UITableViewCell>("UITableViewCell");
    add<UIViewController>("UIViewController");
    add<UINavigationController>("UINavigationController");
  }

  template <typename Responder>
  void add(std::string_view name) {
    add(name, typeid(Responder), [] { return std::make_shared<Responder>(); });
  }

  std::map<std::string, Factory, std::less<>> factories_;
  std::map<std::type_index, std::string> names_;
};

}  // namespace

void UIClassRegistry::add(std::string_view name, const std::type_info& type, Factory factory) {
  Classes::shared().add(name, type, std::move(factory));
}

bool UIClassRegistry::contains(std::string_view name) {
  return Classes::shared().factory(name) != nullptr;
}

std::shared_ptr<UIResponder> UIClassRegistry::make(std::string_view name) {
  const auto* const factory = Classes::shared().factory(name);
  return factory ? (*factory)() : nullptr;
}

std::string UIClassRegistry::nameOf(const std::type_info& type) {
  return Classes::shared().name(type);
}

}  // namespace kestrova::platform

#include "sdk/ui/KestrovaButtonHelper.h"

#include <string>

#include "platform/foundation/Print.h"
#include "platform/uikit/UIClassRegistry.h"
#include "platform/uikit/UINib.h"
#include "platform/uikit/UIViewController.h"
#include "sdk/core/Kestrova.h"
#include "sdk/ui/ViewClasses.h"

namespace kestrova {

std::shared_ptr<UIView> UIViewExtensions::viewFromNib(
    const std::type_info& viewClass, const std::shared_ptr<UIResponder>& withOwner) {
  registerViewClasses();
  const std::string name = UIClassRegistry::nameOf(viewClass);
  const auto fails = [&name](const std::string& why) {
    print("Kestrova: the nib " + name + " cannot be loaded: " + why);
    return nullptr;
  };
  const auto bundle = Kestrova::bundle();
  if (!bundle) return fails("Kestrova.bundle is missing");
  const auto objects = UINib(name, *bundle).instantiate(withOwner);
  if (!objects) return fails(objects.error().localizedDescription);
  const auto& first = objects.value().front();
  const UIView& object = *first;
  if (typeid(object) != viewClass) return fails("its first object is of another class");
  return first;
}

std::shared_ptr<UIView> loadFromNibIfEmbeddedInDifferentNib(const std::shared_ptr<UIView>& view) {
  if (!view->subviews().empty()) return view;
  const UIView& placeholder = *view;
  auto designed = UIViewExtensions::viewFromNib(typeid(placeholder), nullptr);
  if (!designed) return view;
  designed->setFrame(view->frame());
  view->setTranslatesAutoresizingMaskIntoConstraints(false);
  designed->setTranslatesAutoresizingMaskIntoConstraints(false);
  return designed;
}

std::shared_ptr<UIViewController> parentViewController(const UIResponder& responder) {
  for (auto next = responder.next(); next; next = next->next()) {
    if (auto controller = std::dynamic_pointer_cast<UIViewController>(next)) return controller;
  }
  return nullptr;
}

}  // namespace kestrova

#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/foundation/Bundle.h"
#include "platform/uikit/DesignerFile.h"
#include "platform/uikit/NamedColors.h"
#include "platform/uikit/UIBindings.h"

namespace kestrova::platform {

// One load of a Designer file: builds the views, sets their properties, lets them replace
// themselves, connects outlets and actions to the owner and to the first view, and awakes all,
// subviews first. Main thread.
class NibLoader {
 public:
  // All outlive the object; `owner` may be null.
  NibLoader(const DesignerFile& file, const Bundle& bundle, const NamedColors& colors,
            const std::shared_ptr<UIResponder>& owner)
      : file_(file), bundle_(bundle), colors_(colors), owner_(owner) {}

  // The first view; null with lines in `faults`, and the owner as it was.
  std::shared_ptr<UIView> load(NibFaults& faults);

 private:
  struct Object {
    const DesignerObject* designed;
    std::shared_ptr<UIView> view;
    UIBindings bindings;
    bool isReplaced = false;
  };

  void setProperties();
  void setConstraint(const DesignerProperty& property, Object& object);
  void replaceThemselves();
  void autoresize();
  void connect(const UIBindings& bindings);
  void disconnect(const UIBindings& bindings);
  void wire(const DesignerProperty& property, const Object& object);
  const UIResponder::Action* action(std::string_view name) const;
  Object* object(std::string_view name);

  const DesignerFile& file_;
  const Bundle& bundle_;
  const NamedColors& colors_;
  const std::shared_ptr<UIResponder>& owner_;
  UIBindings ownerBindings_;
  std::vector<Object> objects_;
  std::map<std::string, std::shared_ptr<NSLayoutConstraint>, std::less<>> constraints_;
  NibFaults faults_;
};

// The view of that name in what was loaded with `root`, but not in the screens embedded there; null
// where there is none.
std::shared_ptr<UIView> viewNamed(const UIView& root, std::string_view name);

}  // namespace kestrova::platform

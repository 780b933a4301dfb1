#pragma once

#include "platform/foundation/Bundle.h"
#include "platform/uikit/DesignerFile.h"
#include "platform/uikit/NamedColors.h"

namespace kestrova::platform {

class UIView;

// Sets what a Designer file says of a view, by the names and in the forms that docs/storyboards.md
// lists.
class DesignerProperties {
 public:
  enum class Outcome {
    set,
    // The class of the view has no such property.
    unknown,
    badValue
  };

  // Both outlive the object. Images come from the bundle.
  DesignerProperties(const Bundle& bundle, const NamedColors& colors)
      : bundle_(bundle), colors_(colors) {}

  Outcome apply(const DesignerProperty& property, UIView& view) const;

 private:
  struct Value;

  const Bundle& bundle_;
  const NamedColors& colors_;
};

// A decimal number of at most a million; none where the text is not one.
std::optional<double> designerNumber(std::string_view text);

}  // namespace kestrova::platform

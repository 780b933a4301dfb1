#include "sdk/flow/ChooseCitizenCell.h"

#include "platform/uikit/UIBindings.h"

namespace kestrova {

void ChooseCitizenCell::bind(UIBindings& bindings) {
  bindings.outlet("iconView", iconView);
  bindings.outlet("cityLabel", cityLabel);
}

}  // namespace kestrova

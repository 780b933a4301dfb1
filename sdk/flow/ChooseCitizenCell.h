#pragma once

#include <memory>

#include "platform/uikit/UIImageView.h"
#include "platform/uikit/UILabel.h"
#include "platform/uikit/UITableViewCell.h"
#include "sdk/Platform.h"

namespace kestrova {

// A country in the list.
class ChooseCitizenCell : public UITableViewCell {
 public:
  std::weak_ptr<UIImageView> iconView;
  std::weak_ptr<UILabel> cityLabel;

  void bind(UIBindings& bindings) override;
};

// The divider between the pinned countries and the rest.
class ChooseCitizenSeparatorCell : public UITableViewCell {};

}  // namespace kestrova

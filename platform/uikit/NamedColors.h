#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "platform/foundation/Bundle.h"
#include "platform/graphics/UIColor.h"
#include "platform/uikit/NibFaults.h"

namespace kestrova::platform {

// The colours that storyboards and nibs of a bundle call by name: those of its file Colors.json,
// which need not be there, and "clear", "white" and "black". A value.
class NamedColors {
 public:
  static NamedColors of(const Bundle& bundle, NibFaults& faults);

  // A name, or "#RRGGBB" or "#RRGGBBAA"; none where it is neither.
  std::optional<UIColor> color(std::string_view text) const;

 private:
  std::map<std::string, UIColor, std::less<>> colors_{
      {"clear", UIColor::clear()}, {"white", UIColor::white()}, {"black", UIColor::black()}};
};

}  // namespace kestrova::platform

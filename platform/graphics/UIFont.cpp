#include "platform/graphics/UIFont.h"

#include "platform/graphics/CTFontManager.h"

namespace kestrova::platform {

std::optional<UIFont> UIFont::make(std::string_view name, double size) {
  if (!registeredFont(name)) return std::nullopt;
  return UIFont(std::string(name), size, kRegularWeight);
}

}  // namespace kestrova::platform

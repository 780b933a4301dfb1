#include "platform/graphics/CTFontManager.h"

#include <map>
#include <mutex>
#include <string>

#include "platform/graphics/GraphicsError.h"

namespace kestrova::platform {

namespace {

struct Registry {
  std::mutex mutex;
  std::map<std::string, CGFont, std::less<>> fonts;
};

Registry& registry() {
  static Registry instance;
  return instance;
}

}  // namespace

Result<Done> CTFontManagerRegisterGraphicsFont(const CGFont& font) {
  const std::lock_guard lock(registry().mutex);
  if (!registry().fonts.try_emplace(font.postScriptName(), font).second) {
    return graphicsError(GraphicsErrorCode::alreadyRegistered,
                         "a font named " + font.postScriptName() + " is registered already");
  }
  return Done{};
}

std::optional<CGFont> registeredFont(std::string_view postScriptName) {
  const std::lock_guard lock(registry().mutex);
  const auto found = registry().fonts.find(postScriptName);
  if (found == registry().fonts.end()) return std::nullopt;
  return found->second;
}

}  // namespace kestrova::platform

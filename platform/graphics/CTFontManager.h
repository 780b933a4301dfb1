#pragma once

#include <optional>
#include <string_view>

#include "platform/foundation/Result.h"
#include "platform/graphics/CGFont.h"

namespace kestrova::platform {

// Makes the font available in this process until its end, under its PostScript name. An error where
// one of that name is registered already; that one stays. Any thread, and without a QGuiApplication
// too.
Result<Done> CTFontManagerRegisterGraphicsFont(const CGFont& font);

// The registered font of a PostScript name.
std::optional<CGFont> registeredFont(std::string_view postScriptName);

}  // namespace kestrova::platform

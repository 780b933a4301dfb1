#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "platform/foundation/Result.h"
#include "platform/graphics/CGDataProvider.h"

namespace kestrova::platform {

// A typeface as a TrueType or OpenType file gives it; copies share the file.
class CGFont {
 public:
  // An error for what is no such file or has no PostScript name.
  static Result<CGFont> make(const CGDataProvider& provider);

  const std::string& postScriptName() const { return name_; }
  std::string_view file() const { return provider_.view(); }

 private:
  CGFont(CGDataProvider provider, std::string name)
      : provider_(std::move(provider)), name_(std::move(name)) {}

  CGDataProvider provider_;
  std::string name_;
};

}  // namespace kestrova::platform

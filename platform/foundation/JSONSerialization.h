#pragma once

#include <string_view>

#include "platform/foundation/JSONValue.h"
#include "platform/foundation/Result.h"

namespace kestrova::platform {

struct JSONReadingOptions {
  // Accept a text, number, boolean or null as the top-level value.
  bool fragmentsAllowed = false;
};

struct JSONSerialization {
  // How deep arrays and dictionaries may be nested.
  static constexpr int kMaximumDepth = 512;

  // Decodes UTF-8 JSON text, strictly: a byte-order mark, a NUL, anything behind the value, invalid
  // UTF-8, a lone surrogate, a number beyond a double and deeper nesting than the maximum are
  // errors. The last of equal keys wins. Any thread.
  static Result<JSONValue> jsonObject(std::string_view data, JSONReadingOptions options = {});
};

}  // namespace kestrova::platform

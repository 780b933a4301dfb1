#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/foundation/Text.h"

namespace kestrova::platform {

// What turns a text into another one: the range of UTF-16 code units that was replaced, and by
// what. No character is cut between its surrogates.
struct TextEdit {
  NSRange range;
  std::u16string replacement;

  // `cursor` is the cursor's place in `after`, where the new characters end; it tells apart edits
  // of equal outcome.
  static TextEdit between(std::u16string_view before, std::u16string_view after,
                          std::size_t cursor);
};

}  // namespace kestrova::platform

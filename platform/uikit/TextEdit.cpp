#include "platform/uikit/TextEdit.h"

#include <algorithm>

namespace kestrova::platform {

namespace {

// Whether a cut at that place would part the surrogates of one character.
bool cutsCharacter(std::u16string_view text, std::size_t at) {
  return at > 0 && at < text.size() && (text[at - 1] & 0xFC00) == 0xD800 &&
         (text[at] & 0xFC00) == 0xDC00;
}

}  // namespace

TextEdit TextEdit::between(std::u16string_view before, std::u16string_view after,
                           std::size_t cursor) {
  const std::size_t shorter = std::min(before.size(), after.size());
  std::size_t suffix = after.size() - std::min(cursor, after.size());
  if (!before.ends_with(after.substr(after.size() - suffix))) {
    suffix = 0;
    while (suffix < shorter &&
           before[before.size() - 1 - suffix] == after[after.size() - 1 - suffix]) {
      ++suffix;
    }
  }
  std::size_t prefix = 0;
  while (prefix < shorter - suffix && before[prefix] == after[prefix]) ++prefix;
  while (cutsCharacter(before, prefix) || cutsCharacter(after, prefix)) --prefix;
  while (cutsCharacter(before, before.size() - suffix) ||
         cutsCharacter(after, after.size() - suffix)) {
    --suffix;
  }
  return {{prefix, before.size() - suffix - prefix},
          std::u16string(after.substr(prefix, after.size() - suffix - prefix))};
}

}  // namespace kestrova::platform

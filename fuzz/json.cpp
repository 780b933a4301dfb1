// Foreign text to the JSON parser: no crash, and what is accepted can be shown and is the same when
// parsed again without its white space at the ends.

#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "platform/foundation/JSONSerialization.h"
#include "platform/foundation/Text.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace kestrova::platform;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const auto value = JSONSerialization::jsonObject(text, {.fragmentsAllowed = true});
  if (!value) return 0;
  if (description(value.value()).find('\n') != std::string::npos) std::abort();
  const auto again = JSONSerialization::jsonObject(trimmingWhitespacesAndNewlines(text),
                                                   {.fragmentsAllowed = true});
  if (!again || !(again.value() == value.value())) std::abort();
  return 0;
}

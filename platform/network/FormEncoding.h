#pragma once

#include <string>
#include <string_view>

#include "platform/foundation/JSONValue.h"

namespace kestrova::platform {

// Percent-encodes the UTF-8 bytes of a text for a form: A-Z a-z 0-9 - . _ ~ / and ? stay, every
// other byte becomes % and two upper-case hexadecimal digits.
std::string percentEscaped(std::string_view text);

// The body of a form: pairs key=value joined by &, both escaped, keys in ascending order. Numbers
// are decimal text, booleans 1 or 0. Each element of an array stands under key[], each entry of a
// dictionary under key[inner], inner keys in ascending order.
std::string formEncoded(const JSONDictionary& parameters);

}  // namespace kestrova::platform

#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>

namespace kestrova::sandbox {

// Untrusted bytes in double quotes, for logs and listings: control characters, quotes, backslashes
// and bytes that are no well-formed UTF-8 are escaped. Cut with "..." after `limit` bytes.
std::string printable(std::string_view bytes, std::size_t limit = 200);

// A JSON string literal. Bytes that are no well-formed UTF-8 become U+FFFD.
std::string jsonString(std::string_view bytes);

// Length of the well-formed UTF-8 character at the start of the bytes; 0 where there is none, and
// for control characters and those that break, hide or turn text.
std::size_t visibleLength(std::string_view bytes);

bool isUtf8(std::string_view bytes);

// ASCII only, without regard to the locale.
bool equalIgnoringCase(std::string_view a, std::string_view b);

std::string lowerHex(std::string_view bytes);

// Unguessable, in lower-case hexadecimal.
std::string randomHex(std::size_t bytes);

// UTC with milliseconds, as 2026-01-31T12:00:00.000Z.
std::string timestamp(std::chrono::system_clock::time_point time);
// As HTTP writes it: Sat, 31 Jan 2026 12:00:00 GMT.
std::string httpDate(std::chrono::system_clock::time_point time);

}  // namespace kestrova::sandbox

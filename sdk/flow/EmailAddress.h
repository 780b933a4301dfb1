#pragma once

#include <string_view>

namespace kestrova {

// Whether the whole text is an e-mail address by the grammar of RFC 5322 without comments: dotted
// atoms or a quoted string, "@", and a domain of two labels or more or a bracketed literal. Letter
// case does not count. Answers in a time that grows with the text's length alone. Any thread.
bool isEmailAddress(std::string_view text);

}  // namespace kestrova

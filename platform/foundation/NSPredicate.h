#pragma once

#include <chrono>
#include <memory>
#include <string_view>

#include "platform/foundation/Result.h"

namespace kestrova::platform {

// A test of a text. Holds its compiled expression; copies share it. Any thread.
class NSPredicate {
 public:
  // How long one evaluation may take before it counts as no match.
  static constexpr std::chrono::milliseconds kTimeLimit{40};

  // Formats: "SELF MATCHES %@" and "SELF MATCHES[c] %@" (ignoring letter case); `pattern` is an ICU
  // regular expression that must match the whole text. An error for any other format and for a
  // pattern that does not compile.
  static Result<NSPredicate> make(std::string_view format, std::string_view pattern);

  // False also where the text is not UTF-8 or the time limit or the matcher's memory ran out.
  bool evaluate(std::string_view text) const;

 private:
  struct Expression;
  explicit NSPredicate(std::shared_ptr<const Expression> expression);

  std::shared_ptr<const Expression> expression_;
};

}  // namespace kestrova::platform

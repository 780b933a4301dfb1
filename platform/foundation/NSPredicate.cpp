#include "platform/foundation/NSPredicate.h"

#include <string>
#include <utility>

#include <unicode/regex.h>
#include <unicode/unistr.h>

namespace kestrova::platform {

namespace {

NSError invalid(std::string reason) {
  return {"NSInvalidArgumentException", 0, "Predicate: " + std::move(reason)};
}

icu::UnicodeString decode(std::string_view text) {
  return icu::UnicodeString::fromUTF8(
      icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())));
}

// About 0.1 ms on the machines measured; ICU documents no unit.
constexpr int kTimeStepsPerMillisecond = 10;

}  // namespace

struct NSPredicate::Expression {
  std::unique_ptr<icu::RegexPattern> pattern;
};

NSPredicate::NSPredicate(std::shared_ptr<const Expression> expression)
    : expression_(std::move(expression)) {}

Result<NSPredicate> NSPredicate::make(std::string_view format, std::string_view pattern) {
  const bool ignoresCase = format == "SELF MATCHES[c] %@";
  if (!ignoresCase && format != "SELF MATCHES %@") {
    return invalid("format \"" + std::string(format) + "\" is not known");
  }
  UErrorCode status = U_ZERO_ERROR;
  UParseError position{};
  std::unique_ptr<icu::RegexPattern> compiled(icu::RegexPattern::compile(
      decode(pattern), ignoresCase ? std::uint32_t{UREGEX_CASE_INSENSITIVE} : 0U, position,
      status));
  if (U_FAILURE(status)) {
    return invalid("pattern does not compile (" + std::string(u_errorName(status)) +
                   " at character " + std::to_string(position.offset) + ")");
  }
  return NSPredicate(std::make_shared<const Expression>(Expression{std::move(compiled)}));
}

bool NSPredicate::evaluate(std::string_view text) const {
  const auto subject = decode(text);
  std::string again;
  if (subject.toUTF8String(again) != text) return false;
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<icu::RegexMatcher> matcher(expression_->pattern->matcher(subject, status));
  if (U_FAILURE(status)) return false;
  matcher->setTimeLimit(static_cast<std::int32_t>(kTimeLimit.count()) * kTimeStepsPerMillisecond,
                        status);
  const bool matches = matcher->matches(status) != 0;
  return U_SUCCESS(status) && matches;
}

}  // namespace kestrova::platform

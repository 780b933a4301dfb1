#include "sdk/flow/EmailAddress.h"

#include "platform/foundation/NSPredicate.h"
#include "sdk/Platform.h"

namespace kestrova {

namespace {

// Possessive throughout: nothing is tried twice, so no text takes long. Its test compares it with
// the plain form of the same grammar.
constexpr std::string_view kPattern =
    R"re((?:[a-z0-9!#$%\&'*+/=?\^_`{|}~-]++(?:\.[a-z0-9!#$%\&'*+/=?\^_`{|}~-]++)*+)re"
    R"re(|"(?:[\x01-\x08\x0b\x0c\x0e-\x1f\x21\x23-\x5b\x5d-\x7f]|\\[\x01-\x09\x0b\x0c\x0e-\x7f])*+"))re"
    R"re(@(?:[a-z0-9]++(?:-++[a-z0-9]++)*+(?:\.[a-z0-9]++(?:-++[a-z0-9]++)*+)++)re"
    R"re(|\[(?:(?:25[0-5]|2[0-4][0-9]|[01]?[0-9][0-9]?)\.){3})re"
    R"re((?:25[0-5]|2[0-4][0-9]|[01]?[0-9][0-9]?)re"
    R"re(|[a-z0-9-]*[a-z0-9]:(?:\\[\x09\x20]|[\x01-\x08\x0b\x0c\x0e-\x1f\x21-\x7f])+)\]))re";

}  // namespace

bool isEmailAddress(std::string_view text) {
  static const auto predicate = NSPredicate::make("SELF MATCHES[c] %@", kPattern);
  return predicate && predicate.value().evaluate(text);
}

}  // namespace kestrova

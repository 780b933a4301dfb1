#pragma once

#include <utility>
#include <variant>

#include "platform/foundation/NSError.h"

namespace kestrova::platform {

// A value, or the error that took its place.
template <typename Value>
class [[nodiscard]] Result {
 public:
  // Implicit, so that an operation returns either with a plain return statement.
  Result(Value value) : outcome_(std::in_place_index<0>, std::move(value)) {}
  Result(NSError error) : outcome_(std::in_place_index<1>, std::move(error)) {}

  explicit operator bool() const { return outcome_.index() == 0; }

  // Defined only where the result holds a value, or an error respectively.
  Value& value() & { return std::get<0>(outcome_); }
  const Value& value() const& { return std::get<0>(outcome_); }
  Value&& value() && { return std::get<0>(std::move(outcome_)); }
  const NSError& error() const { return std::get<1>(outcome_); }

 private:
  std::variant<Value, NSError> outcome_;
};

// The value of an operation that has nothing to return.
struct Done {};

}  // namespace kestrova::platform

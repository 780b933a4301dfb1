#pragma once

#include <string>
#include <utility>
#include <variant>

namespace kestrova::sandbox {

// What went wrong, as one line for the person at the terminal.
struct Failure {
  std::string text;
};

// A value, or why there is none.
template <typename T>
class [[nodiscard]] Outcome {
 public:
  Outcome(T value) : state_(std::in_place_index<0>, std::move(value)) {}
  Outcome(Failure failure) : state_(std::in_place_index<1>, std::move(failure)) {}

  explicit operator bool() const { return state_.index() == 0; }

  // Only with a value.
  T& value() & { return std::get<0>(state_); }
  const T& value() const& { return std::get<0>(state_); }
  T value() && { return std::get<0>(std::move(state_)); }

  // Only without.
  const std::string& error() const { return std::get<1>(state_).text; }

 private:
  std::variant<T, Failure> state_;
};

}  // namespace kestrova::sandbox

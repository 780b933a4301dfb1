#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace kestrova::platform {

class JSONValue;
using JSONArray = std::vector<JSONValue>;
using JSONDictionary = std::map<std::string, JSONValue, std::less<>>;

// A value of any JSON type. Integers that fit 64 bits with a sign stay exact, all other numbers are
// doubles. Texts are UTF-8.
class JSONValue {
 public:
  JSONValue() = default;
  JSONValue(std::nullptr_t) {}
  JSONValue(bool value) : value_(value) {}
  JSONValue(int value) : value_(std::int64_t{value}) {}
  JSONValue(std::int64_t value) : value_(value) {}
  JSONValue(double value) : value_(value) {}
  JSONValue(std::string value) : value_(std::move(value)) {}
  JSONValue(std::string_view value) : value_(std::string(value)) {}
  JSONValue(const char* value) : value_(std::string(value)) {}
  JSONValue(JSONArray value) : value_(std::move(value)) {}
  JSONValue(JSONDictionary value) : value_(std::move(value)) {}

  bool isNull() const { return std::holds_alternative<std::monostate>(value_); }
  // The value where it has exactly that type, else null.
  const bool* boolean() const { return std::get_if<bool>(&value_); }
  const std::int64_t* integer() const { return std::get_if<std::int64_t>(&value_); }
  const double* real() const { return std::get_if<double>(&value_); }
  const std::string* text() const { return std::get_if<std::string>(&value_); }
  const JSONArray* array() const { return std::get_if<JSONArray>(&value_); }
  const JSONDictionary* dictionary() const { return std::get_if<JSONDictionary>(&value_); }
  JSONArray* array() { return std::get_if<JSONArray>(&value_); }
  JSONDictionary* dictionary() { return std::get_if<JSONDictionary>(&value_); }

  friend bool operator==(const JSONValue&, const JSONValue&) = default;

 private:
  std::variant<std::monostate, bool, std::int64_t, double, std::string, JSONArray, JSONDictionary>
      value_;
};

// The text under `key`; null where there is none or it has another type.
const std::string* textForKey(const JSONDictionary& dictionary, std::string_view key);

// The value as log lines show it: texts in double quotes, ["a": 1, "b": [true, <null>]], an empty
// dictionary as [:]. One line and unambiguous: quotes, backslashes and control characters of texts
// are escaped.
std::string description(const JSONValue& value);
std::string description(const JSONDictionary& dictionary);
// A text as log lines show it, quoted and escaped.
std::string quoted(std::string_view text);
// A number as decimal text, the shortest that reads back as the same value; never in scientific
// notation, and the same in every locale.
std::string decimalText(double value);
std::string decimalText(float value);
std::string decimalText(std::int64_t value);

}  // namespace kestrova::platform

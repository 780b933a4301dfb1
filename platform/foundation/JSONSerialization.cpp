#include "platform/foundation/JSONSerialization.h"

#include <cstdint>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

namespace kestrova::platform {

namespace {

NSError undecodable(std::string reason) {
  return {"NSCocoaErrorDomain", 3840, "JSON text could not be decoded: " + std::move(reason)};
}

// Builds the value tree from the parser's events.
class Builder : public nlohmann::json_sax<nlohmann::json> {
 public:
  bool null() override { return add(nullptr); }
  bool boolean(bool value) override { return add(value); }
  bool number_integer(number_integer_t value) override { return add(std::int64_t{value}); }
  bool number_unsigned(number_unsigned_t value) override {
    if (value > static_cast<number_unsigned_t>(std::numeric_limits<std::int64_t>::max())) {
      return add(static_cast<double>(value));
    }
    return add(static_cast<std::int64_t>(value));
  }
  bool number_float(number_float_t value, const string_t& /*text*/) override { return add(value); }
  bool string(string_t& value) override { return add(std::move(value)); }
  bool binary(binary_t& /*value*/) override { return false; }
  bool start_object(std::size_t /*count*/) override { return open(JSONDictionary{}); }
  bool start_array(std::size_t /*count*/) override { return open(JSONArray{}); }
  bool key(string_t& value) override {
    open_.back().key = std::move(value);
    return true;
  }
  bool end_object() override { return close(); }
  bool end_array() override { return close(); }
  bool parse_error(std::size_t position, const std::string& /*token*/,
                   const nlohmann::detail::exception& /*error*/) override {
    error_ = "unexpected input near byte " + decimalText(static_cast<std::int64_t>(position));
    return false;
  }

  JSONValue root;

  std::string error() const { return error_.empty() ? "it cannot be represented" : error_; }

 private:
  // A container that is being filled, and the key under which its next value goes.
  struct Open {
    JSONValue container;
    std::string key;
  };

  bool add(JSONValue value) {
    if (open_.empty()) {
      root = std::move(value);
    } else if (auto* dictionary = open_.back().container.dictionary()) {
      dictionary->insert_or_assign(std::move(open_.back().key), std::move(value));
    } else {
      open_.back().container.array()->push_back(std::move(value));
    }
    return true;
  }

  bool open(JSONValue container) {
    if (open_.size() >= JSONSerialization::kMaximumDepth) {
      error_ = "it is nested too deeply";
      return false;
    }
    open_.push_back({std::move(container), {}});
    return true;
  }

  bool close() {
    auto container = std::move(open_.back().container);
    open_.pop_back();
    return add(std::move(container));
  }

  std::vector<Open> open_;
  std::string error_;
};

}  // namespace

Result<JSONValue> JSONSerialization::jsonObject(std::string_view data, JSONReadingOptions options) {
  // The parser would skip the mark, and take a NUL for the end of the text.
  if (data.starts_with("\xef\xbb\xbf")) return undecodable("it begins with a byte-order mark");
  if (data.find('\0') != std::string_view::npos) return undecodable("it holds a NUL byte");
  Builder builder;
  if (!nlohmann::json::sax_parse(data.begin(), data.end(), &builder)) {
    return undecodable(builder.error());
  }
  if (!options.fragmentsAllowed && !builder.root.array() && !builder.root.dictionary()) {
    return undecodable("the top-level value is neither an array nor a dictionary");
  }
  return std::move(builder.root);
}

}  // namespace kestrova::platform

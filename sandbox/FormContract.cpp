#include "sandbox/FormContract.h"

#include <algorithm>
#include <optional>

#include "sandbox/Text.h"

namespace kestrova::sandbox {

namespace {

constexpr std::string_view formType = "application/x-www-form-urlencoded; charset=utf-8";
// No honest form is longer.
constexpr std::size_t usualBytes = std::size_t{256} << 10U;
// What follows is not read.
constexpr std::size_t mostPairs = 1000;
// A body of nothing but wrong bytes must not fill the record with a line each.
constexpr std::size_t mostComplaints = 20;

bool staysUnescaped(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' ||
         c == '.' || c == '_' || c == '~' || c == '/' || c == '?';
}

std::optional<unsigned> hexValue(char c) {
  if (c >= '0' && c <= '9') return static_cast<unsigned>(c - '0');
  if (c >= 'A' && c <= 'F') return static_cast<unsigned>(c - 'A') + 10;
  if (c >= 'a' && c <= 'f') return static_cast<unsigned>(c - 'a') + 10;
  return std::nullopt;
}

// Decodes one key or value. `complain` takes what tells what is wrong with how it was written.
template <typename Complain>
std::string unescaped(std::string_view text, Complain complain) {
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c != '%') {
      if (!staysUnescaped(c)) {
        complain(
            [&] { return "byte " + printable(text.substr(i, 1)) + " must be percent-escaped"; });
      }
      out += c;
      continue;
    }
    const auto escape = text.substr(i, 3);
    const auto high = escape.size() == 3 ? hexValue(escape[1]) : std::nullopt;
    const auto low = escape.size() == 3 ? hexValue(escape[2]) : std::nullopt;
    if (!high || !low) {
      complain([&] { return "expected % and two hexadecimal digits, came " + printable(escape); });
      out += c;
      continue;
    }
    const char decoded = static_cast<char>(*high * 16 + *low);
    if (std::any_of(escape.begin(), escape.end(), [](char d) { return d >= 'a' && d <= 'f'; })) {
      complain([&] { return "expected upper-case hexadecimal digits, came " + printable(escape); });
    }
    if (staysUnescaped(decoded)) {
      complain([&] { return printable(escape) + " must not be escaped"; });
    }
    out += decoded;
    i += 2;
  }
  if (!isUtf8(out)) {
    complain([&] { return "expected well-formed UTF-8, came " + printable(out); });
  }
  return out;
}

template <typename Complain>
void forEachPair(std::string_view body, Complain&& complain, Fields& fields) {
  while (!body.empty()) {
    if (fields.pairs.size() == mostPairs) {
      fields.deviations.push_back("form: more than " + std::to_string(mostPairs) + " fields");
      return;
    }
    const auto end = std::min(body.find('&'), body.size());
    const auto pair = body.substr(0, end);
    const bool last = end == body.size();
    body.remove_prefix(last ? end : end + 1);
    const auto equals = pair.find('=');
    if (pair.empty() || (body.empty() && !last)) {
      complain([] { return std::string("an & without a pair beside it"); });
    }
    if (pair.empty()) continue;
    if (equals == pair.npos) {
      complain([&] { return "expected key=value, came " + printable(pair); });
    }
    auto key = unescaped(pair.substr(0, equals), complain);
    auto value = equals == pair.npos ? std::string() : unescaped(pair.substr(equals + 1), complain);
    fields.pairs.emplace_back(std::move(key), std::move(value));
  }
}

// Pairs of one nested value stand under one key, so only what precedes the bracket is compared.
std::string_view outerKey(std::string_view key) {
  return key.substr(0, key.find('['));
}

}  // namespace

const std::string* Fields::find(std::string_view key) const {
  const auto found =
      std::find_if(pairs.begin(), pairs.end(), [&](const auto& pair) { return pair.first == key; });
  return found == pairs.end() ? nullptr : &found->second;
}

Fields readForm(std::string_view contentType, std::string_view body) {
  Fields fields;
  if (contentType != formType) {
    fields.deviations.push_back("Content-Type: expected " + printable(formType) + ", came " +
                                printable(contentType));
  }
  if (body.size() > usualBytes) {
    fields.deviations.push_back("form: expected at most " + std::to_string(usualBytes) +
                                " bytes, came " + std::to_string(body.size()));
  }
  std::size_t complaints = 0;
  forEachPair(
      body,
      [&](const auto& what) {
        if (++complaints <= mostComplaints) fields.deviations.push_back("form: " + what());
      },
      fields);
  if (complaints > mostComplaints) {
    fields.deviations.push_back("form: " + std::to_string(complaints - mostComplaints) +
                                " more of the kind");
  }
  for (std::size_t i = 1; i < fields.pairs.size(); ++i) {
    const auto& earlier = fields.pairs[i - 1].first;
    const auto& later = fields.pairs[i].first;
    if (outerKey(later) < outerKey(earlier)) {
      fields.deviations.push_back("form: expected keys in ascending order, came " +
                                  printable(earlier) + " before " + printable(later));
    }
  }
  return fields;
}

Fields readLooseForm(std::string_view body) {
  Fields fields;
  std::string text(body);
  std::replace(text.begin(), text.end(), '+', ' ');
  forEachPair(
      text, [](const auto&) {}, fields);
  return fields;
}

}  // namespace kestrova::sandbox

#include "sandbox/console/DeviationText.h"

#include <optional>
#include <utility>

namespace kestrova::sandbox {

namespace {

using Sides = std::pair<std::string_view, std::string_view>;

// What stands before and after the words; those inside quotes were received and do not count.
std::optional<Sides> split(std::string_view text, std::string_view words) {
  bool quoted = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (quoted && text[i] == '\\') {
      ++i;
    } else if (!quoted && text.substr(i).starts_with(words)) {
      return Sides{text.substr(0, i), text.substr(i + words.size())};
    } else if (text[i] == '"') {
      quoted = !quoted;
    }
  }
  return std::nullopt;
}

std::string joined(std::string_view a, std::string_view b) {
  return std::string(a).append(b);
}

// The sentences that say what came, and leave to the reader what was expected.
std::optional<DeviationText> readSentence(std::string_view text) {
  if (const auto missing = split(text, " is missing")) {
    return DeviationText{{}, std::string(missing->first), "nothing"};
  }
  if (const auto unknown = split(text, " is none of this request's")) {
    return DeviationText{{}, "no such field", std::string(unknown->first)};
  }
  if (const auto place = split(text, ", came to ")) {
    if (const auto belongs = split(place->first, " belongs to ")) {
      return DeviationText{std::string(belongs->first), std::string(belongs->second),
                           std::string(place->second)};
    }
  }
  if (const auto order = split(text, " came before ")) {
    return DeviationText{{}, joined(order->second, " first"), joined(order->first, " before it")};
  }
  if (const auto back = split(text, " came though a passport has no back")) {
    return DeviationText{
        {}, "no back side, as the document is a passport", std::string(back->first)};
  }
  if (const auto late = split(text, " came after the file part")) {
    return DeviationText{{}, "every field before the file part", joined(late->first, " after it")};
  }
  const auto times = split(text, " came ");
  if (times && times->first.starts_with("field ") && times->second.ends_with(" times")) {
    return DeviationText{{}, joined(times->first, " once"), std::string(times->second)};
  }
  if (const auto plain = split(text, " must be percent-escaped")) {
    return DeviationText{{}, "percent-escaped", joined(plain->first, " as it is")};
  }
  if (const auto escaped = split(text, " must not be escaped")) {
    return DeviationText{{}, "the plain character", std::string(escaped->first)};
  }
  constexpr std::pair<std::string_view, std::string_view> beginnings[]{
      {"no authentication has the key ", "the key of an authentication opened here"},
      {"no step is called ", "the name of a step"},
      {"nothing answers to ", "a method and a path of the interface"},
      {"a second file part, ", "one file part"},
  };
  for (const auto& [beginning, expected] : beginnings) {
    if (text.starts_with(beginning)) {
      return DeviationText{{}, std::string(expected), std::string(text.substr(beginning.size()))};
    }
  }
  constexpr std::pair<std::string_view, std::string_view> whole[]{
      {"an & without a pair beside it", "a pair on both sides of an &"},
      {"the last assessment has a token without a value", "a value after every token"},
  };
  for (const auto& [sentence, expected] : whole) {
    if (text == sentence) return DeviationText{{}, std::string(expected), std::string(text)};
  }
  return std::nullopt;
}

// What a part of the request should have been on the whole.
constexpr std::pair<std::string_view, std::string_view> parts[]{
    {"form", "a form with few fields, each written right"},
    {"multipart", "a form that can be read by RFC 7578"},
    {"HTTP", "a request that HTTP allows"},
};

}  // namespace

DeviationText readDeviation(std::string_view text) {
  if (const auto sides = split(text, ", came ")) {
    if (const auto expected = split(sides->first, "expected ")) {
      auto where = expected->first;
      if (where.ends_with(": ")) where.remove_suffix(2);
      // A name needs no quotes where nothing in it had to be escaped.
      if (where.size() > 2 && where.front() == '"' && where.find('\\') == where.npos) {
        where = where.substr(1, where.size() - 2);
      }
      return {std::string(where), std::string(expected->second), std::string(sides->second)};
    }
  }
  if (auto sentence = readSentence(text)) return *std::move(sentence);
  for (const auto& [part, expected] : parts) {
    if (!text.starts_with(joined(part, ": "))) continue;
    text.remove_prefix(part.size() + 2);
    auto sentence =
        readSentence(text).value_or(DeviationText{{}, std::string(expected), std::string(text)});
    sentence.where = part;
    return sentence;
  }
  return {{}, {}, std::string(text)};
}

}  // namespace kestrova::sandbox

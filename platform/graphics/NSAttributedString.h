#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "platform/foundation/Text.h"
#include "platform/graphics/UIColor.h"
#include "platform/graphics/UIFont.h"

namespace kestrova::platform {

enum class NSTextAlignment { left, center, right };

// How characters look; what is absent is left to whoever draws them.
struct NSAttributes {
  std::optional<UIFont> font;
  std::optional<UIColor> foregroundColor;
  // Of the whole text; its first character's counts.
  std::optional<NSTextAlignment> alignment;

  friend bool operator==(const NSAttributes&, const NSAttributes&) = default;
};

// A text with attributes by ranges of UTF-16 code units.
class NSAttributedString {
 public:
  // Neighbouring characters of the same attributes.
  struct Run {
    NSRange range;
    NSAttributes attributes;

    friend bool operator==(const Run&, const Run&) = default;
  };

  NSAttributedString() = default;
  explicit NSAttributedString(std::string text, NSAttributes attributes = {});

  const std::string& string() const { return string_; }
  // In UTF-16 code units.
  std::size_t length() const { return length_; }
  // In order, without gaps.
  const std::vector<Run>& runs() const { return runs_; }
  // Of a character; no attributes beyond the end.
  NSAttributes attributes(std::size_t at) const;

  friend bool operator==(const NSAttributedString&, const NSAttributedString&) = default;

 protected:
  std::string string_;
  std::size_t length_ = 0;
  std::vector<Run> runs_;
};

class NSMutableAttributedString : public NSAttributedString {
 public:
  using NSAttributedString::NSAttributedString;
  explicit NSMutableAttributedString(const NSAttributedString& other) : NSAttributedString(other) {}

  // Gives the characters in `range` those of `attributes` that are present and leaves them the
  // others. The range is clamped to the text; one that was not found changes nothing.
  void addAttributes(const NSAttributes& attributes, NSRange range);
};

}  // namespace kestrova::platform

#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "platform/graphics/NSAttributedString.h"
#include "platform/graphics/NSTextContainer.h"
#include "platform/graphics/UIFont.h"
#include "platform/uikit/UIView.h"

namespace kestrova::platform {

class NSLayoutManager;

// Shows a text: an attributed one from the upper left corner, a plain one in the middle of its
// height. Takes no touches until user interaction is enabled. Main thread.
class UILabel : public UIView {
 public:
  static constexpr double kFontSize = 17;

  UILabel();
  UILabel(const UILabel&) = delete;
  UILabel& operator=(const UILabel&) = delete;
  ~UILabel() override;

  // Either takes the place of the other; the text of an attributed one is its characters.
  const std::string& text() const { return text_; }
  void setText(std::string text);
  // None where the text is plain. The properties below are for plain texts, but for the lines'.
  const std::optional<NSAttributedString>& attributedText() const { return attributedText_; }
  void setAttributedText(std::optional<NSAttributedString> text);

  const UIFont& font() const { return font_; }
  // None for the system's, 17 points.
  void setFont(const std::optional<UIFont>& font);
  const UIColor& textColor() const { return textColor_; }
  void setTextColor(const UIColor& color) { change(textColor_, color); }
  NSTextAlignment textAlignment() const { return textAlignment_; }
  void setTextAlignment(NSTextAlignment alignment) { change(textAlignment_, alignment); }

  // 1 at first; 0 for as many as there are.
  std::size_t numberOfLines() const { return numberOfLines_; }
  void setNumberOfLines(std::size_t lines) { change(numberOfLines_, lines); }
  NSLineBreakMode lineBreakMode() const { return lineBreakMode_; }
  void setLineBreakMode(NSLineBreakMode mode) { change(lineBreakMode_, mode); }
  // The least distance from line to line, in points; 0 for the font's own.
  double lineHeight() const { return lineHeight_; }
  void setLineHeight(double height) { change(lineHeight_, height); }

  // What the text is laid out in to be drawn, from the view's upper left corner.
  NSTextContainer textContainer() const;

  CGSize sizeThatFits(CGSize size) const override;
  std::string accessibilityLabel() const override;
  UIAccessibilityRole accessibilityRole() const override;

 protected:
  void draw(Canvas& canvas) override;
  bool heightDependsOnWidth() const override { return numberOfLines_ != 1; }

 private:
  template <typename T>
  void change(T& field, const T& value) {
    if (field == value) return;
    field = value;
    textChanged();
  }
  void textChanged();
  void lay(NSLayoutManager& manager) const;

  std::string text_;
  std::optional<NSAttributedString> attributedText_;
  UIFont font_;
  UIColor textColor_ = UIColor::black();
  NSTextAlignment textAlignment_ = NSTextAlignment::left;
  std::size_t numberOfLines_ = 1;
  NSLineBreakMode lineBreakMode_ = NSLineBreakMode::byTruncatingTail;
  double lineHeight_ = 0;

  // The text as it was drawn last, and the sizes that were asked by width; gone when it changes.
  std::unique_ptr<NSLayoutManager> drawn_;
  NSTextContainer drawnIn_;
  mutable std::map<double, CGSize> sizes_;
};

}  // namespace kestrova::platform

#pragma once

#include <memory>
#include <string>

#include "platform/graphics/UIColor.h"
#include "platform/graphics/UIFont.h"
#include "platform/uikit/UIButton.h"
#include "platform/uikit/UILabel.h"
#include "platform/uikit/UITextField.h"
#include "sdk/Platform.h"
#include "sdk/ui/Extensions.h"

// What the flow's screens are made of, as code.
namespace kestrova::gallery {

inline UIColor hex(unsigned rgb) {
  return {double(rgb >> 16 & 255) / 255, double(rgb >> 8 & 255) / 255, double(rgb & 255) / 255, 1};
}
inline const UIColor kInk = hex(0x101828);
inline const UIColor kBody = hex(0x475467);
inline const UIColor kHelp = hex(0x667085);
inline const UIColor kTint = hex(0xE8F0FF);
inline const UIColor kAround = hex(0xF3F5F9);
inline const UIColor kLine = UIColor::white(224.0 / 255, 1);

inline UIFont exo(const std::string& style, double size) {
  UIFontExtensions::loadMyFonts();
  return UIFont::make("Exo-" + style, size).value_or(UIFont::systemFont(size));
}

// A text over as many lines as it needs, `lineHeight` points apart.
inline std::shared_ptr<UILabel> text(const std::string& words, const UIFont& font,
                                     const UIColor& color, double lineHeight = 0) {
  auto label = std::make_shared<UILabel>();
  label->setText(words);
  label->setFont(font);
  label->setTextColor(color);
  label->setLineHeight(lineHeight);
  label->setNumberOfLines(0);
  return label;
}

inline std::shared_ptr<UIButton> primaryButton(const std::string& title) {
  auto button = std::make_shared<UIButton>();
  button->setTitle(title);
  button->setTitleFont(exo("SemiBold", 17));
  button->setTitleColor(UIColor::white());
  button->setBackgroundColor(UIColorExtensions::kestrovaBlue());
  button->layer().setCornerRadius(8);
  button->setFocusable(true);
  return button;
}

inline std::shared_ptr<UITextField> field(const std::string& placeholder,
                                          const std::string& content = {}) {
  auto field = std::make_shared<UITextField>();
  field->setPlaceholder(placeholder);
  field->setText(content);
  field->setFont(exo("Medium", 17));
  field->setTextColor(kInk);
  field->setTextInset(16);
  field->setBackgroundColor(UIColor::white());
  field->layer().setCornerRadius(8);
  field->layer().setBorderWidth(1.5);
  field->layer().setBorderColor(kLine);
  return field;
}

}  // namespace kestrova::gallery

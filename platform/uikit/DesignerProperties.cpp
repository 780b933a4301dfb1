#include "platform/uikit/DesignerProperties.h"

#include <charconv>
#include <cmath>
#include <functional>
#include <initializer_list>
#include <map>
#include <utility>

#include "platform/uikit/UIButton.h"
#include "platform/uikit/UIImageView.h"
#include "platform/uikit/UILabel.h"
#include "platform/uikit/UIStackView.h"
#include "platform/uikit/UITableView.h"
#include "platform/uikit/UITableViewCell.h"
#include "platform/uikit/UITextField.h"

namespace kestrova::platform {

std::optional<double> designerNumber(std::string_view text) {
  double value = 0;
  const char* const end = text.data() + text.size();
  const auto read = std::from_chars(text.data(), end, value);
  constexpr double kMost = 1e6;
  if (text.empty() || read.ptr != end || !(std::abs(value) <= kMost)) return std::nullopt;
  return value;
}

// A property's text, as the types that it may stand for.
struct DesignerProperties::Value {
  std::string_view text;
  const Bundle& bundle;
  const NamedColors& colors;

  std::optional<std::string> string() const { return std::string(text); }
  std::optional<double> number() const { return designerNumber(text); }
  std::optional<double> length() const {
    const auto value = number();
    constexpr double kMost = 1e4;
    return value && *value >= 0 && *value <= kMost ? value : std::nullopt;
  }
  std::optional<std::size_t> count() const {
    const auto value = length();
    if (!value || *value != std::floor(*value)) return std::nullopt;
    return std::size_t(*value);
  }
  std::optional<bool> flag() const {
    if (text != "true" && text != "false") return std::nullopt;
    return text == "true";
  }
  std::optional<UIColor> color() const { return colors.color(text); }
  std::optional<UIImage> image() const { return UIImage::named(text, bundle); }

  // "<PostScript name> <size>"; "system" and "boldSystem" for the system's. One that is not
  // registered gives way to the system's.
  std::optional<UIFont> font() const {
    const auto blank = text.rfind(' ');
    if (blank == std::string_view::npos) return std::nullopt;
    const auto name = text.substr(0, blank);
    const auto size = designerNumber(text.substr(blank + 1));
    constexpr double kLargest = 500;
    if (name.empty() || !size || *size < 1 || *size > kLargest) return std::nullopt;
    if (name == "system") return UIFont::systemFont(*size);
    if (name == "boldSystem") return UIFont::boldSystemFont(*size);
    const auto font = UIFont::make(name, *size);
    return font ? font : UIFont::systemFont(*size);
  }

  template <typename Choice>
  std::optional<Choice> oneOf(
      std::initializer_list<std::pair<std::string_view, Choice>> choices) const {
    for (const auto& [name, choice] : choices) {
      if (name == text) return choice;
    }
    return std::nullopt;
  }

  std::optional<UIViewContentMode> contentMode() const {
    using enum UIViewContentMode;
    return oneOf<UIViewContentMode>({{"scaleToFill", scaleToFill},
                                     {"scaleAspectFit", scaleAspectFit},
                                     {"scaleAspectFill", scaleAspectFill},
                                     {"center", center}});
  }
  std::optional<UIAccessibilityRole> role() const {
    using enum UIAccessibilityRole;
    return oneOf<UIAccessibilityRole>({{"none", none},
                                       {"staticText", staticText},
                                       {"header", header},
                                       {"image", image},
                                       {"button", button},
                                       {"link", link},
                                       {"busy", busy},
                                       {"alert", alert}});
  }
  std::optional<UIKeyboardType> keyboardType() const {
    return oneOf<UIKeyboardType>(
        {{"default", UIKeyboardType::standard}, {"emailAddress", UIKeyboardType::emailAddress}});
  }
  std::optional<UITableViewCellSelectionStyle> selectionStyle() const {
    return oneOf<UITableViewCellSelectionStyle>(
        {{"none", UITableViewCellSelectionStyle::none},
         {"default", UITableViewCellSelectionStyle::standard}});
  }
  // The horizontal part of Designer's set.
  std::optional<NSTextAlignment> alignment() const {
    const auto has = [this](std::string_view name) {
      return text.find(name) != std::string_view::npos;
    };
    if (has("AlignHCenter") || has("AlignCenter")) return NSTextAlignment::center;
    if (has("AlignRight") || has("AlignTrailing")) return NSTextAlignment::right;
    return NSTextAlignment::left;
  }
};

DesignerProperties::Outcome DesignerProperties::apply(const DesignerProperty& property,
                                                      UIView& view) const {
  using Setter = std::function<Outcome(const Value&, UIView&)>;
  // `read` makes of the text what `set` takes, a member function of `Class`, or any function.
  const auto on = [](auto* klass, auto read, auto set) -> Setter {
    using Class = std::remove_pointer_t<decltype(klass)>;
    return [read, set](const Value& value, UIView& any) {
      auto* const typed = dynamic_cast<Class*>(&any);
      if (!typed) return Outcome::unknown;
      const auto made = (value.*read)();
      if (!made) return Outcome::badValue;
      std::invoke(set, *typed, *made);
      return Outcome::set;
    };
  };
  constexpr auto anyView = static_cast<UIView*>(nullptr);
  constexpr auto label = static_cast<UILabel*>(nullptr);
  constexpr auto button = static_cast<UIButton*>(nullptr);
  constexpr auto field = static_cast<UITextField*>(nullptr);
  using View = UIView;
  static const auto& setters = *new std::multimap<std::string, Setter, std::less<>>{
      {"hidden", on(anyView, &Value::flag, &View::setHidden)},
      {"backgroundColor", on(anyView, &Value::color, &View::setBackgroundColor)},
      {"cornerRadius", on(anyView, &Value::length,
                          [](View& it, double radius) { it.layer().setCornerRadius(radius); })},
      {"borderWidth", on(anyView, &Value::length,
                         [](View& it, double width) { it.layer().setBorderWidth(width); })},
      {"borderColor", on(anyView, &Value::color,
                         [](View& it, const UIColor& c) { it.layer().setBorderColor(c); })},
      {"clipsToBounds", on(anyView, &Value::flag, &View::setClipsToBounds)},
      {"contentMode", on(anyView, &Value::contentMode, &View::setContentMode)},
      {"userInteractionEnabled", on(anyView, &Value::flag, &View::setUserInteractionEnabled)},
      {"focusable", on(anyView, &Value::flag, &View::setFocusable)},
      {"accessibilityViewIsModal", on(anyView, &Value::flag, &View::setAccessibilityViewIsModal)},
      {"accessibleName", on(anyView, &Value::string, &View::setAccessibilityLabel)},
      {"accessibleDescription", on(anyView, &Value::string, &View::setAccessibilityHint)},
      {"accessibilityRole", on(anyView, &Value::role, &View::setAccessibilityRole)},
      {"enabled", on(static_cast<UIControl*>(nullptr), &Value::flag, &UIControl::setEnabled)},

      {"text", on(label, &Value::string, &UILabel::setText)},
      {"typeface", on(label, &Value::font, &UILabel::setFont)},
      {"textColor", on(label, &Value::color, &UILabel::setTextColor)},
      {"alignment", on(label, &Value::alignment, &UILabel::setTextAlignment)},
      {"wordWrap", on(label, &Value::flag,
                      [](UILabel& it, bool wraps) { it.setNumberOfLines(wraps ? 0 : 1); })},
      {"numberOfLines", on(label, &Value::count, &UILabel::setNumberOfLines)},
      {"lineHeight", on(label, &Value::length, &UILabel::setLineHeight)},

      {"text", on(button, &Value::string, &UIButton::setTitle)},
      {"typeface", on(button, &Value::font, &UIButton::setTitleFont)},
      {"textColor", on(button, &Value::color,
                       [](UIButton& it, const UIColor& color) { it.setTitleColor(color); })},
      {"disabledTextColor",
       on(button, &Value::color,
          [](UIButton& it, const UIColor& c) { it.setTitleColor(c, UIControlState::disabled); })},
      {"image", on(button, &Value::image, &UIButton::setImage)},
      {"contentInset", on(button, &Value::length, &UIButton::setContentInset)},

      {"text", on(field, &Value::string, &UITextField::setText)},
      {"placeholderText", on(field, &Value::string, &UITextField::setPlaceholder)},
      {"placeholderColor", on(field, &Value::color, &UITextField::setPlaceholderColor)},
      {"typeface", on(field, &Value::font, &UITextField::setFont)},
      {"textColor", on(field, &Value::color, &UITextField::setTextColor)},
      {"textInset", on(field, &Value::length, &UITextField::setTextInset)},
      {"keyboardType", on(field, &Value::keyboardType, &UITextField::setKeyboardType)},

      {"image", on(static_cast<UIImageView*>(nullptr), &Value::image, &UIImageView::setImage)},
      {"scrollEnabled",
       on(static_cast<UIScrollView*>(nullptr), &Value::flag, &UIScrollView::setScrollEnabled)},
      {"centersRow",
       on(static_cast<UIStackView*>(nullptr), &Value::flag, &UIStackView::setCentersRow)},
      {"rowHeight",
       on(static_cast<UITableView*>(nullptr), &Value::length, &UITableView::setRowHeight)},
      {"selectionStyle", on(static_cast<UITableViewCell*>(nullptr), &Value::selectionStyle,
                            &UITableViewCell::setSelectionStyle)},
  };
  const Value value{property.text, bundle_, colors_};
  const auto [first, last] = setters.equal_range(property.name);
  for (auto each = first; each != last; ++each) {
    const Outcome outcome = each->second(value, view);
    if (outcome != Outcome::unknown) return outcome;
  }
  return Outcome::unknown;
}

}  // namespace kestrova::platform

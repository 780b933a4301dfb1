#include "sdk/ui/Extensions.h"

#include <array>

#include "platform/dispatch/Once.h"
#include "platform/foundation/FileManager.h"
#include "platform/foundation/JSONValue.h"
#include "platform/foundation/NSLog.h"
#include "platform/foundation/Print.h"
#include "platform/foundation/Text.h"
#include "platform/graphics/CTFontManager.h"
#include "platform/graphics/NSLayoutManager.h"
#include "platform/graphics/NSTextStorage.h"
#include "platform/uikit/UIGestureRecognizer.h"
#include "platform/uikit/UILabel.h"
#include "platform/uikit/UIView.h"
#include "platform/uikit/UIViewController.h"
#include "sdk/core/Kestrova.h"

namespace kestrova {

namespace {

constexpr std::array kTypefaces{"Exo-Black",  "Exo-Bold",    "Exo-ExtraBold", "Exo-Light",
                                "Exo-Medium", "Exo-Regular", "Exo-SemiBold"};

Result<CGFont> fontNamed(std::string_view name) {
  const auto bundle = Kestrova::bundle();
  const auto path = bundle ? bundle->path(name, "ttf") : std::nullopt;
  if (!path) return NSError{"Kestrova", 0, "it is not in the bundle"};
  auto file = FileManager::contents(*path);
  if (!file) return file.error();
  return CGFont::make(CGDataProvider(std::move(file).value()));
}

}  // namespace

void UIFontExtensions::loadMyFonts() {
  static Once& once = *new Once;
  once([] {
    for (const auto* name : kTypefaces) loadFontWith(name);
  });
}

void UIFontExtensions::loadFontWith(std::string_view name) {
  const auto font = fontNamed(name);
  if (!font) {
    return print("Kestrova: the typeface " + quoted(name) +
                 " cannot be read: " + font.error().localizedDescription);
  }
  if (CTFontManagerRegisterGraphicsFont(font.value())) return;
  NSLog(
      "Failed to register font - register graphics font failed - this font may have already been "
      "registered in the main bundle.");
}

NSAttributedString StringExtensions::format(const std::vector<std::string>& strings,
                                            const UIFont& boldFont, const UIColor& boldColor,
                                            std::string_view inString, const UIFont& font,
                                            const UIColor& color) {
  NSMutableAttributedString text(std::string(inString), NSAttributes{font, color, {}});
  for (const auto& string : strings) {
    text.addAttributes({boldFont, boldColor, {}}, rangeOf(inString, string));
  }
  return text;
}

std::string capitalizingFirstLetter(std::string_view text) {
  // Lower-cased as a whole: what precedes a letter may decide on its form.
  const std::string lower = lowercased(text);
  return uppercased(firstCharacter(text)) + lower.substr(firstCharacter(lower).size());
}

void capitalizeFirstLetter(std::string& text) {
  text = capitalizingFirstLetter(text);
}

void hideKeyboardWhenTappedAround(const std::shared_ptr<UIViewController>& controller) {
  controller->view()->addGestureRecognizer(std::make_shared<UITapGestureRecognizer>(
      [weak = std::weak_ptr<UIViewController>(controller)](UITapGestureRecognizer&) {
        if (const auto alive = weak.lock()) hideKeyboard(*alive);
      }));
}

void hideKeyboard(UIViewController& controller) {
  controller.view()->endEditing(true);
}

std::size_t indexOfAttributedTextCharacterAtPoint(const UILabel& label, CGPoint point) {
  const auto& text = label.attributedText();
  if (!text) {
    print("This method is developed for attributed string");
    return NSNotFound;
  }
  const NSTextStorage storage(*text);
  NSLayoutManager manager;
  storage.addLayoutManager(manager);
  // What the label is drawn in.
  manager.addTextContainer(label.textContainer());
  return manager.characterIndex(point);
}

}  // namespace kestrova

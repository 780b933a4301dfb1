#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/graphics/UIFont.h"
#include "platform/uikit/UIControl.h"
#include "platform/uikit/UITextFieldDelegate.h"

namespace kestrova::platform {

class NSLayoutManager;

enum class UIKeyboardType { standard = 0, emailAddress = 7 };

// A line of text that people edit. It may have the keyboard's focus without being edited: editing
// begins with a tap, with Enter or with typing, if the delegate has nothing against it, and one
// field is edited at a time. It ends when the focus goes elsewhere in the window, by endEditing(),
// and when the field cannot be seen any more; not with a menu or another window in front. Main
// thread.
class UITextField : public UIControl {
 public:
  static constexpr double kFontSize = 17;

  UITextField();
  UITextField(const UITextField&) = delete;
  UITextField& operator=(const UITextField&) = delete;
  ~UITextField() override;

  std::weak_ptr<UITextFieldDelegate> delegate;

  const std::string& text() const { return text_; }
  // Nobody is asked or told.
  void setText(std::string_view text);
  // Shown where there is no text.
  const std::string& placeholder() const { return placeholder_; }
  void setPlaceholder(std::string placeholder);
  const UIColor& placeholderColor() const { return placeholderColor_; }
  void setPlaceholderColor(const UIColor& color);
  const UIFont& font() const { return font_; }
  // None for the system's, 17 points.
  void setFont(const std::optional<UIFont>& font);
  const UIColor& textColor() const { return textColor_; }
  void setTextColor(const UIColor& color);
  // Kept free at the left and right, in points.
  double textInset() const { return textInset_; }
  void setTextInset(double inset);
  UIKeyboardType keyboardType() const { return keyboardType_; }
  void setKeyboardType(UIKeyboardType type);
  void setEnabled(bool enabled) override;

  // The field that is edited, where one is.
  static std::shared_ptr<UITextField> edited();
  bool isEditing() const { return isEditing_; }
  // Begins editing: asks the delegate, ends the editing of another field, takes the focus, then
  // tells the delegate and the actions. False where one of them would not have it, or the field is
  // disabled or in no window.
  bool becomeFirstResponder();
  // As becomeFirstResponder(), for a typed character: calls textFieldWillBeginTyping() first.
  bool beginTyping();
  bool resignFirstResponder() { return endEditing(false); }
  bool endEditing(bool force) override;

  CGSize sizeThatFits(CGSize size) const override;
  void layoutSubviews() override;
  void didMoveToWindow() override;
  void touchesEnded(const UITouch& touch) override;
  bool keyPressed(const std::string&) override { return false; }
  // What is not set is the placeholder.
  std::string accessibilityLabel() const override;
  std::string accessibilityValue() const override { return text_; }
  UIAccessibilityRole accessibilityRole() const override;

 protected:
  void draw(Canvas& canvas) override;
  void widgetLost() override;

 private:
  class Editor;
  class Gate;

  void tapped();
  void applyLook();
  void applyEditing();
  void lookChanged();
  void lay(NSLayoutManager& manager, const std::string& text, double width) const;

  // The toolkit's line edit, owned by the view's widget.
  Editor* editor_;
  std::string text_;
  std::string placeholder_;
  UIColor placeholderColor_ = UIColor::white(0.45, 1);
  UIFont font_;
  UIColor textColor_ = UIColor::black();
  double textInset_ = 0;
  UIKeyboardType keyboardType_ = UIKeyboardType::standard;
  std::optional<CGPoint> tapAt_;
  bool isEditing_ = false;
  bool isAsking_ = false;
  std::unique_ptr<NSLayoutManager> drawn_;
  double drawnWidth_ = 0;
};

}  // namespace kestrova::platform

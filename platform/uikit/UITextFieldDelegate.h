#pragma once

#include <string_view>

#include "platform/foundation/Text.h"

namespace kestrova::platform {

class UITextField;

// Is asked about the editing of a field and told of it. May change, remove or release the field.
class UITextFieldDelegate {
 public:
  virtual ~UITextFieldDelegate() = default;

  virtual bool textFieldShouldBeginEditing(UITextField&) { return true; }
  // A typed character is about to begin editing; textFieldShouldBeginEditing() follows. A delegate
  // that refuses the first tap can get ready here, so that no character is lost.
  virtual void textFieldWillBeginTyping(UITextField&) {}
  virtual void textFieldDidBeginEditing(UITextField&) {}
  virtual bool textFieldShouldEndEditing(UITextField&) { return true; }
  virtual void textFieldDidEndEditing(UITextField&) {}
  // A key that lists understand (Up, Down, PageUp, PageDown, Return) was pressed in the field,
  // edited or not. True where that is all that it does.
  virtual bool textFieldKeyPressed(UITextField&, std::string_view /*key*/) { return false; }
  // Return was pressed while the field is edited.
  virtual bool textFieldShouldReturn(UITextField&) { return true; }
  // Before each change that a person makes: `range`, in UTF-16 code units of the field's text, is
  // to become `replacement`. False leaves the text as it is; a text that the call itself sets
  // stands in any case.
  virtual bool textFieldShouldChangeCharactersIn(UITextField&, NSRange /*range*/,
                                                 std::string_view /*replacement*/) {
    return true;
  }
};

}  // namespace kestrova::platform

#include <QtGui/QClipboard>
#include <QtGui/QContextMenuEvent>
#include <QtGui/QInputMethodEvent>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMenu>
#include <QtWidgets/QStyleFactory>

#include "platform/uikit/TextEdit.h"
#include "platform/uikit/UIGestureRecognizer.h"
#include "platform/uikit/UITextField.h"
#include "tests/platform/uikit/Interface.h"

namespace kestrova::test {

namespace {

using namespace platform;

// Notes the calls and answers as it is told.
struct FieldDelegate : UITextFieldDelegate {
  bool textFieldShouldBeginEditing(UITextField& field) override {
    calls += "begin? ";
    if (onBegin) onBegin(field);
    return mayBegin;
  }
  void textFieldDidBeginEditing(UITextField& field) override {
    calls += field.isEditing() ? "began " : "wrong ";
  }
  bool textFieldShouldEndEditing(UITextField&) override {
    calls += "end? ";
    return mayEnd;
  }
  void textFieldDidEndEditing(UITextField& field) override {
    calls += field.isEditing() ? "wrong " : "ended ";
  }
  bool textFieldShouldReturn(UITextField&) override {
    calls += "return? ";
    return true;
  }
  bool textFieldShouldChangeCharactersIn(UITextField& field, NSRange range,
                                         std::string_view replacement) override {
    calls += std::to_string(range.location) + "," + std::to_string(range.length) + "=" +
             std::string(replacement) + "? ";
    resulting = replacingCharacters(field.text(), range, replacement);
    if (onChange) onChange(field);
    return mayChange;
  }

  std::string calls;
  std::string resulting;
  bool mayBegin = true;
  bool mayEnd = true;
  bool mayChange = true;
  std::function<void(UITextField&)> onBegin;
  std::function<void(UITextField&)> onChange;
};

class TextFieldTest : public Interface {
 protected:
  TextFieldTest() {
    field = make({{20, 40}, {300, 52}});
    delegate = std::make_shared<FieldDelegate>();
    field->delegate = delegate;
    // The field may be told of its end after the test.
    const auto note = [this](const char* what) {
      return [told = delegate, what](const auto&) { told->calls += what; };
    };
    field->addAction(UIControlEvents::editingDidBegin, note("[began] "));
    field->addAction(UIControlEvents::editingChanged, note("[changed] "));
    field->addAction(UIControlEvents::editingDidEnd, note("[ended] "));
  }

  std::shared_ptr<UITextField> make(const CGRect& frame) {
    auto made = std::make_shared<UITextField>();
    made->setTextInset(16);
    return place(made, frame);
  }
  // The calls since the last time.
  std::string calls() { return std::exchange(delegate->calls, {}); }
  static QLineEdit& editor(const UITextField& of) { return *of.widget()->findChild<QLineEdit*>(); }
  void edit() {
    ASSERT_TRUE(field->becomeFirstResponder());
    settle();
    calls();
  }
  void compose(const QString& commit, const QString& preedit = {}) {
    QInputMethodEvent event(preedit, {});
    event.setCommitString(commit);
    QCoreApplication::sendEvent(&editor(*field), &event);
    settle();
  }

  std::shared_ptr<UITextField> field;
  std::shared_ptr<FieldDelegate> delegate;
};

TEST_F(TextFieldTest, isEditedByATapAndTellsInOrder) {
  field->setText("hello");
  click(*field);
  EXPECT_EQ(calls(), "begin? began [began] ");
  EXPECT_TRUE(field->isEditing());
  EXPECT_TRUE(field->isFocused());
  type("x");
  EXPECT_EQ(field->text(), "hellox");
  EXPECT_EQ(calls(), "5,0=x? [changed] ");
  click(*field);
  EXPECT_EQ(calls(), "");
  EXPECT_TRUE(screen().endEditing(false));
  EXPECT_EQ(calls(), "end? ended [ended] ");
  EXPECT_FALSE(field->isEditing());
}

TEST_F(TextFieldTest, hasTheFocusWithoutBeingEdited) {
  key(Qt::Key_Tab);
  EXPECT_TRUE(field->isFocused());
  EXPECT_FALSE(field->isEditing());
  EXPECT_FALSE(editor(*field).testAttribute(Qt::WA_InputMethodEnabled));
  EXPECT_EQ(calls(), "");
  // The key that begins the editing is typed.
  type("ab");
  EXPECT_EQ(field->text(), "ab");
  EXPECT_EQ(calls(), "begin? began [began] 0,0=a? [changed] 1,0=b? [changed] ");
  EXPECT_TRUE(editor(*field).testAttribute(Qt::WA_InputMethodEnabled));
  field->resignFirstResponder();
  calls();
  key(Qt::Key_Return);
  EXPECT_EQ(calls(), "begin? began [began] ");
  key(Qt::Key_Return);
  EXPECT_EQ(calls(), "return? ");
  EXPECT_EQ(field->text(), "ab");
}

TEST_F(TextFieldTest, staysAsItIsWhereTheDelegateForbidsEditing) {
  delegate->mayBegin = false;
  field->setText("Germany");
  click(*field);
  EXPECT_EQ(calls(), "begin? ");
  EXPECT_FALSE(field->isEditing());
  type("x");
  key(Qt::Key_Backspace);
  EXPECT_EQ(field->text(), "Germany");
  EXPECT_EQ(calls(), "begin? begin? ");
  // The second tap may: the delegate clears the field first.
  delegate->mayBegin = true;
  delegate->onBegin = [](UITextField& begun) { begun.setText({}); };
  click(*field);
  type("f");
  EXPECT_EQ(field->text(), "f");
  EXPECT_EQ(calls(), "begin? began [began] 0,0=f? [changed] ");
}

TEST_F(TextFieldTest, isNotEditedWhileDisabledOrInNoWindow) {
  field->setEnabled(false);
  click(*field);
  EXPECT_FALSE(field->becomeFirstResponder());
  field->setEnabled(true);
  edit();
  field->setEnabled(false);
  EXPECT_EQ(calls(), "end? ended [ended] ");
  field->setEnabled(true);
  edit();
  field->removeFromSuperview();
  EXPECT_EQ(calls(), "end? ended [ended] ");
  EXPECT_FALSE(field->becomeFirstResponder());
}

TEST_F(TextFieldTest, endsWhereItIsHidden) {
  edit();
  screen().setHidden(true);
  settle();
  EXPECT_FALSE(field->isEditing());
}

TEST_F(TextFieldTest, keepsEditingAgainstTheDelegatesWillOnlyUnlessForced) {
  edit();
  delegate->mayEnd = false;
  EXPECT_FALSE(screen().endEditing(false));
  EXPECT_TRUE(field->isEditing());
  const auto other = make({{20, 120}, {300, 52}});
  EXPECT_FALSE(other->becomeFirstResponder());
  key(Qt::Key_Tab);
  EXPECT_TRUE(field->isFocused());
  EXPECT_EQ(calls(), "end? end? end? ");
  EXPECT_TRUE(screen().endEditing(true));
  EXPECT_EQ(calls(), "end? ended [ended] ");
}

TEST_F(TextFieldTest, isEditedAloneAndEndsWhenTheFocusGoes) {
  const auto other = make({{20, 120}, {300, 52}});
  edit();
  click(*other);
  EXPECT_TRUE(other->isEditing());
  EXPECT_EQ(calls(), "end? ended [ended] ");
  edit();
  EXPECT_FALSE(other->isEditing());
  key(Qt::Key_Tab);
  EXPECT_TRUE(other->isFocused());
  EXPECT_FALSE(other->isEditing());
  EXPECT_EQ(calls(), "end? ended [ended] ");
  edit();
  delegate->mayEnd = false;
  other->becomeFocused();
  EXPECT_FALSE(field->isEditing());
  EXPECT_EQ(calls(), "end? ended [ended] ");
}

TEST_F(TextFieldTest, staysEditedUnderAMenuAndBehindAnotherWindow) {
  field->setText("hello");
  edit();
  QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(5, 5),
                          editor(*field).mapToGlobal(QPoint(5, 5)));
  QCoreApplication::sendEvent(&editor(*field), &event);
  settle();
  auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
  ASSERT_TRUE(menu);
  EXPECT_TRUE(field->isEditing());
  menu->actions().last()->trigger();  // select all
  menu->close();
  settle();
  EXPECT_TRUE(field->isEditing());
  EXPECT_EQ(editor(*field).selectedText(), "hello");
  QFocusEvent away(QEvent::FocusOut, Qt::ActiveWindowFocusReason);
  QCoreApplication::sendEvent(&editor(*field), &away);
  EXPECT_TRUE(field->isEditing());
  EXPECT_EQ(calls(), "");
}

TEST_F(TextFieldTest, keepsItsTapsFromRecognisersAround) {
  int taps = 0;
  screen().addGestureRecognizer(
      std::make_shared<UITapGestureRecognizer>([&](UITapGestureRecognizer&) { ++taps; }));
  click(*field);
  click(*field);
  click(*field, {4, 4});
  EXPECT_EQ(taps, 0);
  click(screen(), {20, 400});
  EXPECT_EQ(taps, 1);
}

TEST_F(TextFieldTest, putsTheCursorWhereItIsTapped) {
  field->setText("WWWWWWWWWW");
  click(*field, {17, 26});
  EXPECT_EQ(editor(*field).cursorPosition(), 0);
  field->resignFirstResponder();
  click(*field, {290, 26});
  EXPECT_EQ(editor(*field).cursorPosition(), 10);
}

TEST_F(TextFieldTest, asksBeforeEachChangeHoweverItIsMade) {
  edit();
  QGuiApplication::clipboard()->setText(
      "a\nb\xF0\x9F\x98\x80"  // a face
      "c");
  key(Qt::Key_V, Qt::ControlModifier);
  EXPECT_EQ(field->text(),
            "a b\xF0\x9F\x98\x80"
            "c");
  EXPECT_EQ(calls(),
            "0,0=a b\xF0\x9F\x98\x80"
            "c? [changed] ");
  key(Qt::Key_Left);
  key(Qt::Key_Backspace);
  EXPECT_EQ(calls(), "3,2=? [changed] ");
  compose({}, "e");
  EXPECT_EQ(calls(), "");
  compose("\u0301");
  EXPECT_EQ(calls(), "3,0=\xCC\x81? [changed] ");
  EXPECT_EQ(field->text(),
            "a b\xCC\x81"
            "c");
  key(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(calls(), "3,1=? [changed] ");
  EXPECT_EQ(delegate->resulting, field->text());
}

TEST_F(TextFieldTest, leavesTheTextWhereTheDelegateForbidsTheChange) {
  edit();
  type("ab");
  key(Qt::Key_Left);
  calls();
  delegate->mayChange = false;
  type("x");
  QGuiApplication::clipboard()->setText("paste");
  key(Qt::Key_V, Qt::ControlModifier);
  compose("\u0301");
  key(Qt::Key_Z, Qt::ControlModifier);
  key(Qt::Key_Delete);
  EXPECT_EQ(field->text(), "ab");
  EXPECT_EQ(editor(*field).text(), "ab");
  EXPECT_EQ(calls().find("[changed]"), std::string::npos);
  delegate->mayChange = true;
  key(Qt::Key_End);
  type("c");
  EXPECT_EQ(field->text(), "abc");
}

TEST_F(TextFieldTest, takesTheTextThatTheDelegateSetsDuringAChange) {
  edit();
  for (const bool may : {false, true}) {
    delegate->mayChange = may;
    delegate->onChange = [](UITextField& changed) { changed.setText("own"); };
    type("x");
    EXPECT_EQ(field->text(), "own");
    EXPECT_EQ(editor(*field).text(), "own");
    field->setText({});
  }
  EXPECT_EQ(calls().find("[changed]"), std::string::npos);
}

TEST_F(TextFieldTest, mayEndInItsOwnCalls) {
  delegate->onChange = [this](UITextField&) {
    field->removeFromSuperview();
    field.reset();
  };
  edit();
  const std::weak_ptr<UITextField> weak = field;
  type("x");
  EXPECT_TRUE(weak.expired());
}

TEST_F(TextFieldTest, outlivesTheWindowThatAHostTakesAway) {
  edit();
  delete field->widget();
  EXPECT_FALSE(field->isEditing());
  field->setText("still");
  EXPECT_EQ(field->text(), "still");
  EXPECT_TRUE(field->endEditing(true));
  EXPECT_FALSE(field->becomeFirstResponder());
}

TEST_F(TextFieldTest, setsTextWithoutAskingOrTelling) {
  edit();
  field->setText("set\xFF");
  EXPECT_EQ(field->text(), "set\xEF\xBF\xBD");
  EXPECT_EQ(calls(), "");
}

TEST_F(TextFieldTest, tellsTheInputMethodWhatIsTyped) {
  const auto hints = [this] { return editor(*field).inputMethodHints(); };
  EXPECT_EQ(hints(), Qt::ImhNone);
  field->setKeyboardType(UIKeyboardType::emailAddress);
  EXPECT_TRUE(hints() & Qt::ImhEmailCharactersOnly);
  EXPECT_TRUE(hints() & Qt::ImhNoAutoUppercase);
  EXPECT_TRUE(hints() & Qt::ImhNoPredictiveText);
}

TEST_F(TextFieldTest, showsThePlaceholderWhereThereIsNoText) {
  field->setPlaceholder("name@example.com");
  const QImage empty = picture(*field);
  field->setPlaceholder({});
  EXPECT_NE(picture(*field), empty);
  field->setPlaceholder("name@example.com");
  EXPECT_EQ(picture(*field), empty);
  edit();
  compose({}, "composed");
  const QImage composed = picture(*field);
  field->setPlaceholder({});
  EXPECT_EQ(picture(*field), composed);
}

TEST_F(TextFieldTest, looksTheSameInAHostileHost) {
  field->setPlaceholder("name@example.com");
  const auto other = make({{20, 120}, {300, 52}});
  other->setText("text");
  const QImage calm = picture(screen());
  QApplication::setStyle(QStyleFactory::create("Windows"));
  QPalette dark(Qt::yellow, Qt::darkRed);
  QApplication::setPalette(dark);
  QApplication::setFont(QFont("DejaVu Serif", 30));
  qApp->setStyleSheet(
      "* { background: red; color: lime; font: italic bold 30px 'DejaVu Serif';"
      "    border: 4px dashed blue; padding: 9px; margin: 3px; text-decoration: underline }"
      "QLineEdit { color: yellow !important; max-width: 60px; letter-spacing: 4px }"
      "QLineEdit:read-only { min-height: 90px; background: black !important }");
  settle();
  EXPECT_EQ(picture(screen()), calm);
  field->removeFromSuperview();
  other->removeFromSuperview();
  const auto late = make({{20, 40}, {300, 52}});
  late->setPlaceholder("name@example.com");
  make({{20, 120}, {300, 52}})->setText("text");
  EXPECT_EQ(picture(screen()), calm);
}

TEST(TextEditTest, findsTheRangeThatTheCursorShows) {
  const auto edit = [](std::u16string_view before, std::u16string_view after, std::size_t cursor) {
    const TextEdit found = TextEdit::between(before, after, cursor);
    std::u16string result(before);
    result.replace(found.range.location, found.range.length, found.replacement);
    EXPECT_EQ(result, after);
    return found;
  };
  EXPECT_EQ(edit(u"aaa", u"aaaa", 1).range, (NSRange{0, 0}));
  EXPECT_EQ(edit(u"aaa", u"aaaa", 4).range, (NSRange{3, 0}));
  EXPECT_EQ(edit(u"aaa", u"aa", 1).range, (NSRange{1, 1}));
  EXPECT_EQ(edit(u"hello", u"", 0).range, (NSRange{0, 5}));
  EXPECT_EQ(edit(u"abcd", u"axd", 2).replacement, u"x");
  // A cursor that does not stand at the edit.
  EXPECT_EQ(edit(u"abcd", u"abxcd", 0).range, (NSRange{2, 0}));
  // Faces of the same first surrogate, then of the same last one.
  EXPECT_EQ(edit(u"x\U0001F600y", u"x\U0001F601y", 3).range, (NSRange{1, 2}));
  EXPECT_EQ(edit(u"\U0001F600", u"\U0001FA00", 0).range, (NSRange{0, 2}));
  EXPECT_EQ(edit(u"e", u"e\u0301", 2).replacement, u"\u0301");
}

}  // namespace

}  // namespace kestrova::test

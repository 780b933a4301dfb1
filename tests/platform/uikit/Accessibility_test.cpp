#include <QtGui/QAccessible>
#include <QtWidgets/QLineEdit>

#include "platform/uikit/UIButton.h"
#include "platform/uikit/UIImageView.h"
#include "platform/uikit/UILabel.h"
#include "platform/uikit/UITextField.h"
#include "tests/platform/uikit/Interface.h"

namespace kestrova::test {

namespace {

using namespace platform;

class AccessibilityTest : public Interface {
 protected:
  template <typename View>
  std::shared_ptr<View> add(const std::shared_ptr<UIView>& to) {
    auto view = std::make_shared<View>();
    view->setFrame({{0, 50.0 * double(to->subviews().size())}, {200, 44}});
    to->addSubview(view);
    return view;
  }
  std::shared_ptr<UIView> form = place(std::make_shared<UIView>(), {{0, 0}, {375, 600}});
};

TEST_F(AccessibilityTest, tellsTheViewsInTheirOrderWithRoleNameValueAndState) {
  const auto heading = add<UILabel>(form);
  heading->setText("Where are you from?");
  heading->setAccessibilityRole(UIAccessibilityRole::header);
  add<UIImageView>(form);
  const auto flag = add<UIImageView>(form);
  flag->setAccessibilityLabel("Germany's flag");
  const auto field = add<UITextField>(form);
  field->setPlaceholder("E-mail");
  field->setText("a@b.de");
  const auto row = add<UIView>(form);
  add<UILabel>(row)->setText("inside");
  add<UILabel>(form)->setHidden(true);
  const auto button = add<UIButton>(form);
  button->setTitle("Next");
  button->setEnabled(false);
  const auto caption = add<UIButton>(form);
  add<UILabel>(caption)->setText("Verify");
  EXPECT_EQ(accessibilityTree(*form),
            "group\n"
            "  header \"Where are you from?\"\n"
            "  image \"Germany's flag\"\n"
            "  text field \"E-mail\" value \"a@b.de\" focusable\n"
            "  group\n"
            "    text \"inside\"\n"
            "  button \"Next\" disabled\n"
            "  button \"Verify\" focusable\n");
  key(Qt::Key_Tab);
  EXPECT_EQ(accessibilityTree(*field),
            "text field \"E-mail\" value \"a@b.de\" focusable focused\n");
}

TEST_F(AccessibilityTest, leavesOutWhatAPresentedScreenCovers) {
  add<UILabel>(form)->setText("below");
  const auto above = std::make_shared<UIView>();
  above->fillSuperview();
  add<UILabel>(above)->setText("above");
  window().addSubview(above);
  EXPECT_EQ(accessibilityTree(window()), "window\n  group\n    text \"above\"\n");
}

TEST_F(AccessibilityTest, hasATreeWithoutBreaks) {
  add<UITextField>(form);
  add<UIButton>(form);
  auto* const parent = QAccessible::queryAccessibleInterface(form->widget());
  ASSERT_EQ(parent->childCount(), 2);
  for (int index = 0; index < 2; ++index) {
    EXPECT_EQ(parent->child(index)->parent(), parent);
    EXPECT_EQ(parent->indexOfChild(parent->child(index)), index);
  }
}

TEST_F(AccessibilityTest, activatesControls) {
  const auto button = add<UIButton>(form);
  int taps = 0;
  button->addAction(UIControlEvents::touchUpInside, [&](const auto&) { ++taps; });
  auto* const actions = QAccessible::queryAccessibleInterface(button->widget())->actionInterface();
  ASSERT_TRUE(actions->actionNames().contains(QAccessibleActionInterface::pressAction()));
  actions->doAction(QAccessibleActionInterface::pressAction());
  EXPECT_EQ(taps, 1);
  button->setEnabled(false);
  EXPECT_FALSE(actions->actionNames().contains(QAccessibleActionInterface::pressAction()));
  actions->doAction(QAccessibleActionInterface::pressAction());
  EXPECT_EQ(taps, 1);
}

TEST_F(AccessibilityTest, editsAFieldAsAPersonWould) {
  struct Digits : UITextFieldDelegate {
    bool textFieldShouldChangeCharactersIn(UITextField&, NSRange,
                                           std::string_view replacement) override {
      return replacement != "no";
    }
  };
  const auto field = add<UITextField>(form);
  const auto delegate = std::make_shared<Digits>();
  field->delegate = delegate;
  field->setText("a c");
  auto* const object =
      QAccessible::queryAccessibleInterface(field->widget()->findChild<QLineEdit*>());
  EXPECT_EQ(object->role(), QAccessible::EditableText);
  auto* const text = object->textInterface();
  auto* const editable = object->editableTextInterface();
  ASSERT_TRUE(text && editable);
  editable->insertText(2, "b ");
  EXPECT_EQ(field->text(), "a b c");
  EXPECT_TRUE(field->isEditing());
  editable->insertText(2, "no");
  EXPECT_EQ(field->text(), "a b c");
  editable->deleteText(0, 2);
  EXPECT_EQ(text->text(0, 1), "b");
  text->setSelection(0, 1, 3);
  int start = 0;
  int end = 0;
  text->selection(0, &start, &end);
  EXPECT_EQ(start, 1);
  EXPECT_EQ(end, 3);
  EXPECT_EQ(text->offsetAtPoint(text->characterRect(1).center()), 1);
}

}  // namespace

}  // namespace kestrova::test

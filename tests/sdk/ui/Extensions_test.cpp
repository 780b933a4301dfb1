#include "sdk/ui/Extensions.h"

#include "platform/foundation/Text.h"
#include "platform/uikit/UILabel.h"
#include "platform/uikit/UITextField.h"
#include "platform/uikit/UIViewController.h"
#include "tests/platform/uikit/Interface.h"
#include "tests/support/StandardOutput.h"

namespace kestrova {
namespace {

using Extensions = test::Interface;

TEST_F(Extensions, RegisterEachTypefaceOnce) {
  UIFontExtensions::loadMyFonts();
  for (const auto* name : {"Exo-Black", "Exo-Bold", "Exo-ExtraBold", "Exo-Light", "Exo-Medium",
                           "Exo-Regular", "Exo-SemiBold"}) {
    EXPECT_TRUE(UIFont::make(name, 17)) << name;
  }
  test::StandardOutput output;
  UIFontExtensions::loadMyFonts();
  EXPECT_EQ(output.text(), "");
  UIFontExtensions::loadFontWith("Exo-Italic");
  EXPECT_TRUE(output.text().starts_with("Kestrova: the typeface \"Exo-Italic\" cannot be read"));
}

TEST_F(Extensions, CapitaliseTheFirstLetterAlone) {
  EXPECT_EQ(capitalizingFirstLetter("GERMANY"), "Germany");
  EXPECT_EQ(capitalizingFirstLetter("united states"), "United states");
  EXPECT_EQ(capitalizingFirstLetter("x"), "X");
  EXPECT_EQ(capitalizingFirstLetter(""), "");
  EXPECT_EQ(capitalizingFirstLetter("\xC3\x89"
                                    "COLE"),
            "\xC3\x89"
            "cole");
  // The last letter of a word has a form of its own.
  EXPECT_EQ(capitalizingFirstLetter("\u0391\u03A3"), "\u0391\u03C2");
  std::string text = "aBC";
  capitalizeFirstLetter(text);
  EXPECT_EQ(text, "Abc");
}

TEST_F(Extensions, EmphasiseTheFirstOccurrenceOfEachPart) {
  const auto bold = UIFont::boldSystemFont(10);
  const auto plain = UIFont::systemFont(10);
  const auto text =
      StringExtensions::format({"Terms", "nowhere", "\xF0\x9F\x98\x80 x"}, bold, UIColor::blue(),
                               "Our Terms, Terms \xF0\x9F\x98\x80 x", plain, UIColor::lightGray());
  const NSAttributes strong{bold, UIColor::blue(), {}};
  const NSAttributes weak{plain, UIColor::lightGray(), {}};
  EXPECT_EQ(text.attributes(3), weak);
  EXPECT_EQ(text.attributes(4), strong);
  EXPECT_EQ(text.attributes(8), strong);
  EXPECT_EQ(text.attributes(9), weak);
  EXPECT_EQ(text.attributes(12), weak);
  EXPECT_EQ(text.attributes(17), strong);
  EXPECT_EQ(text.attributes(20), strong);
  EXPECT_EQ(text.length(), 21U);
}

TEST_F(Extensions, FindTheCharacterUnderATapInWrappedText) {
  const auto label = place(std::make_shared<UILabel>(), {{20, 20}, {120, 200}});
  label->setNumberOfLines(0);
  const std::string words = "one two three four five six seven eight nine ten";
  label->setAttributedText(
      StringExtensions::format({"eight"}, UIFont::boldSystemFont(14), UIColor::blue(), words));
  // What is drawn in blue, the lines wide apart, is where the lookup finds the emphasised word.
  label->setLineHeight(30);
  const QImage image = picture(*label);
  const auto wanted = rangeOf(words, "eight");
  int hits = 0;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      const QColor color = image.pixelColor(x, y);
      if (color.blue() < 200 || color.red() > 60) continue;
      const std::size_t index =
          indexOfAttributedTextCharacterAtPoint(*label, {double(x), double(y)});
      ++hits;
      ASSERT_GE(index + 1, wanted.location) << x << " " << y;
      ASSERT_LE(index, wanted.location + wanted.length) << x << " " << y;
    }
  }
  EXPECT_GT(hits, 20);
  EXPECT_EQ(indexOfAttributedTextCharacterAtPoint(*label, {119, 199}), words.size() - 1);

  label->setText("plain");
  test::StandardOutput output;
  EXPECT_EQ(indexOfAttributedTextCharacterAtPoint(*label, {1, 1}), NSNotFound);
  EXPECT_EQ(output.text(), "This method is developed for attributed string\n");
}

TEST_F(Extensions, EndEditingByATapOnTheGround) {
  const auto controller = std::make_shared<UIViewController>();
  const auto field = std::make_shared<UITextField>();
  field->setFrame({{20, 20}, {200, 44}});
  controller->view()->addSubview(field);
  hideKeyboardWhenTappedAround(controller);
  window().setRootViewController(controller);
  settle();
  click(*field);
  EXPECT_TRUE(field->isEditing());
  click(*controller->view(), {100, 400});
  EXPECT_FALSE(field->isEditing());
}

}  // namespace
}  // namespace kestrova

#include "examples/gallery/Look.h"
#include "examples/gallery/PageScreen.h"
#include "examples/gallery/Pages.h"

namespace kestrova::gallery {

std::shared_ptr<UIViewController> typePage() {
  auto page = std::make_shared<PageScreen>("Type");
  const auto heading = text("Where are you from?", exo("SemiBold", 26), kInk, 32);
  heading->setAccessibilityRole(UIAccessibilityRole::header);
  page->add("Heading, SemiBold 26", heading);
  page->add("Lead, Regular 16",
            text("The next minutes ask for a video selfie and a document. Keep both at hand.",
                 exo("Regular", 16), kBody, 24));
  page->add("Field, Medium 17", text("Ada Lovelace", exo("Medium", 17), kInk));
  page->add("Body, Regular 15",
            text("Place the document on a dark surface, all four corners in the picture.",
                 exo("Regular", 15), kBody, 22));
  page->add("Disclaimer, 10",
            text("Your pictures are encrypted on their way and on the server. Nobody sees them but "
                 "those who check your identity.",
                 exo("Regular", 10), kHelp));
  page->addRow("The system's face, regular, semibold and bold",
               {text("Regular", UIFont::systemFont(15), kInk),
                text("Semibold", UIFont::systemFont(15, UIFont::kSemiboldWeight), kInk),
                text("Bold", UIFont::boldSystemFont(15), kInk)});
  return page;
}

namespace {

std::shared_ptr<UILabel> aligned(const std::string& words, NSTextAlignment alignment) {
  auto label = text(words, exo("Regular", 15), kInk);
  label->setTextAlignment(alignment);
  label->setBackgroundColor(kAround);
  return label;
}

}  // namespace

std::shared_ptr<UIViewController> textPage() {
  auto page = std::make_shared<PageScreen>("Text");
  const auto links = std::make_shared<UILabel>();
  links->setAttributedText(StringExtensions::format(
      {"Terms of Service", "Privacy Policy"}, exo("SemiBold", 15),
      UIColorExtensions::kestrovaBlue(),
      "By going on you accept our Terms of Service and say that you have read our Privacy Policy.",
      exo("Regular", 15), kBody));
  links->setNumberOfLines(0);
  page->add("Links in an attributed text", links);
  const std::string sentence =
      "A passport, a driving licence or a national ID card, whichever you have";
  const auto one = text(sentence, exo("Regular", 15), kInk);
  one->setNumberOfLines(1);
  page->add("Cut off after one line", one);
  const auto two = text(sentence + " with you now, as long as it has not expired yet.",
                        exo("Regular", 15), kInk, 22);
  two->setNumberOfLines(2);
  page->add("After two lines", two);
  page->addRow("Left, centred, right",
               {aligned("Left", NSTextAlignment::left), aligned("Centred", NSTextAlignment::center),
                aligned("Right", NSTextAlignment::right)},
               32);
  page->add("Scripts that the typeface does not have",
            text("Grüße, Ελλάδα, Київ, Ærø, Łódź", exo("Medium", 17), kInk));
  page->add("Combining marks",
            text("A\u030A o\u0308 e\u0301 n\u0303, Å ö é ñ", exo("Medium", 17), kInk));
  return page;
}

}  // namespace kestrova::gallery

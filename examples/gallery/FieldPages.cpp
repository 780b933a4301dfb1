#include "examples/gallery/Look.h"
#include "examples/gallery/PageScreen.h"
#include "examples/gallery/Pages.h"

namespace kestrova::gallery {

std::shared_ptr<UIViewController> fieldsPage() {
  auto page = std::make_shared<PageScreen>("Text fields");
  page->add("Empty", field("name@example.com"), 52);
  const auto filled = field("E-mail", "ada@example.com");
  filled->setAccessibilityLabel("E-mail");
  page->add("With a text", filled, 52);
  page->add("With more text than fits",
            field("Name", "Ada Augusta King, Countess of Lovelace, née Byron"), 52);
  const auto disabled = field("Country", "Chosen already");
  disabled->setEnabled(false);
  disabled->setTextColor(UIColor::lightGray());
  page->add("Disabled", disabled, 52);
  const auto focused = field("Focused, not edited");
  page->add("Focused by the keyboard", focused, 52);
  page->whenShown([focused = std::weak_ptr<UIView>(focused)](PageScreen&) {
    if (const auto view = focused.lock()) focusByKeyboard(*view);
  });
  return page;
}

std::shared_ptr<UIViewController> editingPage() {
  auto page = std::make_shared<PageScreen>("Editing");
  const auto edited = field("E-mail", "ada@example.com");
  page->add("Edited: the cursor stands behind the text", edited, 52);
  page->add("Another one", field("Name"), 52);
  page->add("", primaryButton("Next"), 52);
  page->whenShown([edited = std::weak_ptr<UITextField>(edited)](PageScreen&) {
    if (const auto view = edited.lock()) view->becomeFirstResponder();
  });
  return page;
}

}  // namespace kestrova::gallery

#include "sdk/flow/DocumentTableViewCell.h"

#include "platform/uikit/UIBindings.h"

namespace kestrova {

void DocumentTableViewCell::bind(UIBindings& bindings) {
  bindings.outlet("documentIcon", documentIcon);
  bindings.outlet("documentName", documentName);
  bindings.outlet("selectionCheckmark", selectionCheckmark);
  bindings.outlet("cardView", cardView);
}

void DocumentTableViewCell::awakeFromNib() {
  UITableViewCell::awakeFromNib();
}

void DocumentTableViewCell::setSelected(bool selected, bool animated) {
  UITableViewCell::setSelected(selected, animated);
  if (const auto mark = selectionCheckmark.lock()) mark->setHidden(!selected);
  if (const auto card = cardView.lock()) card->setChosen(selected);
}

// Inside the card's border, which fills the width of the table.
CGRect DocumentTableViewCell::focusRect() const {
  constexpr double kInset = 5;
  const auto card = cardView.lock();
  return card ? card->frame().insetBy(kInset, kInset) : UITableViewCell::focusRect();
}

}  // namespace kestrova

#pragma once

#include <memory>

#include "platform/uikit/UIImageView.h"
#include "platform/uikit/UILabel.h"
#include "platform/uikit/UITableViewCell.h"
#include "sdk/Platform.h"
#include "sdk/flow/DocumentCardCollView.h"

namespace kestrova {

// A kind of document as a card, marked while it is chosen.
class DocumentTableViewCell : public UITableViewCell {
 public:
  std::weak_ptr<UIImageView> documentIcon;
  std::weak_ptr<UILabel> documentName;
  std::weak_ptr<UIImageView> selectionCheckmark;
  std::weak_ptr<DocumentCardCollView> cardView;

  void bind(UIBindings& bindings) override;
  void awakeFromNib() override;
  void setSelected(bool selected, bool animated) override;
  CGRect focusRect() const override;
};

}  // namespace kestrova

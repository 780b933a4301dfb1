#pragma once

#include <memory>
#include <string>

#include "platform/uikit/UIView.h"

namespace kestrova::platform {

enum class UITableViewCellSelectionStyle { none = 0, standard = 3 };

// A row of a table while it is on screen. Its subviews are its content. Main thread.
class UITableViewCell : public UIView {
 public:
  UITableViewCell();

  // The prototype's, by which the table uses the cell again; empty where it came from none.
  const std::string& reuseIdentifier() const { return reuseIdentifier_; }
  // Whether a soft ground marks the pressed and the selected row; `standard` at first.
  UITableViewCellSelectionStyle selectionStyle() const { return selectionStyle_; }
  void setSelectionStyle(UITableViewCellSelectionStyle style);

  // Both are called by the table: at each change, and before a row is shown, without animation,
  // with the state that it has. An override calls this one first.
  virtual void setSelected(bool selected, bool animated);
  virtual void setHighlighted(bool highlighted, bool animated);
  bool isSelected() const { return isSelected_; }
  bool isHighlighted() const { return isHighlighted_; }

  // The texts of the subviews in their order, where none is set.
  std::string accessibilityLabel() const override;
  bool isAccessibilitySelected() const override { return isSelected_; }
  // The shape of the ring around the row that keys act on; it lies over the content.
  CGRect focusRect() const override;

 protected:
  void draw(Canvas& canvas) override;

 private:
  friend class CellPool;
  friend class UITableView;

  // Shows the ring of the row that keys act on.
  void setKeyboardRow(bool isKeyboardRow);

  std::string reuseIdentifier_;
  UITableViewCellSelectionStyle selectionStyle_ = UITableViewCellSelectionStyle::standard;
  bool isSelected_ = false;
  bool isHighlighted_ = false;
  // Made when it is first shown.
  std::shared_ptr<UIView> ring_;
  // How much of the selection's colour shows.
  double tint_ = 0;
  std::shared_ptr<const void> fade_;
};

}  // namespace kestrova::platform

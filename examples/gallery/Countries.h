#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/uikit/UITableView.h"
#include "platform/uikit/UITableViewDataSource.h"
#include "platform/uikit/UITableViewDelegate.h"
#include "sdk/Platform.h"

namespace kestrova::gallery {

// A list of countries with a divider behind the third.
class Countries : public UITableViewDataSource,
                  public UITableViewDelegate,
                  public std::enable_shared_from_this<Countries> {
 public:
  // Shows this as long as it is there.
  std::shared_ptr<UITableView> makeTable();

  // Who is told which country has been chosen; empty for nobody.
  std::function<void(const std::string& name)> onChosen;

  std::size_t tableViewNumberOfRowsInSection(UITableView& table, std::size_t section) override;
  double tableViewHeightForRowAt(UITableView& table, const IndexPath& indexPath) override;
  std::shared_ptr<UITableViewCell> tableViewCellForRowAt(UITableView& table,
                                                         const IndexPath& indexPath) override;
  std::string tableViewAccessibilityLabelForRowAt(UITableView& table,
                                                  const IndexPath& indexPath) override;
  void tableViewDidSelectRowAt(UITableView& table, const IndexPath& indexPath) override;
};

}  // namespace kestrova::gallery

#pragma once

#include <memory>

#include "platform/uikit/UITableViewDataSource.h"
#include "platform/uikit/UITableViewDelegate.h"
#include "platform/uikit/UIViewController.h"

namespace kestrova::platform {

// A screen whose view is a table, from the storyboard or a plain one, of which it is the data
// source and the delegate. Main thread.
class UITableViewController : public UIViewController,
                              public UITableViewDataSource,
                              public UITableViewDelegate {
 public:
  // The screen's view.
  std::shared_ptr<UITableView> tableView();

  void loadView() override;
};

}  // namespace kestrova::platform

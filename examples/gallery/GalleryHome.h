#pragma once

#include <memory>

#include "platform/uikit/UITableViewController.h"
#include "sdk/Platform.h"

namespace kestrova::gallery {

// The list of pages; a row leads to its page.
class GalleryHome : public UITableViewController {
 public:
  GalleryHome();

  void viewDidLoad() override;
  void viewWillAppear(bool animated) override;

  std::size_t tableViewNumberOfRowsInSection(UITableView& table, std::size_t section) override;
  std::shared_ptr<UITableViewCell> tableViewCellForRowAt(UITableView& table,
                                                         const IndexPath& indexPath) override;
  std::string tableViewAccessibilityLabelForRowAt(UITableView& table,
                                                  const IndexPath& indexPath) override;
  void tableViewDidSelectRowAt(UITableView& table, const IndexPath& indexPath) override;
};

}  // namespace kestrova::gallery

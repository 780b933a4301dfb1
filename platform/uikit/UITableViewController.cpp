#include "platform/uikit/UITableViewController.h"

#include "platform/foundation/Print.h"
#include "platform/uikit/UIStoryboardScene.h"
#include "platform/uikit/UITableView.h"

namespace kestrova::platform {

std::shared_ptr<UITableView> UITableViewController::tableView() {
  return std::static_pointer_cast<UITableView>(view());
}

void UITableViewController::loadView() {
  if (scene()) UIViewController::loadView();
  auto table = std::dynamic_pointer_cast<UITableView>(viewIfLoaded());
  if (!table) {
    if (scene()) print("Kestrova: the screen \"" + scene()->identifier + "\" has no table");
    table = std::make_shared<UITableView>();
    setView(table);
  }
  table->dataSource = shared(this);
  table->delegate = shared(this);
  // What has been laid out before had nobody to ask.
  table->setNeedsLayout();
}

}  // namespace kestrova::platform

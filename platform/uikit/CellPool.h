#pragma once

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>

namespace kestrova::platform {

class UITableViewCell;

// A table's prototypes, and the cells made from them that no row shows. Main thread.
class CellPool {
 public:
  using Factory = std::function<std::shared_ptr<UITableViewCell>()>;

  void registerPrototype(std::string identifier, Factory factory);
  // One that was put here, the oldest first, else a new one; null where the prototype is unknown or
  // makes none.
  std::shared_ptr<UITableViewCell> take(std::string_view identifier);
  void put(const std::shared_ptr<UITableViewCell>& cell);

 private:
  struct Prototype {
    Factory factory;
    std::deque<std::shared_ptr<UITableViewCell>> spare;
  };

  std::map<std::string, Prototype, std::less<>> prototypes_;
};

}  // namespace kestrova::platform

#include "platform/uikit/CellPool.h"

#include <utility>

#include "platform/uikit/UITableViewCell.h"

namespace kestrova::platform {

namespace {

// For a data source that makes new cells instead of using these.
constexpr std::size_t kMostSpare = 32;

}  // namespace

void CellPool::registerPrototype(std::string identifier, Factory factory) {
  prototypes_.insert_or_assign(std::move(identifier), Prototype{std::move(factory), {}});
}

std::shared_ptr<UITableViewCell> CellPool::take(std::string_view identifier) {
  const auto found = prototypes_.find(identifier);
  if (found == prototypes_.end()) return nullptr;
  auto& spare = found->second.spare;
  if (!spare.empty()) {
    auto cell = std::move(spare.front());
    spare.pop_front();
    return cell;
  }
  const Factory factory = found->second.factory;
  auto cell = factory ? factory() : nullptr;
  if (cell) cell->reuseIdentifier_ = identifier;
  return cell;
}

void CellPool::put(const std::shared_ptr<UITableViewCell>& cell) {
  const auto found = prototypes_.find(cell->reuseIdentifier());
  if (found == prototypes_.end() || found->second.spare.size() >= kMostSpare) return;
  found->second.spare.push_back(cell);
}

}  // namespace kestrova::platform

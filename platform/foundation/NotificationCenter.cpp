#include "platform/foundation/NotificationCenter.h"

#include <algorithm>
#include <utility>

namespace kestrova::platform {

NotificationCenter& NotificationCenter::defaultCenter() {
  static NotificationCenter center;
  return center;
}

void NotificationCenter::add(std::weak_ptr<void> owner, const void* observer, std::string_view name,
                             const void* object, Handler handler) {
  auto registration = std::make_shared<const Registration>(
      Registration{std::move(owner), observer, std::string(name), object, std::move(handler)});
  const std::lock_guard lock(mutex_);
  std::erase_if(registrations_, [](const auto& known) { return known->owner.expired(); });
  registrations_.push_back(std::move(registration));
}

void NotificationCenter::removeObserver(const void* observer, std::string_view name,
                                        const void* object) {
  const std::lock_guard lock(mutex_);
  std::erase_if(registrations_, [&](const auto& known) {
    return known->observer == observer && (name.empty() || known->name == name) &&
           (!object || known->object == object);
  });
}

void NotificationCenter::post(const Notification& notification) {
  const auto current = [this] {
    const std::lock_guard lock(mutex_);
    return registrations_;
  }();
  for (const auto& registration : current) {
    if (!registration->name.empty() && registration->name != notification.name) continue;
    if (registration->object && registration->object != notification.object) continue;
    const auto owner = registration->owner.lock();
    if (!owner) continue;
    {
      const std::lock_guard lock(mutex_);
      if (std::ranges::find(registrations_, registration) == registrations_.end()) continue;
    }
    registration->handler(notification);
  }
}

}  // namespace kestrova::platform

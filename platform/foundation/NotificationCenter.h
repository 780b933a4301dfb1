#pragma once

#include <any>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace kestrova::platform {

struct Notification {
  std::string name;
  // Who posted it; only its identity counts. May be null.
  const void* object = nullptr;
  std::map<std::string, std::any, std::less<>> userInfo;
};

// Tells observers of named events, on the thread that posts, in the order of their registration.
// Any thread. A handler may add and remove observers and post; who is removed meanwhile is not
// called any more, who is added is called from the next post on.
class NotificationCenter {
 public:
  using Handler = std::function<void(const Notification&)>;

  static NotificationCenter& defaultCenter();

  // Calls `selector` for notifications named `name` (every name where empty) from `object` (every
  // sender where null) as long as `observer` lives. The observer is kept alive during a call.
  template <typename Observer>
  void addObserver(const std::shared_ptr<Observer>& observer,
                   std::function<void(Observer&, const Notification&)> selector,
                   std::string_view name, const void* object = nullptr) {
    add(observer, observer.get(), name, object,
        [owner = observer.get(), selector = std::move(selector)](const Notification& notification) {
          selector(*owner, notification);
        });
  }
  // Removes the registrations of `observer` that were made with that name and object; an empty name
  // and a null object stand for all.
  void removeObserver(const void* observer, std::string_view name = {},
                      const void* object = nullptr);

  void post(const Notification& notification);

 private:
  struct Registration {
    std::weak_ptr<void> owner;
    const void* observer;
    std::string name;
    const void* object;
    Handler handler;
  };

  void add(std::weak_ptr<void> owner, const void* observer, std::string_view name,
           const void* object, Handler handler);

  std::mutex mutex_;
  std::vector<std::shared_ptr<const Registration>> registrations_;
};

}  // namespace kestrova::platform

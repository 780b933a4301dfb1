#include "platform/foundation/NotificationCenter.h"

#include <gtest/gtest.h>

namespace kestrova::platform {
namespace {

struct Listener {
  int heard = 0;
};

class NotificationCenterTest : public testing::Test {
 protected:
  void listen(std::string_view name, const void* object = nullptr) {
    center.addObserver<Listener>(
        listener, [](Listener& self, const Notification&) { ++self.heard; }, name, object);
  }

  void post(std::string_view name, const void* object = nullptr) {
    center.post({std::string(name), object, {}});
  }

  NotificationCenter center;
  std::shared_ptr<Listener> listener = std::make_shared<Listener>();
};

TEST_F(NotificationCenterTest, TellsObserversOfTheirNameAndSenderOnly) {
  const int sender = 0;
  listen("shown");
  listen("hidden", &sender);
  post("shown");
  post("other");
  post("hidden");
  EXPECT_EQ(listener->heard, 1);
  post("hidden", &sender);
  EXPECT_EQ(listener->heard, 2);
}

TEST_F(NotificationCenterTest, CarriesUserInformation) {
  double height = 0;
  center.addObserver<Listener>(
      listener,
      [&](Listener&, const Notification& notification) {
        height = std::any_cast<double>(notification.userInfo.at("height"));
      },
      "shown");
  center.post({"shown", nullptr, {{"height", 216.0}}});
  EXPECT_EQ(height, 216.0);
}

TEST_F(NotificationCenterTest, StopsWhenRemovedAndWhenTheObserverIsGone) {
  listen("a");
  listen("b");
  center.removeObserver(listener.get(), "a");
  post("a");
  post("b");
  EXPECT_EQ(listener->heard, 1);
  listener.reset();
  post("b");
}

TEST_F(NotificationCenterTest, AnObserverMayRemoveAnotherOrDropItselfInItsHandler) {
  auto second = std::make_shared<Listener>();
  const std::weak_ptr<Listener> first = listener;
  center.addObserver<Listener>(
      listener,
      [&](Listener& self, const Notification&) {
        center.removeObserver(second.get());
        listener.reset();
        ++self.heard;  // alive for the length of the call
      },
      "a");
  center.addObserver<Listener>(
      second, [](Listener& self, const Notification&) { ++self.heard; }, "a");
  post("a");
  EXPECT_TRUE(first.expired());
  EXPECT_EQ(second->heard, 0);
}

}  // namespace
}  // namespace kestrova::platform

#include "sdk/ui/DeviceModel.h"

#include <cstdlib>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <sys/utsname.h>

namespace kestrova::test {
namespace {

class DeviceModelTest : public ::testing::Test {
 protected:
  DeviceModelTest() { simulate(nullptr); }
  ~DeviceModelTest() override {
    simulate(nullptr);
    UIDeviceExtensions::setMachineIdentifier({});
  }

  // NOLINTBEGIN(concurrency-mt-unsafe): before any other thread runs.
  static void simulate(const char* identifier) {
    if (identifier) {
      ::setenv("SIMULATOR_MODEL_IDENTIFIER", identifier, 1);
    } else {
      ::unsetenv("SIMULATOR_MODEL_IDENTIFIER");
    }
  }
  // NOLINTEND(concurrency-mt-unsafe)
};

TEST_F(DeviceModelTest, namesHardwareByTheTable) {
  const auto name = UIDeviceExtensions::mapToDevice;
  EXPECT_EQ(name("iPhone8,4"), "iPhone SE");
  EXPECT_EQ(name("iPhone6,2"), "iPhone 5s");
  EXPECT_EQ(name("iPhone5,4"), "iPhone 5c");
  EXPECT_EQ(name("iPhone5,1"), "iPhone 5");
  EXPECT_EQ(name("iPod5,1"), "iPod Touch 5");
  EXPECT_EQ(name("iPad6,4"), "iPad Pro (9.7-inch)");
  EXPECT_EQ(name("iPad8,8"), "iPad Pro (12.9-inch) (3rd generation)");
  EXPECT_EQ(name("AudioAccessory1,1"), "HomePod");
  for (const auto* const unknown : {"iPhone12,1", "iphone8,4", "iPhone8,4 ", ""}) {
    EXPECT_EQ(name(unknown), unknown);
  }
}

TEST_F(DeviceModelTest, namesWhatASimulatorSimulates) {
  const auto name = UIDeviceExtensions::mapToDevice;
  EXPECT_EQ(name("i386"), "Simulator iOS");
  simulate("iPad7,5");
  EXPECT_EQ(name("x86_64"), "Simulator iPad 6");
  simulate("Later1,1");
  EXPECT_EQ(name("x86_64"), "Simulator Later1,1");
  for (const auto* const nested : {"i386", "x86_64"}) {
    simulate(nested);
    EXPECT_EQ(name("i386"), std::string("Simulator ") + nested);
  }
}

TEST_F(DeviceModelTest, keepsTheNameForTheProcess) {
  UIDeviceExtensions::setMachineIdentifier("x86_64");
  simulate("iPhone10,4");
  EXPECT_EQ(UIDeviceExtensions::modelName(), "Simulator iPhone 8");
  simulate("iPhone9,1");
  std::vector<std::thread> readers;
  for (int i = 0; i < 4; ++i) {
    readers.emplace_back([] { EXPECT_EQ(UIDeviceExtensions::modelName(), "Simulator iPhone 8"); });
  }
  for (auto& reader : readers) reader.join();
  UIDeviceExtensions::setMachineIdentifier("iPhone6,1");
  EXPECT_EQ(UIDeviceExtensions::modelName(), "iPhone 5s");
}

TEST_F(DeviceModelTest, asksTheSystemForTheMachine) {
  utsname system{};
  ASSERT_EQ(::uname(&system), 0);
  EXPECT_EQ(UIDeviceExtensions::modelName(), UIDeviceExtensions::mapToDevice(system.machine));
}

}  // namespace
}  // namespace kestrova::test

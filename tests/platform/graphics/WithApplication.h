#pragma once

#include <cstdlib>
#include <memory>

#include <QtGui/QGuiApplication>
#include <gtest/gtest.h>

namespace kestrova::test {

// A test in a process with an interface, drawn into memory.
class WithApplication : public ::testing::Test {
 protected:
  WithApplication() {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): the tests are on one thread.
    ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
    application_ = std::make_unique<QGuiApplication>(count_, arguments_);
  }

 private:
  int count_ = 1;
  char name_[5] = "test";
  char* arguments_[2] = {name_, nullptr};
  std::unique_ptr<QGuiApplication> application_;
};

}  // namespace kestrova::test

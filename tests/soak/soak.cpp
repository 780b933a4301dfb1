// Complete verifications one after the other in one process, without a display and under a clock
// that is moved by hand, against a sandbox on this machine. Writes what the process holds after
// each to standard error; the status is 0 where every run was complete and nothing grew. usage:
// soak RUNS SPECIMENS

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <malloc.h>

#include "examples/enduser/DemoCameras.h"
#include "examples/enduser/EndUser.h"
#include "platform/capture/CameraConfiguration.h"
#include "platform/foundation/FileManager.h"
#include "platform/uikit/AnimationClock.h"
#include "platform/uikit/UIAccessibility.h"
#include "platform/uikit/UIViewController.h"
#include "platform/uikit/UIWindow.h"
#include "sandbox/Sandbox.h"
#include "sdk/backend/BackendTransport.h"
#include "sdk/core/Kestrova.h"
#include "tests/support/TemporaryDirectory.h"

namespace kestrova {
namespace {

// Libraries fill their caches in the first runs.
constexpr int kWarmUp = 4;
constexpr const char* kDocuments[] = {"PASSPORT", "DRIVERS_LICENSE", "NATIONAL_ID_CARD"};

std::size_t entries(const std::filesystem::path& folder) {
  std::size_t count = 0;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    static_cast<void>(entry);
    ++count;
  }
  return count;
}

// What the process holds.
struct Held {
  std::size_t descriptors = 0;
  std::size_t threads = 0;
  std::size_t temporaryFiles = 0;
  std::size_t documents = 0;
  // KiB in memory.
  std::size_t memory = 0;
};

class Soak {
 public:
  explicit Soak(const std::filesystem::path& specimens) {
    host_.resize(375, 667);
    host_.show();
    controller_ = UIViewController::wrapping(host_);
    DemoCameras cameras;
    cameras.specimens = specimens;
    cameras.use(controller_);
    AnimationClock::shared().useManualTime();
  }

  ~Soak() {
    BackendTransport::replace(nullptr);
    CameraConfiguration::set({});
    AnimationClock::shared().useSystemTime();
  }
  Soak(const Soak&) = delete;
  Soak& operator=(const Soak&) = delete;

  bool start() {
    sandbox::Options options;
    options.port = 0;
    options.listingPort = 0;
    options.store = directory_.path() / "store";
    auto started = sandbox::Sandbox::start(std::move(options));
    if (!started) return fail(started.error());
    server_ = std::move(started.value());
    std::filesystem::create_directory(temporary_);
    auto configuration = BackendTransport::defaultConfiguration();
    configuration.trustedAuthorities = server_->authorityFile();
    configuration.connectTo =
        std::string(KESTROVA_BACKEND_HOST) + ":127.0.0.1:" + std::to_string(server_->port());
    configuration.honoursProxy = false;
    configuration.temporaryDirectory = temporary_;
    BackendTransport::replace(HTTPTransport::make(std::move(configuration)));
    Kestrova::initialize("soak-key");
    return true;
  }

  bool run(const std::string& document) {
    const bool isPassport = document == "PASSPORT";
    requests_ += isPassport ? 10 : 12;
    EndUser user(controller_, {.document = document});
    user.pass = [this] { pass(); };
    Kestrova::startVerification(controller_);
    if (const auto vain = user.verify()) return fail("waited in vain for " + *vain);
    if (!QTest::qWaitFor([this] { return answered() >= requests_; }, 20'000)) {
      return fail("some requests were never answered");
    }
    return true;
  }

  // After a run, once what it sent has gone.
  Held held() {
    Held held;
    if (!QTest::qWaitFor([this] { return entries(temporary_) == 0; }, 10'000)) {
      held.temporaryFiles = entries(temporary_);
    }
    held.descriptors = entries("/proc/self/fd");
    held.threads = std::size_t(std::distance(std::filesystem::directory_iterator("/proc/self/task"),
                                             std::filesystem::directory_iterator()));
    held.documents = entries(FileManager::documentDirectory().value());
    // Without what is free: how much of that a heap keeps is the luck of the order in which it was
    // given back.
    ::malloc_trim(0);
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
      if (word == "VmRSS:") status >> held.memory;
    }
    return held;
  }

  // None of the requests may have deviated from the contract.
  bool isFaultless() const {
    for (const auto& request : server_->requests()) {
      for (const auto& deviation : request.deviations) {
        return fail(request.step + ": " + deviation);
      }
    }
    return true;
  }

  static bool fail(const std::string& what) {
    std::fprintf(stderr, "soak: %s\n", what.c_str());
    return false;
  }

 private:
  std::size_t answered() const {
    std::size_t count = 0;
    for (const auto& request : server_->requests()) count += request.status == 200;
    return count;
  }

  void pass() {
    // A camera opens in its own time, for which the screen waits a while by the clock.
    constexpr double kStep = 0.05;
    constexpr double kOpeningStep = 0.005;
    const auto flow = controller_->presentedViewController();
    const bool isOpening =
        flow &&
        accessibilityTree(*flow->view()->window()).find("Starting the camera") != std::string::npos;
    AnimationClock::shared().advance(isOpening ? kOpeningStep : kStep);
    QTest::qWait(1);
  }

  const test::TemporaryDirectory directory_;
  const std::filesystem::path temporary_ = directory_.path() / "uploads";
  std::unique_ptr<sandbox::Sandbox> server_;
  QWidget host_;
  std::shared_ptr<UIViewController> controller_;
  std::size_t requests_ = 0;
};

bool isFlat(const Held& before, const Held& after) {
  constexpr std::size_t kMiB = 1024;
#ifdef __SANITIZE_ADDRESS__
  // Freed memory is kept for a while.
  constexpr std::size_t kGrowth = 512 * kMiB;
#else
  // The pages that the sandbox keeps of its record, at most 2 MiB, and as much for luck.
  constexpr std::size_t kGrowth = 4 * kMiB;
#endif
  // Idle threads of the queues come and go.
  constexpr std::size_t kQueues = 4;
  if (after.memory > before.memory + kGrowth) return Soak::fail("the memory grew");
  if (after.descriptors != before.descriptors) return Soak::fail("the descriptors changed");
  if (after.threads > before.threads + kQueues) return Soak::fail("the threads became more");
  if (after.temporaryFiles != 0) return Soak::fail("temporary files stayed");
  return true;
}

int soak(int runs, const std::filesystem::path& specimens) {
  Soak soak(specimens);
  if (!soak.start()) return 1;
  std::fprintf(stderr, "%4s %12s %8s %10s %10s %10s\n", "run", "descriptors", "threads",
               "temporary", "documents", "KiB");
  Held before;
  Held after;
  for (int number = 1; number <= runs; ++number) {
    if (!soak.run(kDocuments[std::size_t(number) % std::size(kDocuments)])) return 1;
    after = soak.held();
    if (number <= kWarmUp) before = after;
    const bool isTold = number <= kWarmUp || number % 20 == 0 || number == runs;
    if (isTold) {
      std::fprintf(stderr, "%4d %12zu %8zu %10zu %10zu %10zu\n", number, after.descriptors,
                   after.threads, after.temporaryFiles, after.documents, after.memory);
    }
    // The movie and the pictures of both sides, of the last run alone.
    if (after.documents != 3) {
      Soak::fail("the documents are not three");
      return 1;
    }
  }
  return isFlat(before, after) && soak.isFaultless() ? 0 : 1;
}

}  // namespace
}  // namespace kestrova

int main(int count, char** arguments) {
  if (count != 3 || std::atoi(arguments[1]) < 1) {
    std::fputs("usage: soak RUNS SPECIMENS\n", stderr);
    return 2;
  }
  // One heap for all threads, or what it holds would be told by the luck of which thread was free.
  mallopt(M_ARENA_MAX, 1);
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const kestrova::test::TemporaryDirectory data;
  qputenv("XDG_DATA_HOME", QByteArray::fromStdString(data.path().string()));
  QApplication application(count, arguments);
  return kestrova::soak(std::atoi(arguments[1]), arguments[2]);
}

// From the press of the shutter, by way of "Use photo" as soon as it is there, to the answer of the
// upload, on a photograph of 3000 x 4000 pixels; against vips, which makes the same small picture
// of the same file, and curl, which sends it to the same sandbox. By turns, so that other load
// meets both. The screen's animations run by the real clock; none of them is waited for in between.

#include <vector>

#include "bench/Report.h"
#include "bench/capture/Media.h"
#include "bench/capture/Phone.h"
#include "bench/capture/SandboxProcess.h"
#include "examples/enduser/UsableButton.h"
#include "platform/capture/CameraConfiguration.h"
#include "platform/capture/UIImagePickerController.h"
#include "platform/foundation/FileManager.h"
#include "platform/uikit/UINavigationController.h"
#include "platform/uikit/UIStoryboardScene.h"
#include "sdk/core/Kestrova.h"
#include "sdk/flow/ScanBacksideViewController.h"
#include "sdk/flow/ScanIDInstructionsViewController.h"

namespace kestrova::bench {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int kRuns = 9;

double millisecondsSince(Clock::time_point begin) {
  return std::chrono::duration<double, std::milli>(Clock::now() - begin).count();
}

class Ours {
 public:
  Ours(const Phone& phone, std::shared_ptr<CountingTransport> transport)
      : transport_(std::move(transport)) {
    Kestrova::startVerification(phone.host);
    await("the flow", [&] {
      const auto flow = phone.host->presentedViewController();
      return flow && !flow->children().empty() && Kestrova::authentication_key;
    });
    stack_ = std::dynamic_pointer_cast<UINavigationController>(
        phone.host->presentedViewController()->children().front());
    handleEventsFor(std::chrono::milliseconds(500));
  }

  struct Times {
    double untilSeen;
    double all;
  };
  Times run() {
    const auto made = stack_->viewControllers().front()->scene()->instantiate("ScanIDInstructions");
    const auto screen = std::dynamic_pointer_cast<ScanIDInstructionsViewController>(made.value());
    screen->selectedDocumentType = "NATIONAL_ID_CARD";
    stack_->pushViewController(screen, false);
    Phone::tap(*screen, "Take photo");
    await("the live picture", [&] {
      return screen->presentedViewController() == screen->mediaUI &&
             usableButton(*screen->mediaUI->view(), "Take photo");
    });
    handleEventsFor(std::chrono::seconds(1));

    const auto answered = transport_->ended() + 1;
    const auto begin = Clock::now();
    Phone::tap(*screen->mediaUI, "Take photo");
    await("the photograph",
          [&] { return usableButton(*screen->mediaUI->view(), "Use photo") != nullptr; });
    Times times{millisecondsSince(begin), 0};
    Phone::tap(*screen->mediaUI, "Use photo");
    await("the answer", [&] { return transport_->ended() >= answered; });
    times.all = millisecondsSince(begin);

    // The step that is recorded afterwards.
    await("the next answer", [&] { return transport_->ended() >= answered + 1; });
    await("the next screen", [&] {
      return std::dynamic_pointer_cast<ScanBacksideViewController>(stack_->topViewController()) !=
             nullptr;
    });
    handleEventsFor(std::chrono::milliseconds(500));
    while (stack_->viewControllers().size() > 1) stack_->popViewController(false);
    handleEventsFor(std::chrono::milliseconds(100));
    return times;
  }

 private:
  std::shared_ptr<CountingTransport> transport_;
  std::shared_ptr<UINavigationController> stack_;
};

// What a shell does instead. The expectation of a first answer, for which curl waits a second, is
// left out.
std::string commands(const SandboxProcess& sandbox) {
  const std::string picture =
      "vips thumbnail photo.jpg theirs.png[compression=6,filter=all,strip] 990 --height 1320 "
      "--size force";
  const std::string url = "https://" KESTROVA_BACKEND_HOST "/api/v1/authentications/document_files";
  return picture +
         " && curl --silent --show-error --fail --noproxy '*' --output answer --cacert '" +
         sandbox.authority() + "' --connect-to '" + sandbox.connectTo() +
         "' -H Expect: -F api_key=" + Kestrova::apiKey.value_or("") +
         " -F key=" + Kestrova::authentication_key.value_or("") +
         " -F step=record_authentication_document_video "
         "-F 'picture=@theirs.png;filename=picture.png;type=image/png' " +
         url;
}

void measure(const std::filesystem::path& folder, const SandboxProcess& sandbox,
             const Phone& phone) {
  Ours ours(phone, sandbox.use(folder));
  const std::string theirs = commands(sandbox);
  std::vector<double> seen;
  std::vector<double> mine;
  std::vector<double> others;
  for (int i = 0; i <= kRuns; ++i) {
    const auto times = ours.run();
    const auto begin = Clock::now();
    bench::run(folder, theirs);
    const double other = millisecondsSince(begin);
    // Each has warmed up.
    if (i == 0) continue;
    seen.push_back(times.untilSeen);
    mine.push_back(times.all);
    others.push_back(other);
  }
  const auto file = FileManager::documentDirectory().value() / "picture.png";
  const auto made = UIImage::make(FileManager::contents(file).value());
  if (!made || made.value().size() != CGSize{990, 1320}) {
    std::fputs("the picture that was sent is not 990 x 1320 pixels\n", stderr);
    std::_Exit(1);
  }
  std::fflush(stdout);
  bench::run(folder, "printf '%-46s ' 'likeness of both pictures, dB' && compare -metric PSNR '" +
                         file.string() + "' theirs.png null: 2>&1; echo");
  const auto size = [](const std::filesystem::path& path) {
    return static_cast<double>(std::filesystem::file_size(path)) / 1024;
  };
  std::printf("%-46s %9.2f ms, a file of %.0f KiB\n", "vips and curl", median(others),
              size(folder / "theirs.png"));
  std::printf("%-46s %9.2f ms, a file of %.0f KiB\n", "shutter to upload finished", median(mine),
              size(file));
  std::printf("%-46s %9.2f ms\n", "  of that, until the photograph is seen", median(seen));
  report("shutter to upload finished, ratio", median(mine) / median(others), "x", 0.6);
}

}  // namespace
}  // namespace kestrova::bench

int main(int count, char** arguments) {
  using namespace kestrova;
  using namespace kestrova::bench;
  setUpDisplay();
  const test::TemporaryDirectory folder;
  ::setenv("XDG_DATA_HOME", (folder.path() / "data").c_str(), 1);
  SandboxProcess sandbox(folder.path() / "store");
  makePhotograph(folder.path(), "photo.jpg");
  QApplication application(count, arguments);
  Kestrova::initialize("bench-key");
  CameraConfiguration cameras;
  cameras.rear = folder.path() / "photo.jpg";
  CameraConfiguration::set(cameras);
  {
    const Phone phone;
    measure(folder.path(), sandbox, phone);
    phone.host->dismiss(false);
    handleEventsFor(std::chrono::milliseconds(200));
  }
  BackendTransport::replace(nullptr);
  CameraConfiguration::set({});
  return sandbox.finish() && allMet ? 0 : 1;
}

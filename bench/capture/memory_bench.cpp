// What a whole verification needs at its peak: photographs of 12 megapixels on both sides of the
// document, the face from a video of 1280 x 720 pixels, the movie of it, and all uploads, at the
// pace of a person. The sandbox is another process.

#include "bench/Report.h"
#include "bench/capture/Media.h"
#include "bench/capture/Phone.h"
#include "bench/capture/SandboxProcess.h"
#include "examples/enduser/DemoCameras.h"
#include "platform/capture/CameraConfiguration.h"
#include "sdk/core/Kestrova.h"

int main(int count, char** arguments) {
  using namespace kestrova;
  using namespace kestrova::bench;
  setUpDisplay();
  const test::TemporaryDirectory folder;
  ::setenv("XDG_DATA_HOME", (folder.path() / "data").c_str(), 1);
  SandboxProcess sandbox(folder.path() / "store");
  makePhotograph(folder.path(), "front.jpg");
  run(folder.path(), "convert front.jpg -rotate 180 back.jpg");
  makeVideo(folder.path(), 10);

  QApplication application(count, arguments);
  const auto transport = sandbox.use(folder.path());
  Kestrova::initialize("bench-key");
  const Phone phone;
  DemoCameras cameras;
  cameras.face = folder.path() / "video.mov";
  cameras.front = folder.path() / "front.jpg";
  cameras.back = folder.path() / "back.jpg";
  cameras.use(phone.host);

  EndUser user(phone.host, {.document = "NATIONAL_ID_CARD"});
  user.pass = [] { handleEventsFor(std::chrono::milliseconds(10)); };
  double last = 0;
  user.look = [&](const std::string& name) {
    const double peak = memory("VmHWM");
    if (peak > last + 1) std::printf("  %-44s %9.2f MiB\n", ("peak up to: " + name).c_str(), peak);
    last = std::max(last, peak);
  };
  Kestrova::startVerification(phone.host);
  handleEventsFor(std::chrono::seconds(1));
  std::printf("%-46s %9.2f MiB\n", "peak with the first screen shown", memory("VmHWM"));
  if (const auto vain = user.verify()) {
    std::fprintf(stderr, "waited in vain for %s\n", vain->c_str());
    return 1;
  }
  constexpr std::size_t kRequests = 12;
  await("the answers", [&] { return transport->ended() >= kRequests; });
  report("peak of a whole run with 12-megapixel captures", memory("VmHWM"), "MiB", 200);
  std::printf("%-46s %9.2f MiB\n", "left after it", memory("VmRSS"));

  BackendTransport::replace(nullptr);
  CameraConfiguration::set({});
  return sandbox.finish() && allMet ? 0 : 1;
}

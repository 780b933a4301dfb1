// The transport against libcurl used directly, over TLS to a server in a process of its own. Prints
// medians, ratios and whether each goal is met; the exit status says the same.

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include <curl/curl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "bench/Report.h"
#include "platform/dispatch/RunLoop.h"
#include "platform/network/HTTPTransport.h"
#include "platform/network/MultipartFormData.h"
#include "tests/support/CannedServer.h"

namespace {

using namespace kestrova;
using namespace kestrova::bench;
using namespace kestrova::platform;

constexpr auto kStepURL = "https://localhost/api/v1/authentications/steps";
constexpr std::string_view kStepBody = "api_key=K&country_code=de&key=A&step=set_nationality";
constexpr auto kContentType = "application/x-www-form-urlencoded; charset=utf-8";
constexpr std::size_t kUploadBytes = std::size_t{50} << 20U;

double microseconds(const std::function<void()>& work) {
  const auto begin = DispatchClock::now();
  work();
  return std::chrono::duration<double, std::micro>(DispatchClock::now() - begin).count();
}

void resetPeak() {
  std::ofstream("/proc/self/clear_refs") << "5";
}

void await(const std::function<void(HTTPTransport::AnswerHandler)>& start) {
  bool answered = false;
  start([&answered](const Result<JSONValue>& answer) { answered = static_cast<bool>(answer); });
  if (!RunLoop::runUntil([&answered] { return answered; },
                         DispatchClock::now() + std::chrono::seconds(60))) {
    std::fputs("a request failed\n", stderr);
    std::_Exit(1);
  }
}

// libcurl on the calling thread, one handle, its connection kept.
class Direct {
 public:
  explicit Direct(const HTTPTransportConfiguration& configuration)
      : connectTo_(curl_slist_append(nullptr, configuration.connectTo.c_str())),
        authorities_(configuration.trustedAuthorities) {}
  Direct(const Direct&) = delete;
  Direct& operator=(const Direct&) = delete;
  ~Direct() {
    curl_easy_cleanup(handle_);
    curl_slist_free_all(connectTo_);
  }

  void step() {
    set(kStepURL);
    const std::string header = std::string("Content-Type: ") + kContentType;
    curl_slist* const headers = curl_slist_append(nullptr, header.c_str());
    curl_easy_setopt(handle_, CURLOPT_HTTPHEADER, headers);
    curl_easy_setopt(handle_, CURLOPT_POSTFIELDS, kStepBody.data());
    perform();
    curl_slist_free_all(headers);
  }

  void upload(const std::string& file) {
    set("https://localhost/upload");
    curl_mime* const form = curl_mime_init(handle_);
    for (const auto& [name, value] :
         {std::pair{"api_key", "K"}, {"key", "A"}, {"step", "record_face_video"}}) {
      curl_mimepart* const part = curl_mime_addpart(form);
      curl_mime_name(part, name);
      curl_mime_data(part, value, CURL_ZERO_TERMINATED);
    }
    curl_mimepart* const part = curl_mime_addpart(form);
    curl_mime_name(part, "video");
    curl_mime_filedata(part, file.c_str());
    curl_mime_type(part, "video/quicktime");
    curl_easy_setopt(handle_, CURLOPT_MIMEPOST, form);
    curl_slist* const headers = curl_slist_append(nullptr, "Expect:");
    curl_easy_setopt(handle_, CURLOPT_HTTPHEADER, headers);
    perform();
    curl_slist_free_all(headers);
    curl_mime_free(form);
  }

 private:
  void set(const char* url) {
    curl_easy_reset(handle_);
    answer_.clear();
    curl_easy_setopt(handle_, CURLOPT_URL, url);
    curl_easy_setopt(handle_, CURLOPT_CONNECT_TO, connectTo_);
    curl_easy_setopt(handle_, CURLOPT_CAINFO, authorities_.c_str());
    curl_easy_setopt(handle_, CURLOPT_CAPATH, nullptr);
    curl_easy_setopt(handle_, CURLOPT_PROXY, "");
    curl_easy_setopt(handle_, CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
    curl_easy_setopt(handle_, CURLOPT_WRITEDATA, &answer_);
    curl_easy_setopt(
        handle_, CURLOPT_WRITEFUNCTION,
        +[](char* data, std::size_t size, std::size_t count, void* answer) {
          static_cast<std::string*>(answer)->append(data, size * count);
          return size * count;
        });
  }

  void perform() {
    if (curl_easy_perform(handle_) != CURLE_OK || answer_.empty()) {
      std::fputs("a direct request failed\n", stderr);
      std::_Exit(1);
    }
  }

  CURL* const handle_ = curl_easy_init();
  curl_slist* const connectTo_;
  const std::string authorities_;
  std::string answer_;
};

void benchSteps(HTTPTransport& transport, Direct& direct) {
  const auto ours = [&transport] {
    await([&transport](auto handler) {
      HTTPRequest request;
      request.url = kStepURL;
      request.headers = {{"Content-Type", kContentType}};
      request.body = kStepBody;
      transport.sendForJSON(std::move(request), handler);
    });
  };
  std::vector<double> through;
  std::vector<double> floor;
  for (int i = 0; i < 1100; ++i) {
    const double a = microseconds(ours);
    const double b = microseconds([&direct] { direct.step(); });
    if (i < 100) continue;  // warm both
    through.push_back(a);
    floor.push_back(b);
  }
  std::printf("%-46s %9.2f us\n", "step, libcurl directly with reuse", median(floor));
  report("step, through the transport", median(through), "us", 250);
  report("step, ratio", median(through) / median(floor), "x", 3);
}

void benchUpload(HTTPTransport& transport, Direct& direct, const std::string& file) {
  const auto ours = [&transport, &file] {
    await([&transport, &file](auto handler) {
      transport.upload(
          "https://localhost/upload", {},
          [&file](MultipartFormData& form) {
            for (const char* const name : {"api_key", "key", "step"}) form.append("K", name);
            form.append(std::filesystem::path(file), "video", "video.mov", "video/quicktime");
          },
          [](const NSError& error) { std::puts(error.localizedDescription.c_str()); }, handler);
    });
  };
  resetPeak();
  const double before = memory("VmRSS");
  ours();
  const double rise = memory("VmHWM") - before;
  std::vector<double> through;
  std::vector<double> floor;
  for (int i = 0; i < 11; ++i) {
    const double a = microseconds(ours);
    const double b = microseconds([&] { direct.upload(file); });
    if (i == 0) continue;
    through.push_back(a);
    floor.push_back(b);
  }
  const auto rate = [](double time) { return static_cast<double>(kUploadBytes) / time; };
  std::printf("%-46s %9.2f MB/s\n", "50 MiB upload, libcurl's own form", rate(median(floor)));
  std::printf("%-46s %9.2f MB/s\n", "50 MiB upload, through the transport", rate(median(through)));
  report("50 MiB upload, throughput ratio", median(floor) / median(through), "x", 0.8, false);
  report("50 MiB upload, rise of the peak", rise, "MiB", 54);
}

// Serves until the pipe ends; its settings travel through the other pipe.
[[noreturn]] void serve(int settings, int end) {
  {
    const test::CannedServer server([](const sandbox::HttpRequest&) {
      return sandbox::HttpAnswer{200, "application/json", R"({"status":"ok"})"};
    });
    const auto configuration = server.configuration();
    const std::string line =
        configuration.connectTo + "\n" + configuration.trustedAuthorities.string() + "\n";
    static_cast<void>(::write(settings, line.data(), line.size()));
    char byte = 0;
    static_cast<void>(::read(end, &byte, 1));
  }
  std::_Exit(0);
}

}  // namespace

int main() {
  std::array<int, 2> settings{};
  std::array<int, 2> end{};
  if (::pipe(settings.data()) != 0 || ::pipe(end.data()) != 0) return 1;
  const pid_t child = ::fork();
  if (child == 0) {
    ::close(end[1]);
    serve(settings[1], end[0]);
  }
  ::close(settings[1]);
  std::string text;
  for (char byte = 0; std::count(text.begin(), text.end(), '\n') < 2;) {
    if (::read(settings[0], &byte, 1) != 1) return 1;
    text += byte;
  }
  HTTPTransportConfiguration configuration;
  configuration.userAgent = "bench";
  configuration.connectTo = text.substr(0, text.find('\n'));
  configuration.trustedAuthorities =
      text.substr(text.find('\n') + 1, text.size() - text.find('\n') - 2);
  configuration.honoursProxy = false;

  const test::TemporaryDirectory directory;
  const std::string file = directory.path() / "movie.mov";
  std::ofstream(file, std::ios::binary) << std::string(kUploadBytes, 'x');
  {
    const auto transport = HTTPTransport::make(configuration);
    Direct direct(configuration);
    benchSteps(*transport, direct);
    benchUpload(*transport, direct, file);
  }
  ::close(end[1]);
  ::waitpid(child, nullptr, 0);
  return allMet ? 0 : 1;
}

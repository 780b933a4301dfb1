// The console's pages over a store of 10,000 authentications, as the server makes them: medians and
// the slowest of many, without the network.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "bench/Report.h"
#include "sandbox/console/Console.h"
#include "sandbox/console/Names.h"

namespace {

using namespace kestrova;
using namespace kestrova::sandbox;

constexpr int authentications = 10000;
constexpr int rounds = 200;

double milliseconds(std::chrono::steady_clock::time_point begin) {
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin)
      .count();
}

std::string keyOf(int number) {
  auto key = std::to_string(number);
  return std::string(32 - key.size(), '0') + key;
}

// A whole run, every request with the headers and fields that the SDK sends.
void recordRun(Store& store, int number) {
  const auto key = keyOf(number);
  for (const auto step : stepsInOrder()) {
    Request request;
    request.received = "2026-01-31T12:00:00.000Z";
    request.method = "POST";
    request.target = "/api/v1/authentications/steps";
    request.head = "POST /api/v1/authentications/steps HTTP/1.1\r\nHost: localhost\r\n\r\n";
    request.headers = {{"Host", "localhost"}, {"Content-Type", "x"}, {"Content-Length", "120"}};
    request.body = std::string(120, 'b');
    request.step = step;
    request.authentication = key;
    request.parameters = {{"api_key", "demo-key"}, {"key", key}, {"step", std::string(step)}};
    if (step == "signup") {
      request.parameters.emplace_back("identifier",
                                      "person" + std::to_string(number) + "@example.com");
    }
    if (number % 10 == 0) request.deviations.emplace_back("field \"key\" came 2 times");
    request.status = 200;
    std::optional<Authentication> opened;
    if (step == "initialize") opened = Authentication{key, "demo-key", request.received};
    if (const auto failure = store.record(request, opened)) {
      std::fprintf(stderr, "%s\n", failure->text.c_str());
      std::exit(1);
    }
  }
}

void measure(const Console& console, const char* what, const std::string& target, double goal) {
  HttpRequest request;
  request.method = "GET";
  request.target = target;
  std::vector<double> times;
  for (int i = 0; i < rounds; ++i) {
    const auto begin = std::chrono::steady_clock::now();
    const auto answer = console.get(request);
    times.push_back(milliseconds(begin));
    if (answer.status != 200) std::exit(1);
  }
  bench::report(what, bench::median(times), "ms", goal);
  bench::report("  its slowest of 200", *std::max_element(times.begin(), times.end()), "ms",
                2 * goal);
}

}  // namespace

int main() {
  auto pattern = (std::filesystem::temp_directory_path() / "console-bench-XXXXXX").string();
  const std::filesystem::path directory = mkdtemp(pattern.data());
  {
    const auto store = Store::open(directory);
    if (!store) {
      std::fprintf(stderr, "%s\n", store.error().c_str());
      return 1;
    }
    const auto begin = std::chrono::steady_clock::now();
    for (int i = 0; i < authentications; ++i) recordRun(*store.value(), i);
    const double each = milliseconds(begin) / (authentications * 12.0);
    bench::report("recording a request", each, "ms", 1);

    const ScenarioSet scenarios;
    const Console console(*store.value(), scenarios);
    measure(console, "first page of 10,000", "/", 20);
    measure(console, "last page of 10,000", "/?before=51", 20);
    measure(console, "search for a part of an address", "/?email=person99", 20);
    measure(console, "search for an address of nobody", "/?email=nobody", 20);
    measure(console, "search for a step", "/?step=check_face_video", 40);
    measure(console, "one authentication", "/authentications/" + keyOf(5000), 20);
    measure(console, "the revision", "/console/revision", 1);

    const auto removal = std::chrono::steady_clock::now();
    if (store.value()->removeAll()) return 1;
    bench::report("removing everything", milliseconds(removal), "ms", 10000);
  }
  std::filesystem::remove_all(directory);
  return bench::allMet ? 0 : 1;
}

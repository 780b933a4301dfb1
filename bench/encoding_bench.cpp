// Form encoding and JSON decoding.

#include <string>

#include <benchmark/benchmark.h>

#include "platform/foundation/JSONSerialization.h"
#include "platform/network/FormEncoding.h"

namespace kestrova::platform {
namespace {

// A form of eight fields, the size of a real step twice over. Goal: under 1 microsecond.
void formEncodingOfEightFields(benchmark::State& state) {
  const JSONDictionary parameters{{"api_key", "3f2c9d0a7be14c55a1f0d2e9b8c7a6f5"},
                                  {"authentication_method", "NATIONAL_ID_CARD"},
                                  {"country_code", "de"},
                                  {"identifier", "ada+lovelace@example.com"},
                                  {"identifier_type", "email"},
                                  {"key", "5d41402abc4b2a76b9719d911017c592"},
                                  {"note", "Straße 1, Zürich & Umgebung"},
                                  {"step", "record_authentication_document_video"}};
  for (auto _ : state) benchmark::DoNotOptimize(formEncoded(parameters));
}
BENCHMARK(formEncodingOfEightFields);

void jsonAnswer(benchmark::State& state) {
  const std::string answer =
      R"({"key":"5d41402abc4b2a76b9719d911017c592","next_step":"set_nationality","status":"ok",)"
      R"("message":"Die Prüfung läuft","retries":[1,2,3],"limits":{"seconds":12.5,"hard":true},)"
      R"("nothing":null,"list":[{"a":1},{"b":2},{"c":3}],"url":"https:\/\/example.com\/x"})";
  for (auto _ : state) {
    benchmark::DoNotOptimize(JSONSerialization::jsonObject(answer, {.fragmentsAllowed = true}));
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * answer.size()));
}
BENCHMARK(jsonAnswer);

void jsonMegabyte(benchmark::State& state) {
  std::string answer = "[";
  while (answer.size() < 1'000'000) {
    answer += R"({"code":"de","name":"germany","rank":12,"share":0.0125,"ok":true},)";
  }
  answer.back() = ']';
  for (auto _ : state) benchmark::DoNotOptimize(JSONSerialization::jsonObject(answer));
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * answer.size()));
}
BENCHMARK(jsonMegabyte)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kestrova::platform

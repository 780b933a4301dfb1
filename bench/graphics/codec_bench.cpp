// The steps that pictures go through, one by one.

#include <cstring>
#include <memory>
#include <vector>

#include <benchmark/benchmark.h>

#include "bench/graphics/Specimens.h"
#include "platform/graphics/CGImageSource.h"
#include "platform/graphics/UIGraphicsImageContext.h"
#include "platform/graphics/UIImage.h"

namespace kestrova::platform {
namespace {

Data asData(const std::string& bytes) {
  Data data(bytes.size());
  std::memcpy(data.bytes(), bytes.data(), bytes.size());
  return data;
}

const std::string& photo() {
  static const std::string file = bench::photograph(test::TemporaryDirectory().path());
  return file;
}

UIImage small(const UIImage& image) {
  auto context = UIGraphicsImageContext::begin({998, 1331}, false, 1);
  if (!image.draw({{}, {998, 1331}}, *context)) std::abort();
  return *context->takeImage();
}

void decodeAPhotograph(benchmark::State& state) {
  for (auto _ : state) {
    benchmark::DoNotOptimize(UIImage::make(asData(photo())).value().cgImage());
  }
}
BENCHMARK(decodeAPhotograph)->Unit(benchmark::kMillisecond);

void scaleADecodedPhotograph(benchmark::State& state) {
  const auto image = UIImage::make(asData(photo())).value();
  if (!image.cgImage()) std::abort();
  for (auto _ : state) benchmark::DoNotOptimize(small(image));
}
BENCHMARK(scaleADecodedPhotograph)->Unit(benchmark::kMillisecond);

void scaleAPhotographWhileDecoding(benchmark::State& state) {
  const auto image = UIImage::make(asData(photo())).value();
  for (auto _ : state) benchmark::DoNotOptimize(small(image));
}
BENCHMARK(scaleAPhotographWhileDecoding)->Unit(benchmark::kMillisecond);

void encodeAPicture(benchmark::State& state) {
  const auto image = small(UIImage::make(asData(photo())).value());
  for (auto _ : state) benchmark::DoNotOptimize(UIImagePNGRepresentation(image));
}
BENCHMARK(encodeAPicture)->Unit(benchmark::kMillisecond);

void decodeAnAnimation(benchmark::State& state) {
  const test::TemporaryDirectory folder;
  bench::run(folder.path(), bench::kPan);
  const auto data =
      std::make_shared<const Data>(asData(bench::contents(folder.path() / "photo.gif")));
  for (auto _ : state) {
    auto source = CGImageSource::make(data).value();
    std::vector<std::shared_ptr<const CGImage>> images;
    for (std::size_t i = 0; i < source.count(); ++i) {
      images.push_back(source.imageAtIndex(i).value());
    }
    benchmark::DoNotOptimize(images);
  }
}
BENCHMARK(decodeAnAnimation)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kestrova::platform

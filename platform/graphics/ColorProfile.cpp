#include "platform/graphics/ColorProfile.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdlib>

#include <lcms2.h>

#include "platform/graphics/PremultipliedAlpha.h"

namespace kestrova::platform {

namespace {

static_assert(std::endian::native == std::endian::little, "TYPE_BGRA_8 is taken for 0xAARRGGBB");

// Real profiles of displays and cameras have a few kilobytes, those with tables up to two
// megabytes.
constexpr std::size_t kMaxSize = 4U << 20;

struct Closer {
  void operator()(void* profile) const { cmsCloseProfile(profile); }
};
using Profile = std::unique_ptr<void, Closer>;

cmsHTRANSFORM transform(const Profile& from, const Profile& to, cmsUInt32Number flags) {
  return cmsCreateTransform(from.get(), TYPE_BGRA_8, to.get(), TYPE_BGRA_8, INTENT_PERCEPTUAL,
                            flags | cmsFLAGS_COPY_ALPHA);
}

void run(cmsHTRANSFORM transform, std::span<std::uint32_t> pixels) {
  cmsDoTransform(transform, pixels.data(), pixels.data(),
                 static_cast<cmsUInt32Number>(pixels.size()));
}

// True if no colour of a grid moves by more than rounding does.
bool isIdentity(cmsHTRANSFORM transform) {
  constexpr std::size_t kSteps = 6;
  std::array<std::uint32_t, kSteps * kSteps * kSteps> before{};
  for (std::size_t i = 0; i < before.size(); ++i) {
    const auto level = [&](std::size_t axis) {
      return static_cast<std::uint32_t>(i / axis % kSteps * 255 / (kSteps - 1));
    };
    before[i] = 0xff000000U | level(kSteps * kSteps) << 16U | level(kSteps) << 8U | level(1);
  }
  auto after = before;
  run(transform, after);
  return std::ranges::equal(before, after, [](std::uint32_t a, std::uint32_t b) {
    const auto isNear = [&](unsigned shift) {
      return std::abs(static_cast<int>(a >> shift & 0xffU) -
                      static_cast<int>(b >> shift & 0xffU)) <= 1;
    };
    return isNear(16) && isNear(8) && isNear(0);
  });
}

}  // namespace

std::shared_ptr<const ColorProfile> ColorProfile::make(std::string_view icc) {
  if (icc.empty() || icc.size() > kMaxSize) return nullptr;
  const Profile profile(
      cmsOpenProfileFromMem(icc.data(), static_cast<cmsUInt32Number>(icc.size())));
  if (!profile || cmsGetColorSpace(profile.get()) != cmsSigRgbData) return nullptr;
  const Profile sRGB(cmsCreate_sRGBProfile());
  // Without the tables that speed up a whole picture and take the most time to make.
  const ColorProfile exact(transform(profile, sRGB, cmsFLAGS_NOOPTIMIZE));
  if (!exact.transform_ || isIdentity(exact.transform_)) return nullptr;
  auto* const fast = transform(profile, sRGB, 0);
  return fast ? std::shared_ptr<const ColorProfile>(new ColorProfile(fast)) : nullptr;
}

ColorProfile::~ColorProfile() {
  if (transform_) cmsDeleteTransform(transform_);
}

void ColorProfile::convert(std::span<std::uint32_t> pixels) const {
  const bool isOpaque =
      std::ranges::all_of(pixels, [](std::uint32_t pixel) { return pixel >> 24U == 255; });
  if (!isOpaque) std::ranges::transform(pixels, pixels.begin(), straight);
  run(transform_, pixels);
  if (!isOpaque) std::ranges::transform(pixels, pixels.begin(), premultiplied);
}

}  // namespace kestrova::platform

#pragma once

#include <cstdint>

namespace kestrova::artwork {

// Opaque 0xRRGGBB; the few colours that every drawing is made of.
using Color = std::uint32_t;

constexpr Color kInk = 0x101828;
constexpr Color kGround = 0xffffff;
constexpr Color kTint = 0xe8f0ff;
constexpr Color kBlue = 0x0057ff;
// A tint that still shows on the tint: hair, what is not yet reached.
constexpr Color kDeepTint = 0xc2d6ff;

}  // namespace kestrova::artwork

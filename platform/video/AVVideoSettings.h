#pragma once

#include <any>
#include <map>
#include <string>

namespace kestrova::platform {

// What a movie's track is encoded to: the codec, a text, and its size in pixels, ints.
using AVVideoSettings = std::map<std::string, std::any>;

inline constexpr const char* AVVideoCodecKey = "AVVideoCodecKey";
inline constexpr const char* AVVideoWidthKey = "AVVideoWidthKey";
inline constexpr const char* AVVideoHeightKey = "AVVideoHeightKey";
inline constexpr const char* AVVideoCodecH264 = "avc1";
inline constexpr const char* AVMediaTypeVideo = "vide";
inline constexpr const char* AVFileTypeQuickTimeMovie = "qt  ";

}  // namespace kestrova::platform

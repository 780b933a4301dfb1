#pragma once

#include <cstdint>

namespace kestrova::platform {

// The liveness vendor's enumerations. Their cases are known by raw value only: an adapter passes on
// what the vendor's library says.

// 1 is initialised and ready.
enum class ZoomSDKStatus : std::int64_t {};
// 0 is a user who was processed.
enum class ZoomVerificationStatus : std::int64_t {};
enum class ZoomDevicePartialLivenessResult : std::int64_t {};
enum class ZoomRetryReason : std::int64_t {};

}  // namespace kestrova::platform

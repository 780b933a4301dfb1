#pragma once

#include <exception>
#include <map>
#include <string>

#include "platform/foundation/Export.h"

namespace kestrova {

enum class KestrovaErrors {
  // startVerification was called before initialize.
  notInitializedApiKey = 0,
  // Part of the public type; the SDK does not throw it.
  authenticationKeyNotInitialized = 1,
};

// What the SDK throws to its host: one case of KestrovaErrors. (Not a std::error_code, which takes
// the ordinal 0 for success.)
class KESTROVA_EXPORT KestrovaError : public std::exception {
 public:
  explicit KestrovaError(KestrovaErrors error) : error_(error) {}

  KestrovaErrors error() const noexcept { return error_; }
  // "Kestrova.KestrovaErrors"
  std::string domain() const;
  // The case's ordinal.
  int code() const noexcept { return static_cast<int>(error_); }
  // Always empty.
  std::map<std::string, std::string> userInfo() const { return {}; }
  // The case's name.
  const char* what() const noexcept override;

 private:
  KestrovaErrors error_;
};

}  // namespace kestrova

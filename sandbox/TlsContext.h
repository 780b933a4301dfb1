#pragma once

#include <memory>
#include <string>

#include "sandbox/Outcome.h"

// OpenSSL's; never seen outside .cpp files.
struct ssl_ctx_st;

namespace kestrova::sandbox {

// A certificate and its private key, both PEM texts.
struct KeyPair {
  std::string certificate;
  std::string key;
};

// What a TLS server shows its clients: TLS 1.2 or newer. Connections may use it from any thread.
class TlsContext {
 public:
  static Outcome<TlsContext> make(const KeyPair& pair);

  ssl_ctx_st* handle() const { return handle_.get(); }

 private:
  struct Free {
    void operator()(ssl_ctx_st* context) const;
  };
  explicit TlsContext(ssl_ctx_st* context) : handle_(context) {}

  std::unique_ptr<ssl_ctx_st, Free> handle_;
};

}  // namespace kestrova::sandbox

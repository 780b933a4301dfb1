#pragma once

#include <chrono>
#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "sandbox/Descriptor.h"
#include "sandbox/TlsContext.h"

struct ssl_st;

namespace kestrova::sandbox {

// One accepted connection, plain or TLS, over a socket that does not block. Used by one thread;
// every wait ends when nothing moved for the idle time or when the socket is shut down. After such
// an end, and after the peer's, reads give 0 bytes and writes fail.
class Connection {
 public:
  // Does not own the socket.
  Connection(int socket, std::chrono::milliseconds idle);

  // Makes the connection a TLS one; nothing went wrong where the text is empty.
  std::string handshake(const TlsContext& context);

  std::size_t read(std::span<char> bytes);
  bool write(std::string_view bytes);

  // Waits for the time given; false where the connection ended meanwhile.
  bool pause(std::chrono::milliseconds time);
  // Takes what comes and drops it until the connection ends or the limit has passed.
  void drain(std::chrono::milliseconds limit);
  // Waits without a limit until the connection ends.
  void waitForEnd();

  // Ends the sending side in order.
  void close();
  // Makes the socket's closing a reset.
  void reset();

 private:
  struct Free {
    void operator()(ssl_st* tls) const;
  };
  // Whether the socket became ready before the limit passed.
  bool wait(short events, std::chrono::milliseconds limit) const;
  // After a TLS call that could not go on: waits for what it needs.
  bool waitForTls(int result);

  int socket_;
  std::chrono::milliseconds idle_;
  std::unique_ptr<ssl_st, Free> tls_;
};

}  // namespace kestrova::sandbox

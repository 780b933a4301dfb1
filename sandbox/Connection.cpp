#include "sandbox/Connection.h"

#include <algorithm>
#include <array>
#include <cerrno>

#include <openssl/err.h>
#include <openssl/ssl.h>
#include <poll.h>
#include <sys/socket.h>

namespace kestrova::sandbox {

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr milliseconds forever{-1};

// The oldest entry of this thread's error queue, which is empty afterwards.
std::string tlsError() {
  const auto code = ERR_get_error();
  ERR_clear_error();
  if (code == 0) return "the connection ended";
  const char* const reason = ERR_reason_error_string(code);
  return reason != nullptr ? reason : "unknown error";
}

}  // namespace

void Connection::Free::operator()(ssl_st* tls) const {
  SSL_free(tls);
}

Connection::Connection(int socket, milliseconds idle) : socket_(socket), idle_(idle) {}

bool Connection::wait(short events, milliseconds limit) const {
  const auto end = steady_clock::now() + limit;
  while (true) {
    pollfd watched{socket_, events, 0};
    const auto left =
        std::max(std::chrono::ceil<milliseconds>(end - steady_clock::now()), milliseconds{0});
    const int count = poll(&watched, 1, limit == forever ? -1 : static_cast<int>(left.count()));
    if (count >= 0 || errno != EINTR) return count > 0;
  }
}

bool Connection::waitForTls(int result) {
  switch (SSL_get_error(tls_.get(), result)) {
    case SSL_ERROR_WANT_READ:
      return wait(POLLIN, idle_);
    case SSL_ERROR_WANT_WRITE:
      return wait(POLLOUT, idle_);
    default:
      return false;
  }
}

std::string Connection::handshake(const TlsContext& context) {
  tls_.reset(SSL_new(context.handle()));
  if (!tls_ || SSL_set_fd(tls_.get(), socket_) != 1) return tlsError();
  while (true) {
    ERR_clear_error();
    const int result = SSL_accept(tls_.get());
    if (result == 1) return {};
    if (!waitForTls(result)) return tlsError();
  }
}

std::size_t Connection::read(std::span<char> bytes) {
  while (true) {
    if (tls_) {
      ERR_clear_error();
      std::size_t count = 0;
      const int result = SSL_read_ex(tls_.get(), bytes.data(), bytes.size(), &count);
      if (result == 1) return count;
      if (!waitForTls(result)) return 0;
    } else {
      const auto count = recv(socket_, bytes.data(), bytes.size(), 0);
      if (count >= 0) return static_cast<std::size_t>(count);
      if (errno == EINTR) continue;
      if (errno != EAGAIN || !wait(POLLIN, idle_)) return 0;
    }
  }
}

bool Connection::write(std::string_view bytes) {
  while (!bytes.empty()) {
    if (tls_) {
      ERR_clear_error();
      std::size_t count = 0;
      const int result = SSL_write_ex(tls_.get(), bytes.data(), bytes.size(), &count);
      if (result == 1) {
        bytes.remove_prefix(count);
      } else if (!waitForTls(result)) {
        return false;
      }
    } else {
      const auto count = send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
      if (count >= 0) {
        bytes.remove_prefix(static_cast<std::size_t>(count));
      } else if (errno != EINTR && (errno != EAGAIN || !wait(POLLOUT, idle_))) {
        return false;
      }
    }
  }
  return true;
}

bool Connection::pause(milliseconds time) {
  return !wait(0, time);
}

void Connection::drain(milliseconds limit) {
  std::array<char, 16384> dropped{};
  const auto end = steady_clock::now() + limit;
  while (true) {
    const auto left = std::chrono::ceil<milliseconds>(end - steady_clock::now());
    if (limit != forever && left <= milliseconds{0}) return;
    // Below TLS: only whether the peer is there matters now.
    const auto count = recv(socket_, dropped.data(), dropped.size(), 0);
    if (count > 0 || (count < 0 && errno == EINTR)) continue;
    if (count == 0 || errno != EAGAIN) return;
    if (!wait(POLLIN, limit == forever ? forever : left)) return;
  }
}

void Connection::waitForEnd() {
  drain(forever);
}

void Connection::close() {
  if (tls_ && SSL_is_init_finished(tls_.get()) == 1) {
    ERR_clear_error();
    SSL_shutdown(tls_.get());
    ERR_clear_error();
  }
  shutdown(socket_, SHUT_WR);
}

void Connection::reset() {
  const linger none{1, 0};
  setsockopt(socket_, SOL_SOCKET, SO_LINGER, &none, sizeof none);
}

}  // namespace kestrova::sandbox

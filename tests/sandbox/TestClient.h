#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

struct ssl_st;

namespace kestrova::sandbox {

struct TestAnswer {
  int status = 0;
  std::string head;
  std::string body;
};

// A client that sends exactly the bytes it is given. Every wait ends after 20 s at the latest.
class TestClient {
 public:
  static TestClient plain(std::uint16_t port);
  // Checks the certificate against the authority for "localhost".
  static TestClient tls(std::uint16_t port, const std::filesystem::path& authority);

  ~TestClient();
  TestClient(TestClient&& other) noexcept;
  TestClient& operator=(TestClient&&) = delete;
  TestClient(const TestClient&) = delete;
  TestClient& operator=(const TestClient&) = delete;

  bool connected() const { return socket_ >= 0 && failure_.empty(); }
  // Why the TLS handshake failed.
  const std::string& failure() const { return failure_; }

  bool send(std::string_view bytes);
  // One answer with the whole body; nothing where the connection ends before.
  std::optional<TestAnswer> receive();
  // What comes until the connection ends or the deadline has passed.
  std::string receiveUntil(std::chrono::milliseconds deadline);
  // Whether the connection ended with a reset.
  bool reset() const { return reset_; }
  // Whether the server ends the connection before the deadline; drops what comes.
  bool endsWithin(std::chrono::milliseconds deadline);

 private:
  struct Free {
    void operator()(ssl_st* tls) const;
  };

  explicit TestClient(std::uint16_t port);

  enum class Ready { now, late, never };

  // After a call that gave `result`: when what it waits for comes; never at the connection's end.
  Ready await(int result, std::chrono::milliseconds deadline) const;
  // Appends to the buffer; false at the end or when nothing came in time.
  bool fill(std::chrono::milliseconds deadline);

  int socket_ = -1;
  std::unique_ptr<ssl_st, Free> tls_;
  std::string failure_;
  std::string buffer_;
  bool ended_ = false;
  bool reset_ = false;
};

}  // namespace kestrova::sandbox

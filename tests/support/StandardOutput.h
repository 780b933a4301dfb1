#pragma once

#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

namespace kestrova::test {

// What the process prints while the object lives. Unlike GoogleTest's capture it can be read at any
// time. Of a failed test the text goes to standard error.
class StandardOutput {
 public:
  StandardOutput() : file_(::memfd_create("stdout", MFD_CLOEXEC)), saved_(::dup(STDOUT_FILENO)) {
    std::fflush(stdout);
    ::dup2(file_, STDOUT_FILENO);
  }
  StandardOutput(const StandardOutput&) = delete;
  StandardOutput& operator=(const StandardOutput&) = delete;
  ~StandardOutput() {
    std::fflush(stdout);
    ::dup2(saved_, STDOUT_FILENO);
    if (::testing::Test::HasFailure()) std::fputs(text().c_str(), stderr);
    ::close(saved_);
    ::close(file_);
  }

  std::string text() const {
    std::string text(static_cast<std::size_t>(::lseek(file_, 0, SEEK_END)), '\0');
    const auto size = ::pread(file_, text.data(), text.size(), 0);
    text.resize(size > 0 ? static_cast<std::size_t>(size) : 0);
    return text;
  }

  std::vector<std::string> lines() const {
    std::vector<std::string> lines;
    std::istringstream stream(text());
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
  }

 private:
  const int file_;
  const int saved_;
};

}  // namespace kestrova::test

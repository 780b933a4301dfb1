#pragma once

#include <cstddef>
#include <memory>
#include <string_view>

namespace kestrova::platform {

// Bytes in memory. Unlike a std::string a new one is not filled with zeros, which counts for files
// of many megabytes.
class Data {
 public:
  Data() = default;
  // `size` bytes of any value, to be written through bytes().
  explicit Data(std::size_t size)
      : bytes_(std::make_unique_for_overwrite<char[]>(size)), size_(size) {}

  char* bytes() { return bytes_.get(); }
  std::size_t size() const { return size_; }
  std::string_view view() const { return {bytes_.get(), size_}; }

 private:
  std::unique_ptr<char[]> bytes_;
  std::size_t size_ = 0;
};

}  // namespace kestrova::platform

#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace kestrova::platform {

// Decodes the codes of a GIF image, which come in blocks, to the indices of its colours.
class LZWDecoder {
 public:
  // `depth`: the bits of an index, at most 8. `indices` is what is to be filled.
  LZWDecoder(unsigned depth, std::span<std::uint8_t> indices);

  // Goes on with the codes in `block`. False where it holds one that means nothing.
  bool decode(std::span<const std::uint8_t> block);
  // Whether the indices are all there; what comes after them does not count.
  bool isFull() const { return position_ == indices_.size(); }

 private:
  static constexpr unsigned kMaximumSize = 12;

  // A string of indices as it stands in what is decoded already.
  struct String {
    std::size_t start;
    std::size_t length;
  };

  void clear();
  bool take(unsigned code);

  std::span<std::uint8_t> indices_;
  std::size_t position_ = 0;

  unsigned clearCode_;
  unsigned endCode_;
  // The bits of a code, and the code of the string to be defined next.
  unsigned size_ = 0;
  unsigned next_ = 0;
  // Of the code before; empty after a clear code.
  String last_{};
  std::array<String, 1U << kMaximumSize> strings_;
  bool isEnded_ = false;

  std::uint64_t bits_ = 0;
  unsigned bitCount_ = 0;
};

}  // namespace kestrova::platform

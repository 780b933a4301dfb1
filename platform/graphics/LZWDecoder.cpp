#include "platform/graphics/LZWDecoder.h"

#include <algorithm>

namespace kestrova::platform {

LZWDecoder::LZWDecoder(unsigned depth, std::span<std::uint8_t> indices)
    : indices_(indices), clearCode_(1U << depth), endCode_(clearCode_ + 1) {
  clear();
}

void LZWDecoder::clear() {
  next_ = endCode_ + 1;
  for (size_ = 1; next_ >> size_ != 0;) ++size_;
  last_ = {};
}

bool LZWDecoder::decode(std::span<const std::uint8_t> block) {
  for (const auto byte : block) {
    if (isFull() || isEnded_) break;
    bits_ |= std::uint64_t{byte} << bitCount_;
    bitCount_ += 8;
    while (bitCount_ >= size_ && !isFull() && !isEnded_) {
      const auto code = static_cast<unsigned>(bits_ & ((1U << size_) - 1));
      bits_ >>= size_;
      bitCount_ -= size_;
      if (!take(code)) return false;
    }
  }
  return true;
}

bool LZWDecoder::take(unsigned code) {
  if (code == clearCode_) {
    clear();
    return true;
  }
  if (code == endCode_) {
    isEnded_ = true;
    return true;
  }
  // The string before and the first index of this one stand side by side: they are the next string,
  // which may be this very one.
  if (last_.length > 0 && next_ < strings_.size()) {
    strings_[next_++] = {last_.start, last_.length + 1};
    if (next_ >> size_ != 0 && size_ < kMaximumSize) ++size_;
  }
  const auto start = position_;
  if (code < clearCode_) {
    indices_[position_++] = static_cast<std::uint8_t>(code);
  } else {
    if (code >= next_) return false;
    const auto& string = strings_[code];
    const auto length = std::min(string.length, indices_.size() - start);
    auto* const to = &indices_[start];
    const auto* const from = &indices_[string.start];
    for (std::size_t i = 0; i < length; ++i) to[i] = from[i];
    position_ += length;
  }
  last_ = {start, position_ - start};
  return true;
}

}  // namespace kestrova::platform

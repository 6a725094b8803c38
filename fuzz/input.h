// The bytes of one fuzz input, taken from the front as small choices. Used up, it answers zeros.
#ifndef ZRK_FUZZ_INPUT_H
#define ZRK_FUZZ_INPUT_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

namespace fuzz {

class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : at_(data), end_(data + size) {}

  bool IsUsedUp() const { return at_ == end_; }
  unsigned Byte() { return IsUsedUp() ? 0U : *at_++; }
  // Below a bound of at most 256.
  unsigned Below(std::size_t bound) { return Byte() % static_cast<unsigned>(bound); }
  bool Truth() { return (Byte() & 1U) != 0; }

  // Up to `most` (at most 255) bytes: one that says how many, then themselves.
  std::string Bytes(std::size_t most) {
    const std::size_t wanted = Below(most + 1);
    const auto size = std::min(wanted, static_cast<std::size_t>(end_ - at_));
    at_ += size;
    return {at_ - size, at_};
  }

  template <typename Row, std::size_t kRows>
  const Row& Pick(const Row (&rows)[kRows]) {
    return rows[Below(kRows)];
  }

 private:
  const std::uint8_t* at_;
  const std::uint8_t* end_;
};

}  // namespace fuzz

#endif  // ZRK_FUZZ_INPUT_H

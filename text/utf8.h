// UTF-8 as bytes: how long a sequence announces itself to be, how many characters lie before an
// offset, and which bytes the engine must not be shown. Nothing here assumes well-formed text.
#ifndef ZRK_TEXT_UTF8_H
#define ZRK_TEXT_UTF8_H

#include <cstddef>
#include <string_view>
#include <vector>

namespace zrk {

// The length in bytes that a lead byte announces: 1 to 4. Continuation bytes and bytes from 0xF8 on
// stand for themselves and answer 1.
constexpr int SequenceLength(unsigned char lead) {
  if ((lead & 0xE0) == 0xC0) return 2;
  if ((lead & 0xF0) == 0xE0) return 3;
  if ((lead & 0xF8) == 0xF0) return 4;
  return 1;
}
constexpr int SequenceLength(char lead) { return SequenceLength(static_cast<unsigned char>(lead)); }

// Whether every byte is below 0x80.
bool IsASCII(std::string_view text);

// A walk over characters: `position` is where the next character begins, `characters` how many were
// passed.
struct CharacterPosition {
  std::size_t position = 0;
  std::size_t characters = 0;
};

// Walks on, by announced lengths, until the position is at or past `offset` (a byte offset, at most
// the number of bytes). A character that begins before the offset is counted whole.
CharacterPosition WalkCharacters(std::string_view text, CharacterPosition from, std::size_t offset);

// Whether the engine, told not to check its UTF-8, could be led outside its tables or outside the
// bytes. Unsafe is a byte that is 0xF5 or above; 0xF4 where the next byte's low six bits are 0x10
// or more; a lead byte that announces more bytes than are left; a continuation byte in a run at the
// very start.
bool HasUnsafeBytes(std::string_view text);

// Whether a lead byte is not followed by just the continuation bytes that it announces, or one of
// them stands alone. Overlong forms and surrogates are whole characters.
bool HasBrokenCharacters(std::string_view text);

// A copy in which 0x1A stands for each unsafe byte: seldom needed. Throws std::bad_alloc.
[[gnu::noinline]] std::vector<char> CopyWithoutUnsafeBytes(std::string_view text);

}  // namespace zrk

#endif  // ZRK_TEXT_UTF8_H

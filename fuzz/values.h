// Values of every kind from the input.
#ifndef ZRK_FUZZ_VALUES_H
#define ZRK_FUZZ_VALUES_H

#include <string>
#include <string_view>

#include "fuzz/input.h"
#include "fuzz/session.h"

namespace fuzz {

// Patterns begin with this: the engine gives up early, whatever limits the script sets.
inline constexpr std::string_view kBounded = "(*LIMIT_MATCH=2000)";

// Up to some hundreds of bytes; as a string, in any encoding, or nil.
std::string AnyText(Input& input);
Value AnyString(Input& input, standin::Host& host);
Value AnyPattern(Input& input, standin::Host& host);
// The two arguments of CompileMemory: a block and the offset in it at which the pattern begins.
Values AnyPatternBlock(Input& input, standin::Host& host);
// A value of that kind; references may be nil.
Value AnyValue(Input& input, standin::Host& host, Kind kind);

}  // namespace fuzz

#endif  // ZRK_FUZZ_VALUES_H

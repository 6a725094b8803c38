// What holds after calls, whatever the object, the subject and the host.
#ifndef ZRK_FUZZ_INVARIANTS_H
#define ZRK_FUZZ_INVARIANTS_H

#include <cstddef>
#include <cstdint>

#include "fuzz/session.h"

namespace fuzz {

// The size in bytes of the kept subject; on a host that is not whole, of the longest it can be.
std::size_t SubjectSize(const Session& session, const Regex& regex);

// After a match that answered `result`: Count and Lasterror agree with it, and each pair is unset
// or within a subject of that size, its ends in order (but for a whole match that \K in an
// assertion starts past its end).
void CheckMatch(const Regex& regex, std::int32_t result, std::size_t subject_size);

// After any method: the above where it matched; otherwise no text or count of characters that it
// answers is longer than the subject.
void CheckOutcome(const Session& session, const Regex& regex, const Values& arguments,
                  const Outcome& outcome);

}  // namespace fuzz

#endif  // ZRK_FUZZ_INVARIANTS_H

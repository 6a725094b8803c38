// Whether the methods that read a subject answer as the engine called directly does.
#ifndef ZRK_TESTS_AGREEMENT_H
#define ZRK_TESTS_AGREEMENT_H

#include <string>

#include "tests/oracle/plain_regex.h"
#include "tests/session.h"

namespace tests {

// Runs them all: searches that begin at `start`, in a text, in a block and in what is kept;
// testing, replacing and escaping the whole text. The object and `plain` have the same pattern and
// options.
void ExpectAgreement(Session& session, const Object& regex, const oracle::PlainRegex& plain,
                     const std::string& subject, int start);

}  // namespace tests

#endif  // ZRK_TESTS_AGREEMENT_H

// Running the compiled pattern over a subject, on the host's thread or on a worker.
//
// A call with a text or a memory block keeps it as the subject, also when nothing matched; the
// forms that take only a start run again over the kept one, which is how a script walks through all
// matches. Starts are byte offsets. Engine failures are never raised: Lasterror holds the code.
//
// Walking the words of "ab cd": Execute("ab cd") matches at 0 to 2; Execute(Offset(1)), that is
// Execute(2), at 3 to 5; Execute(5) answers -1 and Lasterror is ErrorNoMatch.
#ifndef ZRK_REGEX_EXECUTE_H
#define ZRK_REGEX_EXECUTE_H

#include "regex/class_data.h"
#include "regex/subject.h"

namespace zrk {

// Execute(text, start), Execute(start) and ExecuteMemory. [host thread] The first two answer the
// engine's result as it is, the third answers 0 for any failure. All raise "NilObjectException" for
// an object that is not initialised; rb_pcre_execM also for a nil block, and
// "OutOfBoundsException" for a ByteLength past the block's end. ByteLength counts from the block's
// start; below 1 it means the whole block.
HostInteger rb_pcre_exec(RegExClassData& data, REALstringStruct* text, HostInteger start);
HostInteger rb_pcre_execAgain(RegExClassData& data, HostInteger start);
HostInteger rb_pcre_execM(RegExClassData& data, REALmemoryBlockStruct* text, HostInteger ByteOffset,
                          HostInteger ByteLength);

// ExecuteMT and ExecuteMemoryMT: the same with the engine on another thread, while the host gets
// its turns. All answer Count. The script's match limits are not applied. The object stays
// referenced during the run; it must not be used from another of the host's threads meanwhile.
HostInteger rb_pcre_execMT(REALobjectStruct* object, REALstringStruct* text, HostInteger start);
HostInteger rb_pcre_execAgainMT(REALobjectStruct* object, HostInteger start);
HostInteger rb_pcre_execMMT(REALobjectStruct* object, REALmemoryBlockStruct* text,
                            HostInteger ByteOffset, HostInteger ByteLength);

// Makes the object ready for a match: no error, no pairs, an empty vector, and no error message,
// which goes into `earlier_message`. False, with the exception raised and nothing else changed, for
// an object that is not initialised.
bool BeginMatch(RegExClassData& data, StringReference& earlier_message);

// Puts down what the engine answered: Count from a positive result, Lasterror from a negative one.
void StoreResult(RegExClassData& data, int result);

}  // namespace zrk

#endif  // ZRK_REGEX_EXECUTE_H

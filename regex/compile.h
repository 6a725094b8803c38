// Compiling a pattern and studying it.
//
// A compile always forgets the previous subject and pattern, even when it fails. What the engine
// rejects is no exception: the method answers false, and the object says why.
#ifndef ZRK_REGEX_COMPILE_H
#define ZRK_REGEX_COMPILE_H

#include "regex/class_data.h"

namespace zrk {

// Compile(pattern): read up to its first NUL character.
HostBoolean rb_pcre_compile2(RegExClassData& data, REALstringStruct* pattern);

// CompileMemory(pattern, ByteOffset): raises "NilObjectException" for a block that is nil or has no
// bytes, "OutOfBoundsException" for an offset outside it. Bytes without a zero byte behind them are
// compiled up to the block's end.
HostBoolean rb_pcre_compileM(RegExClassData& data, REALmemoryBlockStruct* pattern,
                             HostInteger ByteOffset);

// Study: true unless the engine reports an error; nothing to learn is no error. False without a
// pattern.
HostBoolean rb_pcre_study(RegExClassData& data);

}  // namespace zrk

#endif  // ZRK_REGEX_COMPILE_H

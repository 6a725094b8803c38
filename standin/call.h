// Calls the library's registered functions through libffi, with the accounts around them.
#ifndef ZRK_STANDIN_CALL_H
#define ZRK_STANDIN_CALL_H

#include <ffi.h>

#include <string>
#include <vector>

#include "host/records.h"
#include "standin/declaration.h"
#include "standin/host.h"
#include "standin/object.h"

namespace standin {

class HostInstance;

// One call: the object comes first, then the arguments in order, then Run.
class MethodCall {
 public:
  // `name` appears in histories and must live as long as the class.
  MethodCall(Host& host, HostInstance& object, const std::string& name);

  // A registered word, such as a property row's parameter.
  void AddWord(zrk::HostWord word);
  // An argument that fits the type; it must outlive the call.
  void Add(const Type& type, const Value& value);

  // Calls; the exceptions that this call raised go into the outcome, and not into that of a call
  // around it. Reports a result that is not what the type promises.
  Outcome Run(zrk::HostFunction function, const Type& result);

 private:
  union Slot {
    ffi_sarg word;
    std::int32_t integer;
    signed char boolean;
    double number;
    void* handle;
  };

  void Push(ffi_type* type, Slot slot);
  Slot Invoke(zrk::HostFunction function, ffi_type* result);
  Value Result(const Slot& slot, Kind kind) const;
  std::string QualifiedName() const;

  Host& host_;
  HostInstance& object_;
  const std::string& name_;
  std::vector<ffi_type*> types_;
  std::vector<Slot> slots_;
  std::string shown_;
};

}  // namespace standin

#endif  // ZRK_STANDIN_CALL_H

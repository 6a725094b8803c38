// What every target stands on: hosts of all kinds with the built library in them, and objects whose
// calls print themselves as Lua.
#ifndef ZRK_FUZZ_SESSION_H
#define ZRK_FUZZ_SESSION_H

#include <cstddef>
#include <string>
#include <string_view>

#include "fuzz/input.h"
#include "fuzz/script.h"
#include "standin/host.h"

namespace fuzz {

using standin::Kind;
using standin::Outcome;
using standin::Value;
using standin::Values;

// A host of any version.
standin::HostOptions WholeHost(Input& input);
// The same, but a quarter of them are not whole: a few services are missing or answer null.
// Services that count references stay, since without them no account can balance.
standin::HostOptions AnyHost(Input& input);

// A host with the library in it as if freshly loaded. One at a time; values and objects end before
// it does. Its end checks that the accounts balance.
class Session {
 public:
  explicit Session(standin::HostOptions options);
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  // Whether nothing is wrong with the host.
  bool IsWhole() const;

  // The next object's name in the Lua program, where `call` makes it.
  std::string Announce(const std::string& call);

  standin::Host host;

 private:
  int objects_ = 0;
};

// A RegExZRK object. Calls and assignments print themselves; results are not printed.
class Regex {
 public:
  explicit Regex(Session& session, std::int32_t vector_size = 0);
  // Zero-filled, as an object is before its constructor has run.
  static Regex Unconstructed(Session& session);

  // What the Lua program calls it; no two objects share a name.
  const std::string& name() const { return name_; }

  Outcome Call(std::string_view method, const Values& arguments = {}) const;
  // The integer or boolean that a call answers.
  std::int32_t Ask(std::string_view method, const Values& arguments = {}) const;
  Value Get(std::string_view property) const { return object_.Get(property); }
  std::int32_t Number(std::string_view property) const { return Get(property).Integer(); }
  void Set(std::string_view property, const Value& value) const;

 private:
  Regex(std::string name, standin::Object object)
      : name_(std::move(name)), object_(std::move(object)) {}

  std::string name_;
  standin::Object object_;
};

}  // namespace fuzz

#endif  // ZRK_FUZZ_SESSION_H

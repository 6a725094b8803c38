// Random sequences of calls on a few objects of a random host. What holds whatever happens:
//
//  1. Nothing crashes or hangs, and no sanitizer has anything to say.
//  2. The host's accounts balance at the end.
//  3. Count and Lasterror agree with what a match answered, and its pairs lie within the subject;
//     so do the texts of groups and the counts of characters (invariants.h).
//  4. All of this also for what happens in the yields of a threaded match: calls on other objects,
//     and the end of the running object's last reference.
#include <vector>

#include "fuzz/invariants.h"
#include "fuzz/session.h"
#include "fuzz/values.h"

namespace {

using namespace fuzz;

constexpr int kSteps = 40;
constexpr int kThreadedCalls = 2;  // each costs as much as many other steps

class Calls {
 public:
  explicit Calls(Input& input) : input_(input), session_(AnyHost(input)) {
    for (unsigned more = 1 + input.Below(3); more > 0; --more) objects_.push_back(NewObject());
  }

  void Step() {
    Regex& regex = objects_[input_.Below(objects_.size())];
    const standin::ClassInfo& info = *session_.host.classes().front();
    const unsigned choice = input_.Byte();
    if (choice == 0xFF || &regex == running_) {
      regex = NewObject();
    } else if (choice >= 0xA0) {
      UseProperty(regex, info.properties()[(choice - 0xA0) % info.properties().size()]);
    } else {
      CallMethod(regex, info.methods()[choice % info.methods().size()].declaration);
    }
  }

 private:
  Value AnyOf(Kind kind) { return AnyValue(input_, session_.host, kind); }

  Regex NewObject() {
    if (input_.Below(16) == 15) return Regex::Unconstructed(session_);
    return Regex(session_, AnyOf(Kind::kInteger).Integer());
  }

  void UseProperty(const Regex& regex, const standin::Property& property) {
    if (property.setter && input_.Truth()) regex.Set(property.name, AnyOf(property.type.kind));
    regex.Get(property.name);
  }

  Values Arguments(const standin::MethodDeclaration& method) {
    if (method.name == "Compile") return {AnyPattern(input_, session_.host)};
    if (method.name == "CompileMemory") return AnyPatternBlock(input_, session_.host);
    Values arguments;
    for (const auto& parameter : method.parameters) arguments.push_back(AnyOf(parameter.type.kind));
    return arguments;
  }

  void CallMethod(Regex& regex, const standin::MethodDeclaration& method) {
    if (method.name == "Constructor") return;  // runs once for each object
    const Values arguments = Arguments(method);
    if (method.name.ends_with("MT")) return CallThreaded(regex, method.name, arguments);
    CheckOutcome(session_, regex, arguments, regex.Call(method.name, arguments));
  }

  void CallThreaded(Regex& regex, const std::string& name, const Values& arguments) {
    if (running_ || ++threaded_calls_ > kThreadedCalls) return;
    session_.host.AddTask([this] {
      if (PrintsLua()) PrintLua("-- in a yield of what came before:");
      Step();
      return false;
    });
    running_ = &regex;
    const std::string object = regex.name();
    const Outcome outcome = regex.Call(name, arguments);
    running_ = nullptr;
    if (regex.name() == object) CheckOutcome(session_, regex, arguments, outcome);
  }

  Input& input_;
  Session session_;
  std::vector<Regex> objects_;
  const Regex* running_ = nullptr;
  int threaded_calls_ = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input input(data, size);
  Calls calls(input);
  for (int step = 0; step < kSteps && !input.IsUsedUp(); ++step) calls.Step();
  return 0;
}

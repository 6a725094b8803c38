// Memory runs out once: for every method, at its first allocation, at its second, and so on until
// it makes no more. The object stays usable each time, and nothing is lost.
//
// This program replaces the allocator. Only what the library or the engine asks for may fail, also
// by way of the C++ runtime, which the addresses of the callers tell; the stand-in host always gets
// its memory.
#include <dlfcn.h>
#include <execinfo.h>
#include <gtest/gtest.h>
#include <pcre.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <map>
#include <new>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "tests/calls.h"
#include "tests/texts.h"

// Where a sanitizer has an allocator of its own, that one is meant.
extern "C" [[gnu::weak]] void* __interceptor_malloc(std::size_t size);
extern "C" [[gnu::weak]] void* __interceptor_calloc(std::size_t count, std::size_t size);
extern "C" void* __libc_malloc(std::size_t size);
extern "C" void* __libc_calloc(std::size_t count, std::size_t size);

namespace {

using namespace tests;

bool IsIn(const void* code, const char* library) {
  Dl_info info;
  return dladdr(code, &info) != 0 && std::strstr(info.dli_fname, library) != nullptr;
}

// Whether the library asks, itself or by way of the C++ runtime. Its own function: the sanitizer
// allocates before arrays on the stack can be had.
[[gnu::noinline]] bool IsTheLibrarys(const void* caller) {
  if (!IsIn(caller, "libstdc++")) return IsIn(caller, "libZRKRegEx");
  void* frames[16];
  void** const end = frames + backtrace(frames, std::size(frames));
  void** const asker = std::find_if(std::find(frames, end, caller), end,
                                    [](const void* frame) { return !IsIn(frame, "libstdc++"); });
  return asker != end && IsIn(*asker, "libZRKRegEx");
}

// Counts the library's allocations from Arm on and lets the chosen one fail.
struct Allocations {
  int made = 0;
  int failing = 0;
  std::size_t bytes = 0;

  void Arm(int which) { *this = {.failing = which}; }
  // Whether the chosen allocation was reached.
  bool Disarm() { return std::exchange(failing, 0) <= made; }
  bool Fails() { return failing > 0 && ++made == failing; }
  bool FailsFor(const void* caller, std::size_t size) {
    if (failing == 0 || !IsTheLibrarys(caller)) return false;
    bytes += size;
    return Fails();
  }
};

constinit Allocations allocations;
// Whether the library's threads get nothing, whoever asks on them.
constinit bool workers_get_nothing = false;
constexpr int kNever = 1 << 20;

bool Refuses(std::size_t size, const void* caller) {
  const bool of_worker = workers_get_nothing && getpid() != gettid();
  if (!of_worker && !allocations.FailsFor(caller, size)) return false;
  errno = ENOMEM;
  return true;
}

// Null where the chosen allocation is this one.
void* Allocate(std::size_t size, const void* caller) {
  return allocations.FailsFor(caller, size) ? nullptr : std::malloc(size > 0 ? size : 1);
}

void* OrThrow(void* memory) {
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

}  // namespace

// Never inlined, or the caller would be somebody else.
[[gnu::noinline]] void* operator new(std::size_t size) {
  return OrThrow(Allocate(size, __builtin_return_address(0)));
}
[[gnu::noinline]] void* operator new[](std::size_t size) {
  return OrThrow(Allocate(size, __builtin_return_address(0)));
}
[[gnu::noinline]] void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return Allocate(size, __builtin_return_address(0));
}
[[gnu::noinline]] void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return Allocate(size, __builtin_return_address(0));
}
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete[](void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }

extern "C" void* malloc(std::size_t size) {
  if (Refuses(size, __builtin_return_address(0))) return nullptr;
  return __interceptor_malloc != nullptr ? __interceptor_malloc(size) : __libc_malloc(size);
}
extern "C" void* calloc(std::size_t count, std::size_t size) {
  if (Refuses(count * size, __builtin_return_address(0))) return nullptr;
  return __interceptor_calloc != nullptr ? __interceptor_calloc(count, size)
                                         : __libc_calloc(count, size);
}

namespace {

// A host whose string data needs copies, so that text is converted, copied and cleaned.
class AllocationFaults : public testing::Test {
 protected:
  AllocationFaults() : session_({.version = 2017.0, .terminate_string_data = false}) {
    void* frame = nullptr;
    backtrace(&frame, 1);  // the first call allocates
    pcre_malloc = [](std::size_t size) {
      return allocations.Fails() ? nullptr : std::malloc(size);
    };
  }
  ~AllocationFaults() override { pcre_malloc = std::malloc; }

  // A call whose allocation of this number fails; `reached_` says whether it makes so many.
  Outcome Call(const Object& regex, const char* method, const Values& arguments, int failing) {
    allocations.Arm(failing);
    const Outcome outcome = regex.TryCall(method, arguments);
    reached_ = allocations.Disarm();
    return outcome;
  }

  Session session_;
  bool reached_ = true;
};

const std::string kRaised = " OutOfMemoryException: Failed to allocate memory.";
const std::string kTextShown = "\"aébc\xF5 bx bc\"";

// What else than the right answer comes of a call, each of which must be seen: the exception; text
// whose copy failed and reads as empty; the engine's own refusal; nil from the replace methods.
const std::map<std::string, std::set<std::string>> kFailures = {
    {"match", {"false err=-1", "false err=-99" + kRaised}},
    {"match strings", {'[' + kTextShown + ", \"zz\", \"\"] err=0", "nil err=0" + kRaised}},
    {"match variants",
     {'[' + kTextShown + ", \"5\", \"True\", \"\"] err=0", "nil err=0" + kRaised}},
    {"no such entry", {"nil err=0 OutOfBoundsException: Out of Bounds"}},
    {"compile", {"false err=0"}},
    {"compile another encoding", {"false err=0"}},
    {"compile bytes", {"false err=0", "false err=0" + kRaised}},
    {"study", {"false err=0"}},
    {"execute", {"-24 err=-24", "0 err=-99" + kRaised}},
    {"execute another encoding", {"-1 err=-1"}},
    {"execute bytes", {"0 err=-99" + kRaised}},
    {"execute threaded", {"0 err=-24", "0 err=-99" + kRaised}},
    {"execute bytes threaded", {"0 err=-99" + kRaised}},
    {"no such offset", {"0 err=0 OutOfBoundsException: Out of Bounds"}},
    {"replace", {"\"a\xC3\xA9\xF5 bx bc\" err=0"}},
    {"replace all", {"\"a\xC3\xA9\xF5  \" err=0", "nil err=-99"}},
    {"delete all", {"nil err=-99"}},
    {"escape", {"nil err=0", "nil err=0" + kRaised}},
    {"unescape", {"nil err=0", "nil err=0" + kRaised}},
};

TEST_F(AllocationFaults, GiveTheDocumentedAnswerAndLeaveTheObjectUsable) {
  for (const CallRow& row : CallRows()) {
    SCOPED_TRACE(row.label);
    const auto run = [&](const Object& regex, int failing) {
      return Show(regex, Call(regex, row.method, row.arguments(session_.host), failing));
    };
    const std::string healthy = run(Prepared(session_), kNever);
    std::set<std::string> expected = {healthy}, seen;
    if (kFailures.contains(row.label)) expected.merge(std::set(kFailures.at(row.label)));
    reached_ = true;
    for (int failing = 1; reached_; ++failing) {
      const Object regex = Prepared(session_);
      seen.insert(run(regex, failing));
      Prepare(regex);
      const Outcome again = regex.TryCall(row.method, row.arguments(session_.host));
      EXPECT_EQ(Show(regex, again), healthy) << "after failure " << failing;
    }
    EXPECT_EQ(seen, expected);
    ASSERT_EQ(session_.host.Problems(), std::vector<std::string>());
  }
}

TEST_F(AllocationFaults, TellWhyNoPatternCouldBeCompiled) {
  const Object regex = session_.New();
  EXPECT_EQ(Show(regex, Call(regex, "Compile", {"b(c)"}, 1)), "false err=0");
  EXPECT_EQ(regex.Get("ErrorMessage").UTF8(), "failed to get memory");
  EXPECT_EQ(Show(regex, regex.TryCall("Execute", {"bc", 0})), "0 err=-99");
  EXPECT_TRUE(regex.Call("Compile", {"b(c)"}).Boolean());
}

TEST_F(AllocationFaults, LeaveAnObjectWithoutVectorToItsOptions) {
  const Object regex = session_.host.NewUninitialised("RegExZRK");
  EXPECT_EQ(Raised(Call(regex, "Constructor", {60}, 1)),
            "OutOfMemoryException: Failed to allocate vector array.");
  EXPECT_EQ(regex.Get("VectorSize").Integer(), 0);
  EXPECT_EQ(regex.Get("CompileOptions").Integer(), 0x2A00);
  EXPECT_TRUE(regex.Call("Compile", {"b"}).Boolean());
  EXPECT_EQ(Raised(regex.TryCall("Execute", {"b", 0})),
            "NilObjectException: RegEx class not initialized.");
}

// The first text of all, and a text beside one that is kept, need memory for their adapters.
TEST_F(AllocationFaults, ReachTheAdapterOfAKeptText) {
  const Object regex = session_.Compiled("b");
  for (const char* method : {"Execute", "ExecuteMT"}) {
    EXPECT_EQ(Show(regex, Call(regex, method, {"abc", 0}, 1)), "0 err=-99" + kRaised);
    EXPECT_TRUE(regex.Get("Text").IsNil()) << method;
  }
  EXPECT_EQ(regex.Call("Execute", {"abc", 0}).Integer(), 1);
}

// The C library ends the process where a thread's first use of some thread data finds no memory.
TEST_F(AllocationFaults, OfEverythingOnAWorkerAreTheRecursionLimit) {
#ifdef __clang__
  GTEST_SKIP() << "needs TLS descriptors";
#endif
  if (__interceptor_malloc != nullptr) GTEST_SKIP() << "sanitizers need memory there themselves";
  const Object regex = session_.Compiled("b");
  const Values subject = {"abc"};
  workers_get_nothing = true;
  const Outcome outcome = regex.TryCall("ExecuteMT", subject);
  workers_get_nothing = false;
  EXPECT_EQ(Show(regex, outcome), "0 err=-21");
  EXPECT_EQ(regex.Call("ExecuteMT", subject).Integer(), 1);
}

// Short results need no memory. Without any for a roomy one, ReplaceAll searches once more for what
// it needs, as it does for a result that even that does not hold.
TEST_F(AllocationFaults, MakeReplacingSlowerOrNull) {
  const Object regex = session_.Compiled("(b)(c)");
  const std::string long_text(60, 'x');
  const std::string far(2000, 'z');  // further than a short result reaches
  std::string target = far, swapped = far, lengthened = far;
  for (int i = 0; i < 1000; ++i) target += "abc", swapped += "acb", lengthened += 'a' + long_text;
  regex.Call("Execute", {target});
  struct Row {
    const char* method;
    Values arguments;
    std::string text;
    int answers, nulls;
  };
  const Row rows[] = {
      {"Replace", {"\\2\\1"}, far + "acb" + target.substr(far.size() + 3), 1, 1},
      {"ReplaceAll", {target, "\\2\\1"}, swapped, 2, 0},
      {"ReplaceAll", {target, long_text}, lengthened, 2, 1},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.text.substr(far.size(), 9));
    int answers = 0, nulls = 0;
    reached_ = true;
    for (int failing = 1; reached_; ++failing) {
      const std::string shown = Show(regex, Call(regex, row.method, row.arguments, failing));
      answers += shown == '"' + row.text + "\" err=0";
      nulls += shown == "nil err=-99";
      EXPECT_EQ(answers + nulls, failing);
    }
    EXPECT_EQ(answers, row.answers);
    EXPECT_EQ(nulls, row.nulls);
  }
  EXPECT_EQ(regex.Get("Count").Integer(), 1000);
}

// A replacement text is taken apart once, into at most eight times its length, whatever stands in
// it.
TEST_F(AllocationFaults, LeaveReplacementTextsWithinEightTimesTheirLength) {
  const Object regex = session_.Compiled("b");
  for (const char* const piece : {"\\\\", "\\1", "\\q", "\\99", "a", "\\0a"}) {
    SCOPED_TRACE(piece);
    const std::string text = Repeated(piece, 100'000);
    const Value result = Call(regex, "ReplaceAll", {"b", text}, kNever).value;
    const std::size_t overhead = 4096;
    const std::size_t copy_of_text = text.size() + 4;  // this host's texts need one
    EXPECT_LE(allocations.bytes, 8 * text.size() + copy_of_text + result.Bytes().size() + overhead);
  }
}

}  // namespace

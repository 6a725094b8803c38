// Memory runs out once: for every method, at its first allocation, at its second, and so on until
// it makes no more. The object stays usable each time, and nothing is lost.
//
// This program replaces the allocator. Only what the library or the engine asks for may fail, also
// by way of the C++ runtime, which the addresses of the callers tell; the stand-in host always gets
// its memory.
#include <execinfo.h>
#include <gtest/gtest.h>
#include <link.h>
#include <pcre.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <new>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "tests/calls.h"

// Where a sanitizer has an allocator of its own, that one is meant.
extern "C" [[gnu::weak]] void* __interceptor_malloc(std::size_t size);
extern "C" [[gnu::weak]] void* __interceptor_calloc(std::size_t count, std::size_t size);
extern "C" void* __libc_malloc(std::size_t size);
extern "C" void* __libc_calloc(std::size_t count, std::size_t size);

namespace {

using namespace tests;

// The code of one loaded library.
struct Code {
  std::uintptr_t low = 0;
  std::uintptr_t high = 0;

  bool Contains(const void* address) const {
    const auto number = reinterpret_cast<std::uintptr_t>(address);
    return number >= low && number < high;
  }
};

// Counts the library's allocations from Arm on and lets the chosen one fail.
struct Allocations {
  Code library;
  Code runtime;
  int made = 0;
  int failing = 0;
  std::size_t bytes = 0;

  void Arm(int which) {
    made = 0;
    bytes = 0;
    failing = which;
  }
  // Whether the chosen allocation was reached.
  bool Disarm() { return std::exchange(failing, 0) <= made; }
  bool Fails() { return failing > 0 && ++made == failing; }
  bool FailsFor(const void* caller, std::size_t size) {
    if (failing == 0 || !IsTheLibrarys(caller)) return false;
    bytes += size;
    return Fails();
  }

  // Its own function: the sanitizer allocates before arrays on the stack can be had.
  [[gnu::noinline]] bool IsTheLibrarys(const void* caller) const {
    if (!runtime.Contains(caller)) return library.Contains(caller);
    void* frames[16];
    void** const end = frames + backtrace(frames, std::size(frames));
    void** const first = std::find(frames, end, caller);
    void** const asker =
        std::find_if(first, end, [this](const void* frame) { return !runtime.Contains(frame); });
    return asker != end && library.Contains(*asker);
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

void* AllocateForEngine(std::size_t size) {
  return allocations.Fails() ? nullptr : std::malloc(size);
}

// Of several copies of the library the one that was loaded last.
int FindCode(dl_phdr_info* info, std::size_t, void*) {
  const bool is_library = std::strstr(info->dlpi_name, "libZRKRegEx") != nullptr;
  if (!is_library && std::strstr(info->dlpi_name, "libstdc++") == nullptr) return 0;
  Code& code = is_library ? allocations.library : allocations.runtime;
  for (int i = 0; i < info->dlpi_phnum; ++i) {
    const ElfW(Phdr)& segment = info->dlpi_phdr[i];
    if (segment.p_type != PT_LOAD || (segment.p_flags & PF_X) == 0) continue;
    code.low = info->dlpi_addr + segment.p_vaddr;
    code.high = code.low + segment.p_memsz;
  }
  return 0;
}

// A host whose string data needs copies, so that text is converted, copied and cleaned.
class AllocationFaults : public testing::Test {
 protected:
  AllocationFaults() : session_({.version = 2017.0, .terminate_string_data = false}) {
    dl_iterate_phdr(FindCode, nullptr);
    void* frame = nullptr;
    backtrace(&frame, 1);  // the first call allocates
    pcre_malloc = AllocateForEngine;
  }
  ~AllocationFaults() override { pcre_malloc = std::malloc; }

  std::string RunFailing(const Object& regex, const CallRow& row, int failing, bool& reached) {
    const tests::Values arguments = row.arguments(session_.host);
    allocations.Arm(failing);
    const Outcome outcome = regex.TryCall(row.method, arguments);
    reached = allocations.Disarm();
    return tests::Show(regex, outcome);
  }

  Session session_;
};

const std::string kRaised = " OutOfMemoryException: Failed to allocate memory.";
const std::string kTextShown = "\"aébc\xF5 bx bc\"";

// What else than the right answer comes of a call, each of which must be seen: the exception; text
// whose copy failed and reads as empty; the engine's own refusal; nil from the replace methods.
struct Failure {
  const char* label;
  std::vector<std::string> outcomes;
};

const Failure kFailures[] = {
    {"match", {"false err=-1", "false err=-99" + kRaised}},
    {"match strings", {"[\"bc\"] err=0", "nil err=0" + kRaised}},
    {"match strings inverse", {'[' + kTextShown + ", \"zz\", \"\"] err=0", "nil err=0" + kRaised}},
    {"match variants", {"[\"bc\"] err=0", "nil err=0" + kRaised}},
    {"match variants inverse",
     {'[' + kTextShown + ", \"5\", \"True\", \"\"] err=0", "nil err=0" + kRaised}},
    {"no such entry", {"nil err=0 OutOfBoundsException: Out of Bounds"}},
    {"compile", {"false err=0"}},
    {"compile bytes", {"false err=0", "false err=0" + kRaised}},
    {"study", {"false err=0"}},
    {"execute", {"-24 err=-24", "0 err=-99" + kRaised}},
    {"execute bytes", {"0 err=-99" + kRaised}},
    {"execute threaded", {"0 err=-24", "0 err=-99" + kRaised}},
    {"execute bytes threaded", {"0 err=-99" + kRaised}},
    {"no such offset", {"0 err=0 OutOfBoundsException: Out of Bounds"}},
    {"replace", {"\"a\xC3\xA9\xF5 bx bc\" err=0", "nil err=-99"}},
    {"replace selection", {"nil err=-99"}},
    {"replace all", {"\"a\xC3\xA9\xF5  \" err=0", "nil err=-99"}},
    {"delete all", {"nil err=-99"}},
    {"escape", {"nil err=0", "nil err=0" + kRaised}},
    {"unescape", {"nil err=0", "nil err=0" + kRaised}},
};

std::set<std::string> FailuresOf(const char* label) {
  for (const Failure& failure : kFailures) {
    if (failure.label == std::string(label)) {
      return {failure.outcomes.begin(), failure.outcomes.end()};
    }
  }
  return {};
}

TEST_F(AllocationFaults, GiveTheDocumentedAnswerAndLeaveTheObjectUsable) {
  for (const CallRow& row : tests::CallRows()) {
    SCOPED_TRACE(row.label);
    bool reached = true;
    const std::string healthy = RunFailing(tests::Prepared(session_), row, kNever, reached);
    std::set<std::string> seen;
    reached = true;
    for (int failing = 1; reached; ++failing) {
      const Object regex = tests::Prepared(session_);
      seen.insert(RunFailing(regex, row, failing, reached));
      tests::Prepare(regex);
      bool unused = false;
      EXPECT_EQ(RunFailing(regex, row, kNever, unused), healthy);
    }
    std::set<std::string> expected = FailuresOf(row.label);
    expected.insert(healthy);
    EXPECT_EQ(seen, expected);
    ASSERT_EQ(session_.host.Problems(), std::vector<std::string>());
  }
}

TEST_F(AllocationFaults, TellWhyNoPatternCouldBeCompiled) {
  const Object regex = session_.New();
  const tests::Values pattern = {"b(c)"};
  allocations.Arm(1);
  EXPECT_FALSE(regex.Call("Compile", pattern).Boolean());
  EXPECT_TRUE(allocations.Disarm());
  EXPECT_EQ(regex.Get("ErrorMessage").UTF8(), "failed to get memory");
  EXPECT_EQ(regex.Call("Execute", {"bc", 0}).Integer(), 0);
  EXPECT_EQ(regex.Get("Lasterror").Integer(), -99);
  EXPECT_TRUE(regex.Call("Compile", pattern).Boolean());
}

TEST_F(AllocationFaults, LeaveAnObjectWithoutVectorToItsOptions) {
  const Object regex = session_.host.NewUninitialised("RegExZRK");
  allocations.Arm(1);
  const Outcome outcome = regex.TryCall("Constructor", {60});
  EXPECT_TRUE(allocations.Disarm());
  EXPECT_EQ(tests::Raised(outcome), "OutOfMemoryException: Failed to allocate vector array.");
  EXPECT_EQ(regex.Get("VectorSize").Integer(), 0);
  EXPECT_EQ(regex.Get("CompileOptions").Integer(), 0x2A00);
  EXPECT_TRUE(regex.Call("Compile", {"b"}).Boolean());
  EXPECT_EQ(tests::Raised(regex.TryCall("Execute", {"b", 0})),
            "NilObjectException: RegEx class not initialized.");
}

// The first text of all, and a text beside one that is kept, need memory for their adapters.
TEST_F(AllocationFaults, ReachTheAdapterOfAKeptText) {
  const Object regex = session_.Compiled("b");
  const tests::Values subject = {"abc", 0};
  for (const char* method : {"Execute", "ExecuteMT"}) {
    allocations.Arm(1);
    const Outcome outcome = regex.TryCall(method, subject);
    EXPECT_TRUE(allocations.Disarm());
    EXPECT_EQ(tests::Show(regex, outcome), "0 err=-99" + kRaised);
    EXPECT_TRUE(regex.Get("Text").IsNil());
  }
  EXPECT_EQ(regex.Call("Execute", subject).Integer(), 1);
}

// The C library ends the process where a thread's first use of some thread data finds no memory.
TEST_F(AllocationFaults, OfEverythingOnAWorkerAreTheRecursionLimit) {
#ifdef __clang__
  GTEST_SKIP() << "needs TLS descriptors";
#endif
  if (__interceptor_malloc != nullptr) GTEST_SKIP() << "sanitizers need memory there themselves";
  const Object regex = session_.Compiled("b");
  const tests::Values subject = {"abc"};
  workers_get_nothing = true;
  EXPECT_EQ(regex.Call("ExecuteMT", subject).Integer(), 0);
  workers_get_nothing = false;
  EXPECT_EQ(regex.Get("Lasterror").Integer(), -21);
  EXPECT_EQ(regex.Call("ExecuteMT", subject).Integer(), 1);
}

// The record of matches is a help only: without memory for it they are searched again.
TEST_F(AllocationFaults, MakeReplaceAllSlowerOrNull) {
  const Object regex = session_.Compiled("(b)(c)");
  std::string target, replaced;
  for (int i = 0; i < 1000; ++i) {
    target += "abc";
    replaced += "acb";
  }
  const CallRow row = {"", "ReplaceAll", [&](standin::Host&) -> tests::Values {
                         return {target, "\\2\\1"};
                       }};
  bool reached = true;
  int replaced_all = 0;
  for (int failing = 1; reached; ++failing) {
    const std::string outcome = RunFailing(regex, row, failing, reached);
    if (outcome == "nil err=-99") continue;
    EXPECT_TRUE(outcome == '"' + replaced + "\" err=0") << failing;
    EXPECT_EQ(regex.Get("Count").Integer(), 1000);
    ++replaced_all;
  }
  EXPECT_GE(replaced_all, 3);
}

// A replacement text is taken apart once, into at most eight times its length, whatever stands in
// it.
TEST_F(AllocationFaults, LeaveReplacementTextsWithinEightTimesTheirLength) {
  const Object regex = session_.Compiled("b");
  for (const char* const piece : {"\\\\", "\\1", "\\q", "\\99", "a", "\\0a"}) {
    SCOPED_TRACE(piece);
    std::string text;
    while (text.size() < 100'000) text += piece;
    const tests::Values arguments = {"b", text};
    allocations.Arm(kNever);
    const Value result = regex.Call("ReplaceAll", arguments);
    allocations.Disarm();
    const std::size_t overhead = 4096;
    const std::size_t copy_of_text = text.size() + 4;  // this host's texts need one
    EXPECT_LE(allocations.bytes, 8 * text.size() + copy_of_text + result.Bytes().size() + overhead);
  }
}

}  // namespace

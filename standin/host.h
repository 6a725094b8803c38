// The stand-in host: it plays the host's side of the interface on a machine without one.
//
//   standin::Host host({.version = 2013.04});
//   standin::Library library(path);
//   library.Start(host);
//   standin::Object regex = host.New("RegExZRK");
//   regex.Call("Compile", {"a+"});
//   ...                                   // the end of `regex`
//   EXPECT_EQ(host.Problems(), std::vector<std::string>{});
#ifndef ZRK_STANDIN_HOST_H
#define ZRK_STANDIN_HOST_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "host/records.h"
#include "standin/accounts.h"
#include "standin/class_info.h"
#include "standin/object.h"
#include "standin/value.h"

namespace standin {

// Thrown by Fault::before, it goes on into the library, as a native exception of a host would.
struct NativeException {};

// What goes wrong with one service.
struct Fault {
  bool missing = false;       // the resolver answers null ...
  int until_asked = 0;        // ... only the first n times it is asked (0: always)
  bool answers_null = false;  // a call answers null, 0, -1 or false and has no effect ...
  int only_call = 0;          // ... only the n-th call, counted from 1 (0: every call)
  std::function<void()> before = nullptr;  // runs before each call of the service

  static Fault Missing() { return {.missing = true}; }
  static Fault MissingUntilAsked(int times) { return {.missing = true, .until_asked = times}; }
  static Fault AnswersNull(int only_call = 0) {
    return {.answers_null = true, .only_call = only_call};
  }
};

struct HostOptions {
  // None: the host has no "REALGetRBVersion".
  std::optional<double> version = 2017.0;
  // Arrays have direct element storage.
  bool direct_storage = true;
  // String data ends with a zero byte. Otherwise the one byte past it is readable, but not zero.
  bool terminate_string_data = true;
  // Where instance records start in objects; at least 1, a multiple of the machine word.
  std::size_t instance_offset = 32;
  // A task may use an object while another task, or the program, waits for a call of it. Otherwise
  // that is a CallError, as the mistake that it is.
  bool shared_objects = false;
  // By service name, in any case; for a service with two names `missing` concerns the one named,
  // the rest both.
  std::map<std::string, Fault> faults = {};
  // Exception classes that "PluginNewInstance" does not know.
  std::set<std::string> unknown_classes = {};
  // Gets a line for every method call and service call, services indented.
  std::function<void(std::string_view)> trace = nullptr;
};

// One host is current from its construction to its end; a second one meanwhile is refused with
// std::logic_error. Everything here belongs to the thread that made it.
class Host {
 public:
  using Resolver = zrk::HostFunction (*)(const char* name);
  // A cooperative task: runs a step whenever the library yields; false when it is done.
  using Task = std::function<bool()>;

  // Throws std::invalid_argument for a fault whose name is no service.
  explicit Host(HostOptions options = {});
  ~Host();
  Host(const Host&) = delete;
  Host& operator=(const Host&) = delete;

  // The host that is alive, or null.
  static Host* Current();
  // What the entry point is given; it asks the current host.
  static zrk::HostFunction Resolve(const char* name);
  // All names that services are looked up by.
  static std::vector<std::string> ServiceNames();

  const HostOptions& options() const { return options_; }
  Accounts& accounts() { return accounts_; }
  std::vector<std::string> Problems() const { return accounts_.Problems(); }

  // Makers of values. Strings take bytes as they are; nil elements are null in arrays.
  Value String(std::string_view bytes, std::uint32_t encoding = zrk::kEncodingUTF8);
  Value MemoryBlock(std::string_view bytes);
  // A block without data, or (for a negative size) whose size makes no sense.
  Value MemoryBlockWithoutData(std::int32_t size);
  Value MemoryBlockClaiming(std::string_view bytes, std::int32_t size);
  Value StringArray(const Values& elements);
  // Elements are nil, strings, integers, booleans and doubles.
  Value VariantArray(const Values& elements);

  // A new object after its constructor ran. Throws CallError for an unknown class or arguments
  // that do not fit, HostException where the constructor raised.
  Object New(std::string_view class_name, const Values& arguments = {});
  // A zero-filled object whose constructor has not been called.
  Object NewUninitialised(std::string_view class_name);
  // A registered class by name in any case, or null; and all of them.
  const ClassInfo* FindClass(std::string_view name) const;
  const std::vector<std::unique_ptr<ClassInfo>>& classes() const { return classes_; }

  void AddTask(Task task) { tasks_.push_back({std::move(task)}); }
  // One step of every task, as "REALYieldToRB" does it.
  void RunTasks();
  bool HasTasks() const { return !tasks_.empty(); }
  // How many runs of the tasks are around what is going on: 0 in the program itself.
  int task_depth() const { return task_depth_; }

  // Changes what is wrong with a service from now on; an empty Fault is none.
  void SetFault(const std::string& service, Fault fault);

  // How often a service was called, under whichever of its names.
  std::uint64_t Calls(std::string_view service) const;
  // How often the resolver was asked for a name, by name; unknown names are in it as well.
  const std::map<std::string, int, std::less<>>& requests() const { return requests_; }
  // What the library announced with "RegisterPluginVersion".
  std::optional<std::int32_t> plugin_version() const { return plugin_version_; }

  // Whether a service call is let through; counts it and applies faults.
  bool AdmitCall(std::size_t row);

 private:
  friend struct Services;
  friend class MethodCall;

  struct RunningTask {
    Task step;
    bool running = false;  // a task that calls the library is not entered again from its yields
    bool done = false;
  };

  Value Adopt(std::unique_ptr<Thing> thing);
  Value Array(Kind kind, const Values& elements);
  void RunTask(RunningTask& task);

  HostOptions options_;
  Accounts accounts_;
  std::unique_ptr<class Switchboard> switchboard_;
  std::vector<std::unique_ptr<ClassInfo>> classes_;
  std::list<RunningTask> tasks_;
  int task_depth_ = 0;
  std::vector<HostError> pending_errors_;
  std::map<std::string, int, std::less<>> requests_;
  std::optional<std::int32_t> plugin_version_;
};

}  // namespace standin

#endif  // ZRK_STANDIN_HOST_H

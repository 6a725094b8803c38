// The stand-in host's accounts: who holds how many references to what.
//
// Every string, memory block, array, object and filled string-data record has two counts, the
// references that the host's side holds and those that the library holds. A thing ends when both
// are zero. So a reference that the library gives back too often is found at once, even while the
// host itself still holds some, and one that it never gives back is found at the end.
//
// Ended things stay in quarantine for a while: their text and data are freed at once (so that
// sanitizers and valgrind see a late read), but their address is not used again and a service that
// is handed one of them is reported with the thing's history.
#ifndef ZRK_STANDIN_ACCOUNTS_H
#define ZRK_STANDIN_ACCOUNTS_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <unordered_map>
#include <utility>
#include <vector>

#include "standin/value.h"

namespace standin {

enum class Side : unsigned char { kHost, kLibrary };

// One step in the life of a thing. `call` and `method` point to names that outlive the accounts.
struct Event {
  const char* call = "";
  const char* method = "";
  std::uint64_t number = 0;
};

// The first step and the latest few; fixed size, no allocation.
class History {
 public:
  void Add(const Event& event);
  bool Any() const { return count_ > 0; }
  // `REALBuildString (call 3, in Compile), REALUnlockString (call 9, in Compile)`.
  std::string Text() const;

 private:
  static constexpr std::size_t kKept = 6;
  Event first_;
  std::array<Event, kKept> latest_;
  std::size_t count_ = 0;
};

// Something with an address that the library sees and references that are counted.
class Thing {
 public:
  virtual ~Thing() = default;
  Thing(const Thing&) = delete;
  Thing& operator=(const Thing&) = delete;

  Kind kind() const { return kind_; }
  bool ended() const { return ended_; }
  std::int32_t references(Side side) const { return references_[static_cast<std::size_t>(side)]; }
  // The address by which the library knows the thing.
  virtual void* handle() = 0;
  // A short reminder of the content, kept past the end: `"abc"`.
  virtual std::string Excerpt() const { return {}; }
  // `string #3 "abc"`.
  std::string Describe() const;

 protected:
  explicit Thing(Kind kind) : kind_(kind) {}
  // Called once, when the last reference is gone: runs destructors, gives up inner references,
  // frees text and data. The thing itself stays until it leaves the quarantine.
  virtual void End() = 0;

 private:
  friend class Accounts;
  Kind kind_;
  bool ending_ = false;
  bool ended_ = false;
  std::array<std::int32_t, 2> references_{};
  std::uint64_t number_ = 0;
  History history_;
};

class Accounts {
 public:
  Accounts();
  ~Accounts();
  Accounts(const Accounts&) = delete;
  Accounts& operator=(const Accounts&) = delete;

  // Opens an account with one reference held by `side`; answers the thing, now owned here.
  template <typename T>
  T* Open(std::unique_ptr<T> thing, Side side) {
    T* raw = thing.get();
    Enter(std::move(thing), side);
    return raw;
  }

  // The living thing at `handle`, of this kind or (two arguments) of any; otherwise null, and the
  // call under way is reported as using something ended, unknown or of the wrong kind. A null
  // handle answers null without a report.
  Thing* Find(const void* handle);
  Thing* Find(const void* handle, Kind kind);

  // The same without any report; for the host's own handles and for traces.
  Thing* Look(const void* handle) const;

  void Give(Thing& thing, Side side);
  // One reference less; the last one ends the thing. Reports a reference that `side` never held.
  void TakeBack(Thing& thing, Side side);
  // Moves a reference from the library to the host, as a method's result does.
  void HandOver(Thing& thing);

  // Reports a fault: one sentence, completed with the call under way. Any thread may report.
  void Report(std::string_view sentence);

  // What has been reported so far, and every reference or string-data record that the library
  // still holds: empty means that the balance is even. Objects that are alive hold references by
  // right, so end them first.
  std::vector<std::string> Problems() const;

  // The service call under way, for histories and reports; `call` must outlive the accounts.
  // Answers the name of the call around it, to be put back with ResumeCall.
  const char* BeginCall(const char* call);
  void ResumeCall(const char* call) { call_ = call; }
  // The same for the method that the host has called, both ways.
  const char* SetMethod(const char* method) { return std::exchange(method_, method); }
  // The method under way, or "".
  const char* method() const { return method_; }

  // False on every thread but the one that made the accounts.
  bool OnHostThread() const { return std::this_thread::get_id() == thread_; }
  // Tells one host's accounts from another's.
  std::uint64_t serial() const { return serial_; }

  // How many things are alive, and how many of a kind were ever opened.
  std::size_t Living() const;
  std::uint64_t Opened(Kind kind) const { return opened_[static_cast<std::size_t>(kind)]; }

 private:
  void Enter(std::unique_ptr<Thing> thing, Side side);
  void Note(Thing& thing, Side side);
  void Finish(Thing& thing);
  void Quarantine(const void* handle);
  std::string Where() const;
  std::string Life(const Thing& thing) const;

  std::unordered_map<const void*, std::unique_ptr<Thing>> things_;
  std::deque<const void*> quarantine_;
  std::array<std::uint64_t, static_cast<std::size_t>(Kind::kStringData) + 1> opened_{};
  std::uint64_t last_number_ = 0;
  std::uint64_t calls_ = 0;
  const char* call_ = "";
  const char* method_ = "";
  const std::thread::id thread_;
  const std::uint64_t serial_;

  mutable std::mutex reports_mutex_;
  std::vector<std::string> reports_;
  std::uint64_t unlisted_reports_ = 0;
};

}  // namespace standin

#endif  // ZRK_STANDIN_ACCOUNTS_H

#include "standin/accounts.h"

#include <algorithm>
#include <atomic>
#include <sstream>

namespace standin {
namespace {

constexpr std::size_t kQuarantined = 4096;  // things
constexpr std::size_t kListedReports = 200;

std::uint64_t NextSerial() {
  static std::atomic<std::uint64_t> last = 0;
  return ++last;
}

std::string EventText(const Event& event) {
  std::ostringstream text;
  const bool named = *event.call != '\0';
  text << (named ? event.call : *event.method != '\0' ? event.method : "host");
  if (named) text << " (call " << event.number;
  if (named && *event.method != '\0') text << ", in " << event.method;
  if (named) text << ")";
  return text.str();
}

}  // namespace

void History::Add(const Event& event) {
  if (count_ == 0) {
    first_ = event;
  } else {
    latest_[(count_ - 1) % kKept] = event;
  }
  ++count_;
}

std::string History::Text() const {
  if (count_ == 0) return "nothing";
  std::string text = EventText(first_);
  const std::size_t later = count_ - 1;
  const std::size_t shown = std::min(later, kKept);
  if (later > shown) text += ", ...";
  for (std::size_t i = later - shown; i < later; ++i) {
    text += ", " + EventText(latest_[i % kKept]);
  }
  return text;
}

std::string Thing::Describe() const {
  const std::string excerpt = Excerpt();
  return std::string(KindName(kind_)) + " #" + std::to_string(number_) +
         (excerpt.empty() ? "" : " " + excerpt);
}

Accounts::Accounts() : thread_(std::this_thread::get_id()), serial_(NextSerial()) {}
Accounts::~Accounts() = default;

void Accounts::Enter(std::unique_ptr<Thing> thing, Side side) {
  Thing& entered = *thing;
  entered.number_ = ++last_number_;
  ++opened_[static_cast<std::size_t>(entered.kind_)];
  things_[entered.handle()] = std::move(thing);
  Give(entered, side);
}

Thing* Accounts::Look(const void* handle) const {
  const auto found = things_.find(handle);
  return found == things_.end() || found->second->ended_ ? nullptr : found->second.get();
}

Thing* Accounts::Find(const void* handle) {
  if (handle == nullptr) return nullptr;
  const auto found = things_.find(handle);
  if (found == things_.end()) {
    std::ostringstream text;
    text << "was handed " << handle << ", which is nothing of this host's";
    Report(text.str());
    return nullptr;
  }
  Thing& thing = *found->second;
  if (!thing.ended_) return &thing;
  Report("was handed " + thing.Describe() + ", which has ended" + Life(thing));
  return nullptr;
}

Thing* Accounts::Find(const void* handle, Kind kind) {
  Thing* thing = Find(handle);
  if (!thing || thing->kind_ == kind) return thing;
  Report("was handed " + thing->Describe() + " where a " + KindName(kind) + " belongs");
  return nullptr;
}

// What a test does with its values tells nothing about the library: it stays out of histories.
void Accounts::Note(Thing& thing, Side side) {
  if (side == Side::kHost && *call_ == '\0' && thing.history_.Any()) return;
  thing.history_.Add({call_, method_, calls_});
}

void Accounts::Give(Thing& thing, Side side) {
  ++thing.references_[static_cast<std::size_t>(side)];
  Note(thing, side);
}

void Accounts::TakeBack(Thing& thing, Side side) {
  std::int32_t& held = thing.references_[static_cast<std::size_t>(side)];
  if (held == 0) {
    Report("gave back a reference on " + thing.Describe() + " that " +
           (side == Side::kLibrary ? "the library" : "the host") + " does not hold" + Life(thing));
    return;
  }
  --held;
  Note(thing, side);
  if (thing.references(Side::kHost) + thing.references(Side::kLibrary) == 0) Finish(thing);
}

void Accounts::HandOver(Thing& thing) {
  ++thing.references_[static_cast<std::size_t>(Side::kHost)];
  if (thing.references(Side::kLibrary) > 0) {
    TakeBack(thing, Side::kLibrary);
    return;
  }
  Report("returned " + thing.Describe() + " without a reference of its own on it" + Life(thing));
}

// A destructor may lock and unlock its own object; the count that reaches zero again is no news.
void Accounts::Finish(Thing& thing) {
  if (thing.ending_) return;
  thing.ending_ = true;
  thing.End();
  thing.ended_ = true;
  if (thing.references(Side::kLibrary) > 0) {
    Report("kept a reference on " + thing.Describe() + " past its end" + Life(thing));
  }
  Quarantine(thing.handle());
}

void Accounts::Quarantine(const void* handle) {
  quarantine_.push_back(handle);
  if (quarantine_.size() <= kQuarantined) return;
  things_.erase(quarantine_.front());
  quarantine_.pop_front();
}

std::string Accounts::Where() const { return EventText({call_, method_, calls_}); }

std::string Accounts::Life(const Thing& thing) const {
  return "; its calls: " + thing.history_.Text();
}

void Accounts::Report(std::string_view sentence) {
  const std::string where = OnHostThread() ? Where() : "another thread";
  const std::lock_guard lock(reports_mutex_);
  if (reports_.size() < kListedReports) {
    reports_.push_back(where + ": " + std::string(sentence));
  } else {
    ++unlisted_reports_;
  }
}

std::vector<std::string> Accounts::Problems() const {
  std::vector<std::string> problems;
  {
    const std::lock_guard lock(reports_mutex_);
    problems = reports_;
    if (unlisted_reports_ > 0) {
      problems.push_back("and " + std::to_string(unlisted_reports_) + " more");
    }
  }
  std::vector<const Thing*> held;
  for (const auto& [handle, thing] : things_) {
    if (!thing->ended_ && thing->references(Side::kLibrary) > 0) held.push_back(thing.get());
  }
  std::ranges::sort(held, {}, &Thing::number_);
  for (const Thing* thing : held) {
    const std::int32_t count = thing->references(Side::kLibrary);
    problems.push_back(thing->Describe() + ": " + std::to_string(count) +
                       (count == 1 ? " reference was" : " references were") + " never given back" +
                       Life(*thing));
  }
  return problems;
}

const char* Accounts::BeginCall(const char* call) {
  ++calls_;
  return std::exchange(call_, call);
}

std::size_t Accounts::Living() const {
  return static_cast<std::size_t>(
      std::ranges::count_if(things_, [](const auto& entry) { return !entry.second->ended_; }));
}

}  // namespace standin

#include "standin/switchboard.h"

#include <algorithm>
#include <initializer_list>
#include <stdexcept>

#include "host/service_list.h"
#include "standin/encoding.h"
#include "standin/services.h"
#include "standin/things.h"

namespace standin {
namespace {

// The rows in the list's order, by first name, so that each knows its place at compile time.
constexpr std::string_view kNames[] = {
#define STANDIN_NAME(wrapper, binding, result, arguments, name, second, neutral) name,
#define STANDIN_STARTUP_NAME(result, arguments, name) name,
    ZRK_HOST_SERVICES(STANDIN_NAME) ZRK_HOST_STARTUP_SERVICES(STANDIN_STARTUP_NAME)
#undef STANDIN_NAME
#undef STANDIN_STARTUP_NAME
};

constexpr std::size_t RowOf(std::string_view name) {
  return static_cast<std::size_t>(std::ranges::find(kNames, name) - std::begin(kNames));
}

constexpr int ListedNeutral(std::initializer_list<int> listed) {
  return listed.size() == 0 ? 0 : *listed.begin();
}

// The function that the library gets for a row. The last argument has the row's listed signature:
// an implementation with any other does not convert to it.
template <std::size_t kRow, int kNeutral, auto kImplementation>
struct Entry;
template <std::size_t kRow, int kNeutral, typename R, typename... A, R (*kImplementation)(A...)>
struct Entry<kRow, kNeutral, kImplementation> {
  STANDIN_BARE_ADDRESS static R Call(A... arguments) {
    return Answer(kRow, kNames[kRow].data(), kImplementation, kNeutral, arguments...);
  }
};

// The start-up rows have no wrapper; their signatures tell them apart.
constexpr auto StartupService(double (*)()) { return &Services::HostVersion; }
constexpr auto StartupService(void (*)(std::int32_t)) { return &Services::RegisterPluginVersion; }

}  // namespace

const std::vector<Switchboard::Row>& Switchboard::Rows() {
#define STANDIN_ROW(wrapper, binding, result, arguments, name, second, neutral) \
  {name, second,                                                                \
   reinterpret_cast<zrk::HostFunction>(                                         \
       &Entry<RowOf(name), ListedNeutral(neutral),                              \
              static_cast<result(*) arguments>(&Services::wrapper)>::Call)},
#define STANDIN_STARTUP_ROW(result, arguments, name) \
  {name, nullptr,                                    \
   reinterpret_cast<zrk::HostFunction>(              \
       &Entry<RowOf(name), 0, StartupService(static_cast<result(*) arguments>(nullptr))>::Call)},
  static const std::vector<Row> rows = {ZRK_HOST_SERVICES(STANDIN_ROW)
                                            ZRK_HOST_STARTUP_SERVICES(STANDIN_STARTUP_ROW)};
#undef STANDIN_ROW
#undef STANDIN_STARTUP_ROW
  return rows;
}

Switchboard::Switchboard(Host& host) : host_(host), lines_(Rows().size()) {
  for (const auto& [name, fault] : host.options().faults) Refresh(name);
}

// Two rows may share a name: they share its first entry, which looks at what it is given.
zrk::HostFunction Switchboard::Resolve(std::string_view name, int asked) const {
  const auto row =
      std::ranges::find_if(Rows(), [name](const Row& candidate) { return candidate.Has(name); });
  if (row == Rows().end()) return nullptr;
  if (name == "REALGetRBVersion" && !host_.options().version) return nullptr;
  const Fault* fault = FindFault(name == row->first ? row->first : row->second);
  if (fault && fault->missing && (fault->until_asked == 0 || asked <= fault->until_asked)) {
    return nullptr;
  }
  return row->entry;
}

const Fault* Switchboard::FindFault(const char* name) const {
  if (!name) return nullptr;
  const auto& faults = host_.options().faults;
  const auto found = std::ranges::find_if(
      faults, [name](const auto& fault) { return SameName(fault.first, name); });
  return found == faults.end() ? nullptr : &found->second;
}

void Switchboard::Refresh(std::string_view service) {
  bool known = false;
  for (std::size_t i = 0; i < lines_.size(); ++i) {
    const Row& row = Rows()[i];
    const bool meant =
        SameName(service, row.first) || (row.second && SameName(service, row.second));
    if (!meant) continue;
    known = true;
    lines_[i].faults = {FindFault(row.first), FindFault(row.second)};
    lines_[i].calls_before_faults = lines_[i].calls;
  }
  if (known) return;
  std::string text = "\"" + std::string(service) + "\" is no service; there are:";
  for (const std::string& name : Host::ServiceNames()) text += "\n  " + name;
  throw std::invalid_argument(text);
}

bool Switchboard::Admit(std::size_t row) {
  Line& line = lines_[row];
  const std::uint64_t number = ++line.calls - line.calls_before_faults;
  bool admitted = true;
  for (const Fault* fault : std::array(line.faults)) {
    if (!fault) continue;
    const bool meant = fault->only_call == 0 || number == static_cast<unsigned>(fault->only_call);
    if (fault->answers_null && meant) admitted = false;
    if (const auto before = fault->before) before();
  }
  return admitted;
}

std::uint64_t Switchboard::Calls(std::string_view service) const {
  std::uint64_t calls = 0;
  for (std::size_t i = 0; i < lines_.size(); ++i) {
    if (Rows()[i].Has(service)) calls += lines_[i].calls;
  }
  return calls;
}

ServiceCall::ServiceCall(const char* name) : host_(Host::Current()), name_(name) {
  const bool counts = host_ && host_->accounts().OnHostThread();
  if (counts) outer_call_ = host_->accounts().BeginCall(name);
}

ServiceCall::~ServiceCall() {
  if (outer_call_) host_->accounts().ResumeCall(outer_call_);
}

bool ServiceCall::Admit(std::size_t row) {
  if (host_ && !outer_call_) host_->accounts().Report(std::string("called ") + name_);
  if (!outer_call_) return false;
  admitted_ = row == kNoRow || host_->AdmitCall(row);
  if (!admitted_ && Tracing()) Trace("(...) -> nothing, by a fault");
  return admitted_;
}

void ServiceCall::Failed(const char* reason) noexcept {
  try {
    if (host_) host_->accounts().Report(std::string("failed: ") + reason);
  } catch (...) {  // no memory for the report: nothing is left to do
  }
}

void ServiceCall::Trace(const std::string& ending) {
  const std::string arguments = admitted_ ? "(" + shown_ + ")" : "";
  host_->options().trace("  " + std::string(name_) + arguments + ending);
}

std::string ServiceCall::ShowBytes(const char* bytes, std::int32_t length) {
  if (!bytes || length < 0) return "no bytes";
  return TextExcerpt({bytes, static_cast<std::size_t>(length)}).Text();
}

std::string ServiceCall::Show(const char* name) {
  return name ? "\"" + std::string(name) + "\"" : "null";
}

std::string ServiceCall::Show(std::uint32_t encoding) { return EncodingName(encoding); }

std::string ServiceCall::Show(zrk::REALclassDefinition* definition) {
  return definition ? Show(definition->Name) : "null";
}

std::string ServiceCall::Show(const void* handle) {
  const Thing* thing = Host::Current()->accounts().Look(handle);
  if (thing) return thing->Describe();
  return handle ? "something unknown" : "nil";
}

}  // namespace standin

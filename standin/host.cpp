#include "standin/host.h"

#include <algorithm>
#include <atomic>
#include <set>
#include <stdexcept>
#include <utility>

#include "standin/switchboard.h"
#include "standin/things.h"

namespace standin {
namespace {

// Read on foreign threads as well, by a library that calls services where it must not.
std::atomic<Host*> current = nullptr;

}  // namespace

Host::Host(HostOptions options) : options_(std::move(options)) {
  if (options_.instance_offset == 0 || options_.instance_offset % sizeof(zrk::HostWord) != 0) {
    throw std::invalid_argument("the instance offset must be a positive multiple of a word");
  }
  switchboard_ = std::make_unique<Switchboard>(*this);
  Host* none = nullptr;
  if (!current.compare_exchange_strong(none, this)) throw std::logic_error("there is a host");
}

// From here on handles that were left over do nothing.
Host::~Host() { current = nullptr; }

Host* Host::Current() { return current; }

zrk::HostFunction Host::Resolve(const char* name) {
  Host* host = Current();
  if (!host || !name) return nullptr;
  if (!host->accounts_.OnHostThread()) {
    host->accounts_.Report("asked for the service " + std::string(name));
    return nullptr;
  }
  const int asked = ++host->requests_[name];
  return host->switchboard_->Resolve(name, asked);
}

std::vector<std::string> Host::ServiceNames() {
  std::set<std::string> names;
  for (const Switchboard::Row& row : Switchboard::Rows()) {
    names.insert(row.first);
    if (row.second) names.insert(row.second);
  }
  return {names.begin(), names.end()};
}

Value Host::Adopt(std::unique_ptr<Thing> thing) {
  Thing* opened = accounts_.Open(std::move(thing), Side::kHost);
  return Value(opened->kind(), Reference::Adopt(opened->handle()));
}

Value Host::String(std::string_view bytes, std::uint32_t encoding) {
  return Adopt(std::make_unique<HostString>(bytes, encoding));
}

Value Host::MemoryBlock(std::string_view bytes) {
  return MemoryBlockClaiming(bytes, static_cast<std::int32_t>(bytes.size()));
}

Value Host::MemoryBlockWithoutData(std::int32_t size) {
  return Adopt(std::make_unique<HostMemoryBlock>("", size, false));
}

Value Host::MemoryBlockClaiming(std::string_view bytes, std::int32_t size) {
  return Adopt(std::make_unique<HostMemoryBlock>(bytes, size, true));
}

Value Host::Array(Kind kind, const Values& elements) {
  auto array = std::make_unique<HostArray>(kind, options_.direct_storage);
  for (std::size_t i = 0; i < elements.size(); ++i) array->Insert(i, elements[i].handle());
  array->Resize(elements.size());
  return Adopt(std::move(array));
}

Value Host::StringArray(const Values& elements) {
  for (const Value& element : elements) {
    if (element.IsNil() || element.kind() == Kind::kString) continue;
    throw CallError("a string array takes no " + std::string(KindName(element.kind())));
  }
  return Array(Kind::kStringArray, elements);
}

Value Host::VariantArray(const Values& elements) {
  Values variants;
  for (const Value& element : elements) {
    const bool wrapped = element.IsPlain() || (element.kind() == Kind::kString && element.handle());
    variants.push_back(wrapped ? Adopt(std::make_unique<HostVariant>(element)) : element);
  }
  return Array(Kind::kVariantArray, variants);
}

const ClassInfo* Host::FindClass(std::string_view name) const {
  const auto found = std::ranges::find_if(
      classes_, [name](const auto& info) { return SameName(info->name(), name); });
  return found == classes_.end() ? nullptr : found->get();
}

Object Host::NewUninitialised(std::string_view class_name) {
  const ClassInfo* info = FindClass(class_name);
  if (!info) throw CallError("no class \"" + std::string(class_name) + "\" is registered");
  return Object(Adopt(std::make_unique<HostInstance>(*info)));
}

Object Host::New(std::string_view class_name, const Values& arguments) {
  Object object = NewUninitialised(class_name);
  ConstructInstance(*static_cast<HostInstance*>(Living(object.value().handle())));
  const bool has_method = !object.class_info().FindMethods("Constructor").empty();
  if (has_method || !arguments.empty()) object.Call("Constructor", arguments);
  return object;
}

void Host::RunTask(RunningTask& task) {
  task.running = true;
  try {
    task.done = !task.step();
  } catch (const std::exception& error) {
    task.done = true;
    accounts_.Report(std::string("a task ended with an error: ") + error.what());
  }
  task.running = false;
}

// Tasks may start tasks and may yield themselves, so nothing leaves the list before the outermost
// run is over.
void Host::RunTasks() {
  ++task_depth_;
  for (RunningTask& task : tasks_) {
    if (!task.running && !task.done) RunTask(task);
  }
  if (--task_depth_ == 0) {
    tasks_.remove_if([](const RunningTask& task) { return task.done; });
  }
}

void Host::SetFault(const std::string& service, Fault fault) {
  options_.faults[service] = std::move(fault);
  switchboard_->Refresh(service);
}

std::uint64_t Host::Calls(std::string_view service) const { return switchboard_->Calls(service); }

bool Host::AdmitCall(std::size_t row) { return switchboard_->Admit(row); }

}  // namespace standin

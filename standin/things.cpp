#include "standin/things.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <new>
#include <utility>

#include "standin/host.h"

#if defined(__SANITIZE_ADDRESS__)
#define STANDIN_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define STANDIN_ASAN 1
#endif
#endif
#ifdef STANDIN_ASAN
#include <sanitizer/asan_interface.h>
#endif

namespace standin {
namespace {

constexpr unsigned char kHeaderByte = 0xA5;
// What lies before a string's text, and after string data that no zero byte ends.
constexpr unsigned char kForeignByte = 0xEE;

// Records in quarantine stay allocated; the address sanitizer is told that nobody may read them.
void Forbid([[maybe_unused]] const void* memory, [[maybe_unused]] std::size_t size) {
#ifdef STANDIN_ASAN
  __asan_poison_memory_region(memory, size);
#endif
}

void Allow([[maybe_unused]] const void* memory, [[maybe_unused]] std::size_t size) {
#ifdef STANDIN_ASAN
  __asan_unpoison_memory_region(memory, size);
#endif
}

// `before` foreign bytes, the text, and one last byte where `with_last` says so; no byte more.
Bytes CopyBytes(std::string_view text, std::size_t before, bool with_last, unsigned char last) {
  Bytes bytes(new unsigned char[before + text.size() + (with_last ? 1 : 0)]);
  std::fill_n(bytes.get(), before, kForeignByte);
  if (!text.empty()) std::memcpy(bytes.get() + before, text.data(), text.size());
  if (with_last) bytes[before + text.size()] = last;
  return bytes;
}

}  // namespace

Thing* Living(const void* handle) {
  Host* host = Host::Current();
  return host ? host->accounts().Look(handle) : nullptr;
}

TextExcerpt::TextExcerpt(std::string_view text)
    : size_(std::min(text.size(), bytes_.size())), cut_(text.size() > bytes_.size()) {
  std::copy_n(text.data(), size_, bytes_.data());
}

std::string TextExcerpt::Text() const {
  std::string out = "\"";
  for (std::size_t i = 0; i < size_; ++i) {
    const auto byte = static_cast<unsigned char>(bytes_[i]);
    std::array<char, 8> text{bytes_[i]};
    if (byte < 0x20 || byte > 0x7E) std::snprintf(text.data(), text.size(), "\\x%02X", byte);
    out += text.data();
  }
  return out + (cut_ ? "...\"" : "\"");
}

HostString::HostString(std::string_view bytes, std::uint32_t encoding)
    : Thing(Kind::kString), buffer_(CopyBytes(bytes, 1, true, 0)), excerpt_(bytes) {
  record = {buffer_.get(), static_cast<std::int32_t>(bytes.size()), encoding};
}

HostString::~HostString() { Allow(&record, sizeof record); }

std::string_view HostString::bytes() const {
  return {reinterpret_cast<const char*>(record.Buffer) + 1,
          static_cast<std::size_t>(std::max(record.Length, 0))};
}

// A late read of the record finds a text that no test expects, instead of a wild pointer.
void HostString::End() {
  static unsigned char ended[] = "\xEE<ended string>";
  buffer_.reset();
  record = {ended, sizeof ended - 2, zrk::kEncodingUnknown};
  Forbid(&record, sizeof record);
}

HostStringData::HostStringData(std::string_view bytes, bool terminated)
    : Thing(Kind::kStringData),
      data_(CopyBytes(bytes, 0, true, terminated ? 0 : kForeignByte)),
      excerpt_(bytes) {}

HostMemoryBlock::HostMemoryBlock(std::string_view bytes, std::int32_t size, bool with_data)
    : Thing(Kind::kMemoryBlock), real_size_(bytes.size()) {
  Hold(with_data ? CopyBytes(bytes, 0, false, 0) : nullptr, size);
}

HostMemoryBlock::~HostMemoryBlock() { Allow(&record, sizeof record); }

void HostMemoryBlock::Hold(Bytes data, std::int32_t size) {
  data_ = std::move(data);
  record.Data = data_.get();
  record.Size = size;
}

std::string_view HostMemoryBlock::bytes() const {
  return {reinterpret_cast<const char*>(data_.get()), data_ ? real_size_ : 0};
}

void HostMemoryBlock::Resize(std::size_t size) {
  std::string resized(bytes());
  resized.resize(size);
  Hold(CopyBytes(resized, 0, false, 0), static_cast<std::int32_t>(size));
  real_size_ = size;
}

void HostMemoryBlock::End() {
  Hold(nullptr, 0);
  Forbid(&record, sizeof record);
}

HostArray::~HostArray() { Allow(&record_, sizeof record_); }

std::string HostArray::Excerpt() const {
  return ended() ? "" : "(" + std::to_string(elements_.size()) + ")";
}

void HostArray::Insert(std::size_t index, void* element) {
  if (Thing* thing = Living(element)) Host::Current()->accounts().Give(*thing, Side::kHost);
  elements_.insert(elements_.begin() + static_cast<std::ptrdiff_t>(index), element);
  Refresh();
}

void HostArray::Resize(std::size_t count) {
  std::vector<void*> elements(count);
  std::copy_n(elements_.begin(), std::min(count, elements_.size()), elements.begin());
  elements_.swap(elements);
  Refresh();
  for (std::size_t i = count; i < elements.size(); ++i) {
    Thing* thing = Living(elements[i]);
    if (thing) Host::Current()->accounts().TakeBack(*thing, Side::kHost);
  }
}

void HostArray::End() {
  Resize(0);
  Forbid(&record_, sizeof record_);
}

std::string HostVariant::Excerpt() const { return ended() ? "" : "of " + content_.Describe(); }

Value HostVariant::StringValue() const {
  switch (content_.kind()) {
    case Kind::kString:
      return content_;
    case Kind::kInteger:
      return std::to_string(content_.Integer());
    case Kind::kBoolean:
      return content_.Boolean() ? "True" : "False";
    case Kind::kDouble: {
      std::array<char, 32> text;
      std::snprintf(text.data(), text.size(), "%.15g", content_.Double());
      return text.data();
    }
    default:
      return Value::Nil(Kind::kString);
  }
}

HostInstance::HostInstance(const ClassInfo& class_info)
    : Thing(Kind::kObject),
      class_(&class_info),
      size_(class_info.data_offset() + class_info.data_size()),
      memory_(new unsigned char[size_]) {
  std::memset(memory_.get(), kHeaderByte, class_info.data_offset());
  std::memset(data(), 0, class_info.data_size());
}

HostInstance::~HostInstance() { Allow(memory_.get(), size_); }

void HostInstance::End() {
  DestroyInstance(*this);
  Forbid(memory_.get(), size_);
}

}  // namespace standin

#include "fuzz/statics.h"

#include <link.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <stdexcept>

// Whether an address is that of an allocated block; null without a sanitizer.
extern "C" [[gnu::weak]] int __sanitizer_get_ownership(const volatile void* address);

namespace fuzz {
namespace {

struct Range {
  std::uintptr_t begin;
  std::uintptr_t end;
};

struct Search {
  const std::filesystem::path& file;
  std::vector<Range> found;
};

// Writable segments without the pages that the loader has made read-only.
std::vector<Range> WritableRanges(const dl_phdr_info& info) {
  std::vector<Range> ranges;
  std::uintptr_t first_writable = 0;
  for (int i = 0; i < info.dlpi_phnum; ++i) {
    const auto& header = info.dlpi_phdr[i];
    const std::uintptr_t begin = info.dlpi_addr + header.p_vaddr;
    const std::uintptr_t end = begin + header.p_memsz;
    if (header.p_type == PT_LOAD && (header.p_flags & PF_W) != 0) ranges.push_back({begin, end});
    if (header.p_type == PT_GNU_RELRO) {
      first_writable = end & ~(static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE)) - 1);
    }
  }
  for (Range& range : ranges) range.begin = std::max(range.begin, first_writable);
  return ranges;
}

int Visit(dl_phdr_info* info, std::size_t, void* data) {
  auto& search = *static_cast<Search*>(data);
  if (search.file == info->dlpi_name) search.found = WritableRanges(*info);
  return search.found.empty() ? 0 : 1;
}

// Reads and writes between objects as well, where sanitizers let nobody else; volatile, or the
// compiler would make a checked memcpy of it.
[[gnu::no_sanitize_address]] void Copy(const volatile unsigned char* from,
                                       volatile unsigned char* to, std::size_t size) {
  using Word = volatile std::uint64_t;
  std::size_t at = 0;
  for (; at + sizeof(Word) <= size; at += sizeof(Word)) {
    *reinterpret_cast<Word*>(to + at) = *reinterpret_cast<const Word*>(from + at);
  }
  for (; at < size; ++at) to[at] = from[at];
}

void FreeOwned(const std::vector<unsigned char>& now, const std::vector<unsigned char>& before) {
  if (!__sanitizer_get_ownership) return;
  for (std::size_t at = 0; at + sizeof(void*) <= now.size(); at += sizeof(void*)) {
    void* word;
    void* old_word;
    std::memcpy(&word, &now[at], sizeof word);
    std::memcpy(&old_word, &before[at], sizeof word);
    if (word != old_word && word && __sanitizer_get_ownership(word)) ::operator delete(word);
  }
}

}  // namespace

Statics::Statics(const std::filesystem::path& file) {
  Search search{file, {}};
  dl_iterate_phdr(Visit, &search);
  if (search.found.empty()) throw std::runtime_error(file.string() + ": not loaded");
  for (const Range& range : search.found) {
    const std::size_t size = range.end - range.begin;
    auto* const memory = reinterpret_cast<unsigned char*>(range.begin);
    const std::vector<unsigned char> room(size);
    segments_.push_back({memory, room, room});
    Copy(memory, segments_.back().before.data(), size);
  }
}

void Statics::Restore() {
  for (Segment& segment : segments_) {
    Copy(segment.memory, segment.now.data(), segment.now.size());
    FreeOwned(segment.now, segment.before);
    Copy(segment.before.data(), segment.memory, segment.before.size());
  }
}

}  // namespace fuzz

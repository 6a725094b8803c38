#include "fuzz/statics.h"

#include <link.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
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

// Finds the writable segments, without the pages that the loader has made read-only.
int Visit(dl_phdr_info* info, std::size_t, void* data) {
  auto& search = *static_cast<Search*>(data);
  if (search.file != info->dlpi_name) return 0;
  const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
  std::uintptr_t first_writable = 0;
  for (int i = 0; i < info->dlpi_phnum; ++i) {
    const auto& header = info->dlpi_phdr[i];
    const std::uintptr_t begin = info->dlpi_addr + header.p_vaddr;
    const std::uintptr_t end = begin + header.p_memsz;
    const bool writable = header.p_type == PT_LOAD && (header.p_flags & PF_W) != 0;
    if (writable) search.found.push_back({begin, end});
    if (header.p_type == PT_GNU_RELRO) first_writable = end & ~(page - 1);
  }
  for (Range& range : search.found) range.begin = std::max(range.begin, first_writable);
  return 1;
}

}  // namespace

// Between objects sanitizers let nobody read or write. A last word that is not whole is, since
// memory is mapped by the page.
[[gnu::no_sanitize_address]] Statics::Statics(const std::filesystem::path& file) {
  Search search{file, {}};
  dl_iterate_phdr(Visit, &search);
  if (search.found.empty()) throw std::runtime_error(file.string() + ": not loaded");
  for (const auto& [begin, end] : search.found) {
    auto* const words = reinterpret_cast<volatile std::uintptr_t*>(begin);
    const std::size_t count = (end - begin + sizeof *words - 1) / sizeof *words;
    segments_.push_back({words, std::vector<std::uintptr_t>(count)});
    for (std::size_t i = 0; i < count; ++i) segments_.back().before[i] = words[i];
  }
}

[[gnu::no_sanitize_address]] void Statics::Restore() {
  for (const auto& [words, before] : segments_) {
    for (std::size_t i = 0; i < before.size(); ++i) {
      const std::uintptr_t now = words[i];
      if (now == before[i]) continue;
      words[i] = before[i];
      auto* const block = reinterpret_cast<void*>(now);
      if (__sanitizer_get_ownership && __sanitizer_get_ownership(block)) ::operator delete(block);
    }
  }
}

}  // namespace fuzz

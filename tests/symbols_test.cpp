// The built library as a loader sees it: one door in, and safe to open where no host is.
#include <gtest/gtest.h>
#include <link.h>

#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "tests/session.h"

namespace {

using Names = std::vector<std::string>;

// A file as a run of records at any offset.
class Image {
 public:
  explicit Image(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    bytes_.assign(std::istreambuf_iterator<char>(file), {});
  }

  template <typename Record>
  Record At(std::size_t offset) const {
    Record record{};
    EXPECT_LE(offset + sizeof record, bytes_.size());
    if (offset + sizeof record <= bytes_.size()) {
      std::memcpy(&record, bytes_.data() + offset, sizeof record);
    }
    return record;
  }
  std::string TextAt(std::size_t offset) const { return bytes_.data() + offset; }

 private:
  std::vector<char> bytes_;
};

// The symbols that a section of dynamic symbols defines, by name.
Names DefinedSymbols(const Image& image, const ElfW(Shdr) & symbols, const ElfW(Shdr) & names) {
  Names defined;
  for (std::size_t at = 0; at < symbols.sh_size; at += sizeof(ElfW(Sym))) {
    const auto symbol = image.At<ElfW(Sym)>(symbols.sh_offset + at);
    if (symbol.st_shndx == SHN_UNDEF) continue;
    defined.push_back(image.TextAt(names.sh_offset + symbol.st_name));
  }
  return defined;
}

Names DefinedSymbols(const std::string& path) {
  const Image image(path);
  const auto header = image.At<ElfW(Ehdr)>(0);
  const auto section = [&](std::size_t index) {
    return image.At<ElfW(Shdr)>(header.e_shoff + index * header.e_shentsize);
  };
  for (std::size_t i = 0; i < header.e_shnum; ++i) {
    const auto candidate = section(i);
    if (candidate.sh_type != SHT_DYNSYM) continue;
    return DefinedSymbols(image, candidate, section(candidate.sh_link));
  }
  return {"no dynamic symbols"};
}

TEST(Symbols, TheEntryPointIsTheOnlyExport) {
  EXPECT_EQ(DefinedSymbols(ZRK_LIBRARY_PATH), Names{"REALPluginMain"});
}

// A process that merely loads the library, an inspector for example, has no services to offer.
TEST(Symbols, StartsWithoutAHostAndRegistersNothing) {
  standin::Host host;
  standin::Library library(ZRK_LIBRARY_PATH, standin::Library::Copy::kPrivate);
  library.StartWithoutHost();
  EXPECT_TRUE(host.classes().empty());
  EXPECT_TRUE(host.requests().empty());
  EXPECT_EQ(host.plugin_version(), std::nullopt);

  library.Start(host);
  EXPECT_EQ(host.classes().size(), 1U);
}

TEST(Symbols, AHostWithoutRegistrationGetsNoClass) {
  tests::Session session({.faults = {{"PluginRegisterClass", standin::Fault::Missing()}}});
  EXPECT_TRUE(session.host.classes().empty());
  EXPECT_EQ(session.host.plugin_version(), 13);
}

}  // namespace

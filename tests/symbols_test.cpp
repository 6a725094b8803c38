// The built library as a loader sees it: one door in, and safe to open where no host is.
#include <gtest/gtest.h>

#include "standin/host.h"
#include "standin/library.h"
#include "tests/command.h"

namespace {

TEST(Symbols, TheEntryPointIsTheOnlyExport) {
  // Behind the address, type and name.
  const auto listed = tests::Shell("nm -D --defined-only " ZRK_LIBRARY_PATH);
  EXPECT_EQ(listed.output.substr(listed.output.find(' ')), " T REALPluginMain\n");
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

}  // namespace

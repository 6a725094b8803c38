// A host that grants a string's data and hands out none, as the stand-in host never does.
#include <gtest/gtest.h>

#include <cstdint>
#include <string_view>

#include "host/state.h"
#include "standin/host.h"
#include "text/rb_text.h"

namespace {

using standin::Host;
using standin::Value;

constexpr std::string_view kGetStringData = "PluginGetStringData";

// Says yes to every request and fills the record at the first.
unsigned char FillOnce(zrk::REALstringStruct* string, std::uint32_t encoding,
                       zrk::REALstringData* data) {
  if (Host::Current()->Calls(kGetStringData) > 0) return 1;
  const auto fill = reinterpret_cast<decltype(&FillOnce)>(Host::Resolve(kGetStringData.data()));
  return fill(string, encoding, data);
}

zrk::HostFunction Resolve(const char* name) {
  return name == kGetStringData ? reinterpret_cast<zrk::HostFunction>(&FillOnce)
                                : Host::Resolve(name);
}

TEST(TextIn, DataThatTheHostDoesNotGiveIsNotThatOfTheTextBefore) {
  Host host;
  zrk::ConnectHost(&Resolve);
  const Value first = host.String("\xC3\xA9t\xC3\xA9");
  const Value second = host.String("\xC3\xA9");
  zrk::rbText text(static_cast<zrk::REALstringStruct*>(first.handle()));
  EXPECT_EQ(text.UTF8(), "été");
  zrk::rbText::Holdings former;
  text.GoOverTo(static_cast<zrk::REALstringStruct*>(second.handle()), former);
  EXPECT_EQ(text.UTF8(), "");
}

}  // namespace

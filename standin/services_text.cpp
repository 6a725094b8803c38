// Host strings: references, encodings, string data, building.
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "standin/encoding.h"
#include "standin/host.h"
#include "standin/services.h"
#include "standin/things.h"

namespace standin {
namespace {

// A null string is the empty string everywhere: it finds nothing and is no fault.
HostString* FindString(REALstringStruct* string) {
  return static_cast<HostString*>(TheAccounts().Find(string, Kind::kString));
}

REALstringStruct* NewString(std::string_view bytes, std::uint32_t encoding) {
  if (bytes.size() > std::numeric_limits<std::int32_t>::max()) return nullptr;
  auto string = std::make_unique<HostString>(bytes, encoding);
  return &TheAccounts().Open(std::move(string), Side::kLibrary)->record;
}

}  // namespace

void Services::REALLockString(REALstringStruct* string) {
  if (HostString* found = FindString(string)) TheAccounts().Give(*found, Side::kLibrary);
}

void Services::REALUnlockString(REALstringStruct* string) {
  if (HostString* found = FindString(string)) TheAccounts().TakeBack(*found, Side::kLibrary);
}

std::uint32_t Services::REALGetStringEncoding(REALstringStruct* string) {
  const HostString* found = FindString(string);
  return found ? found->record.Encoding : std::uint32_t{kEncodingUnknown};
}

REALstringStruct* Services::REALConvertString(REALstringStruct* string, std::uint32_t encoding) {
  const HostString* found = FindString(string);
  if (!found) return nullptr;
  const auto text = ConvertText(found->bytes(), found->record.Encoding, encoding);
  return text ? NewString(*text, encoding) : nullptr;
}

// Strings are immutable: only one that nobody else holds yet may still be marked.
void Services::REALSetStringEncoding(REALstringStruct* string, std::uint32_t encoding) {
  HostString* found = FindString(string);
  if (!found) return;
  if (found->references(Side::kHost) > 0) {
    TheAccounts().Report("changed the encoding of " + found->Describe() + ", which the host holds");
  }
  found->record.Encoding = encoding;
}

unsigned char Services::REALGetStringData(REALstringStruct* string, std::uint32_t encoding,
                                          REALstringData* record) {
  const HostString* found = FindString(string);
  if (!found) return 0;
  if (!record) {
    TheAccounts().Report("was handed no record to fill");
    return 0;
  }
  const bool same = found->record.Encoding == encoding;
  std::optional<std::string> converted;
  if (!same) converted = ConvertText(found->bytes(), found->record.Encoding, encoding);
  if (!same && !converted) return 0;
  const std::string_view text = same ? found->bytes() : std::string_view(*converted);
  if (text.size() > std::numeric_limits<std::int32_t>::max()) return 0;
  const bool terminated = Host::Current()->options().terminate_string_data;
  auto* data =
      TheAccounts().Open(std::make_unique<HostStringData>(text, terminated), Side::kLibrary);
  *record = {data->data(), static_cast<std::int32_t>(text.size()), {data->handle()}};
  return 1;
}

void Services::REALDisposeStringData(REALstringData* record) {
  if (!record || !record->HostWords[0]) {
    return TheAccounts().Report("was handed a record that was never filled");
  }
  auto* data =
      static_cast<HostStringData*>(TheAccounts().Find(record->HostWords[0], Kind::kStringData));
  if (!data) return;
  if (data->data() != record->Data) {
    TheAccounts().Report("was handed a changed record of " + data->Describe());
  }
  TheAccounts().TakeBack(*data, Side::kLibrary);
}

// The default encoding is "unknown", so that a result whose encoding nobody set can be seen.
REALstringStruct* Services::originalREALBuildString(const char* bytes, std::int32_t length) {
  return REALBuildStringWithEncoding(bytes, length, kEncodingUnknown);
}

REALstringStruct* Services::REALBuildStringWithEncoding(const char* bytes, std::int32_t length,
                                                        std::uint32_t encoding) {
  if (length < 0 || (!bytes && length > 0)) {
    TheAccounts().Report("was handed no bytes, or a negative length");
    return nullptr;
  }
  return NewString({bytes, static_cast<std::size_t>(length)}, encoding);
}

}  // namespace standin

// Registered classes as text, Markdown or JSON, in the order of their tables.
#ifndef ZRK_STANDIN_ZRKHOST_DESCRIBE_H
#define ZRK_STANDIN_ZRKHOST_DESCRIBE_H

#include <optional>
#include <string>
#include <string_view>

#include "standin/host.h"

namespace standin::zrkhost {

enum class Format { kText, kMarkdown, kJSON };

// "text", "markdown" or "json".
std::optional<Format> FormatByName(std::string_view name);

// All classes of the host; a JSON text is an array with one object for each.
std::string Describe(const Host& host, Format format);

}  // namespace standin::zrkhost

#endif  // ZRK_STANDIN_ZRKHOST_DESCRIBE_H

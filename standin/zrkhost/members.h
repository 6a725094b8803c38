// The members of a registered class as text, in the words of the host's language.
#ifndef ZRK_STANDIN_ZRKHOST_MEMBERS_H
#define ZRK_STANDIN_ZRKHOST_MEMBERS_H

#include <string>
#include <string_view>

#include "standin/class_info.h"

namespace standin::zrkhost {

// `Count as Integer`.
std::string PropertyText(const Property& property);
// "read only" or "read and write".
const char* AccessText(const Property& property);

// `RegExZRK has no "Compiel"; it has:`, and a line for each member with a name like that one;
// where there is none, the names of all methods and properties.
std::string NoMemberText(const ClassInfo& info, std::string_view name);

}  // namespace standin::zrkhost

#endif  // ZRK_STANDIN_ZRKHOST_MEMBERS_H

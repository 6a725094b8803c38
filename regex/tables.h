// The class RegExZRK as the host sees it.
#ifndef ZRK_REGEX_TABLES_H
#define ZRK_REGEX_TABLES_H

#include "host/records.h"

namespace zrk {

// Name, instance size, destructor, and the tables of methods, properties and constants. The host
// writes into it where the instance record lies in its objects.
extern REALclassDefinition RegExClass;

}  // namespace zrk

#endif  // ZRK_REGEX_TABLES_H

// Every service the library asks its host for, one row each.
//
// A row reads SERVICE(wrapper, binding, result, (arguments), name, second name, {neutral}): the
// callable that the library uses, how it is bound (host/services.h), its signature, the names it is
// looked up by (the second is null where there is only one), and what the callable answers where
// the host has none; {} is null, 0, false or nothing. The two entries that are asked for once at
// start-up have rows of their own shape: STARTUP(result, (arguments), name).
//
// The library's callables and the stand-in host's roster are both made from this list.
#ifndef ZRK_HOST_SERVICE_LIST_H
#define ZRK_HOST_SERVICE_LIST_H

// Encodings travel as their 32-bit code. The library creates arrays of strings only, and asks
// arrays of either kind for their upper bound; a host that cannot tell it has empty arrays.
// clang-format off
#define ZRK_HOST_SERVICES(SERVICE)                                                                \
  SERVICE(REALRegisterClass, Guarded, void, (REALclassDefinition*),                               \
          "PluginRegisterClass", nullptr, {})                                                     \
  SERVICE(REALnewInstance, Guarded, REALobjectStruct*, (const char*),                             \
          "PluginNewInstance", nullptr, {})                                                       \
  SERVICE(REALRaiseException, Guarded, void, (REALobjectStruct*),                                 \
          "RuntimeRaiseException", nullptr, {})                                                   \
  SERVICE(REALSetPropValueString, Retried, void,                                                  \
          (REALobjectStruct*, const char*, REALstringStruct*),                                    \
          "REALSetPropValueString", nullptr, {})                                                  \
  SERVICE(REALSetPropValueInteger, Retried, void,                                                 \
          (REALobjectStruct*, const char*, std::int32_t),                                         \
          "REALSetPropValueInteger", "REALSetPropValueInt", {})                                   \
  SERVICE(REALGetPropValueString, Guarded, unsigned char,                                         \
          (REALobjectStruct*, const char*, REALstringStruct**),                                   \
          "REALGetPropValueString", nullptr, {})                                                  \
  SERVICE(GetVariantString, Retried, REALstringStruct*, (REALobjectStruct*),                      \
          "VariantToString", nullptr, {})                                                         \
  SERVICE(REALLockObject, Guarded, void, (REALobjectStruct*), "REALLockObject", nullptr, {})      \
  SERVICE(REALUnlockObject, Guarded, void, (REALobjectStruct*), "REALUnlockObject", nullptr, {})  \
  SERVICE(REALLockString, Guarded, void, (REALstringStruct*), "REALLockString", nullptr, {})      \
  SERVICE(REALUnlockString, Guarded, void, (REALstringStruct*), "REALUnlockString", nullptr, {})  \
  SERVICE(REALGetStringEncoding, Guarded, std::uint32_t, (REALstringStruct*),                     \
          "REALGetStringEncoding", nullptr, {})                                                   \
  SERVICE(REALConvertString, Guarded, REALstringStruct*, (REALstringStruct*, std::uint32_t),      \
          "REALConvertString", nullptr, {})                                                       \
  SERVICE(REALSetStringEncoding, Guarded, void, (REALstringStruct*, std::uint32_t),               \
          "REALSetStringEncoding", nullptr, {})                                                   \
  SERVICE(REALGetStringData, Guarded, unsigned char,                                              \
          (REALstringStruct*, std::uint32_t, REALstringData*),                                    \
          "PluginGetStringData", nullptr, {})                                                     \
  SERVICE(REALDisposeStringData, Guarded, void, (REALstringData*),                                \
          "PluginDisposeStringData", nullptr, {})                                                 \
  SERVICE(originalREALBuildString, Guarded, REALstringStruct*, (const char*, std::int32_t),       \
          "REALBuildString", nullptr, {})                                                         \
  SERVICE(REALBuildStringWithEncoding, Guarded, REALstringStruct*,                                \
          (const char*, std::int32_t, std::uint32_t),                                             \
          "REALBuildStringWithEncoding", nullptr, {})                                             \
  SERVICE(REALMemoryBlockGetPtr, Guarded, unsigned char*, (REALmemoryBlockStruct*),               \
          "memoryBlockGetPtr", nullptr, {})                                                       \
  SERVICE(REALMemoryBlockGetSize, Guarded, std::int32_t, (REALmemoryBlockStruct*),                \
          "memoryBlockGetSize", nullptr, {})                                                      \
  SERVICE(REALCreateArray, Guarded, _REALarrayString*, (std::int32_t, std::int32_t),              \
          "RuntimeArrayCreateSingleDimBoundedArray", nullptr, {})                                 \
  SERVICE(REALGetArrayUBound, Guarded, std::int32_t, (REALobjectStruct*),                         \
          "RuntimeUBound", nullptr, {-1})                                                         \
  SERVICE(REALGetArrayValueString, Retried, StringArrayGetter, (_REALarrayString*),               \
          "PluginStringArrayGetProc", "RuntimeArrayDirectGetGetProc", {})                         \
  SERVICE(REALGetArrayValueObject, Retried, ObjectArrayGetter, (_REALarrayObject*),               \
          "PluginObjectArrayGetProc", "RuntimeArrayDirectGetGetProc", {})                         \
  SERVICE(REALInsertArrayValueString, Retried, StringArrayInserter, (_REALarrayString*),          \
          "PluginStringArrayInsertProc", "RuntimeArrayDirectGetInsertProc", {})                   \
  SERVICE(REALYieldToRB, Guarded, void, (), "REALYieldToRB", nullptr, {})

#define ZRK_HOST_STARTUP_SERVICES(STARTUP)                                                        \
  STARTUP(double, (), "REALGetRBVersion")                                                         \
  STARTUP(void, (std::int32_t), "RegisterPluginVersion")
// clang-format on

#endif  // ZRK_HOST_SERVICE_LIST_H

// bare_host LIBRARY: a host in miniature, for a place where nothing is installed but the C library.
// It loads the library and tries what a program does first; the exit status is 0 when every answer
// was right. It keeps no accounts and frees nothing: the stand-in host is there for that.
#include <dlfcn.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

typedef void (*Function)(void);

// A host string; its text begins at buffer + 1 and ends with a zero byte.
typedef struct {
  unsigned char* buffer;
  int32_t length;
  uint32_t encoding;
} Text;

// The class as registered is a run of words, and so is a row of its methods.
enum { kDataSize = 3, kDataOffset = 4, kMethods = 9, kMethodCount = 10 };
enum { kFunction = 0, kDeclaration = 2, kMethodWords = 6 };

static intptr_t* definition;
static const char* raised = "";

// The allocator of the whole process, so that the library can be told that there is no memory.
static int has_memory = 1;
void* __libc_malloc(size_t size);
void* malloc(size_t size) { return has_memory ? __libc_malloc(size) : NULL; }

// Another PCRE in the same process, hooks included. A library that reaches it ends here.
static void Reached(void) {
  fputs("bare_host: the library reached an engine outside itself\n", stderr);
  _Exit(3);
}
#define FUNCTION_OF_ANOTHER(name) \
  void name(void) { Reached(); }
FUNCTION_OF_ANOTHER(pcre_compile2)
FUNCTION_OF_ANOTHER(pcre_config)
FUNCTION_OF_ANOTHER(pcre_exec)
FUNCTION_OF_ANOTHER(pcre_free_study)
FUNCTION_OF_ANOTHER(pcre_fullinfo)
FUNCTION_OF_ANOTHER(pcre_study)
FUNCTION_OF_ANOTHER(pcre_version)
Function pcre_malloc = Reached;
Function pcre_free = Reached;
Function pcre_stack_malloc = Reached;
Function pcre_stack_free = Reached;
Function pcre_callout = Reached;

static Text* Build(const char* bytes, int32_t length) {
  Text* const text = __libc_malloc(sizeof *text);
  text->buffer = __libc_malloc((size_t)length + 2);
  memcpy(text->buffer + 1, bytes, (size_t)length);
  text->buffer[length + 1] = 0;
  text->length = length;
  text->encoding = 0x08000100;  // UTF-8
  return text;
}
static Text* T(const char* bytes) { return Build(bytes, (int32_t)strlen(bytes)); }

static double HostVersion(void) { return 2013.04; }
static void RegisterVersion(int32_t version) { (void)version; }
static void RegisterClass(intptr_t* words) { definition = words; }
static const char* NewInstance(const char* class_name) { return class_name; }
static void Raise(const char* exception) {
  raised = exception;
  has_memory = 1;
}

static Function Resolve(const char* name) {
  static const struct {
    const char* name;
    Function function;
  } services[] = {
      {"REALGetRBVersion", (Function)HostVersion},
      {"RegisterPluginVersion", (Function)RegisterVersion},
      {"PluginRegisterClass", (Function)RegisterClass},
      {"PluginNewInstance", (Function)NewInstance},
      {"RuntimeRaiseException", (Function)Raise},
      {"REALBuildString", (Function)Build},
  };
  for (size_t i = 0; i < sizeof services / sizeof *services; ++i) {
    if (strcmp(services[i].name, name) == 0) return services[i].function;
  }
  return NULL;
}

// The function of the first method whose declaration begins like this.
static Function Method(const char* declaration) {
  const intptr_t* row = (const intptr_t*)definition[kMethods];
  for (intptr_t i = 0; i < definition[kMethodCount]; ++i, row += kMethodWords) {
    const char* const found = (const char*)row[kDeclaration];
    if (strncmp(found, declaration, strlen(declaration)) == 0) return (Function)row[kFunction];
  }
  fprintf(stderr, "bare_host: no method %s\n", declaration);
  exit(1);
}

static int failures = 0;
static void Expect(const char* what, int is_right) {
  if (is_right) return;
  fprintf(stderr, "bare_host: wrong answer: %s\n", what);
  ++failures;
}
static int Reads(const Text* text, const char* expected) {
  return text != NULL && strcmp((const char*)text->buffer + 1, expected) == 0;
}

typedef int32_t (*NumberOfNumber)(void*, int32_t);
typedef int32_t (*NumberOfText)(void*, Text*, int32_t);
typedef signed char (*BooleanOfText)(void*, Text*);
typedef Text* (*TextOfTexts)(void*, Text*, Text*);

static void SearchAndReplace(void* object) {
  const TextOfTexts version = (TextOfTexts)Method("Version");
  const BooleanOfText compile = (BooleanOfText)Method("Compile(pattern as string)");
  const NumberOfText execute = (NumberOfText)Method("Execute(text");
  const NumberOfNumber offset = (NumberOfNumber)Method("Offset");
  const TextOfTexts substring = (TextOfTexts)Method("Substring(name");
  const TextOfTexts replace_all = (TextOfTexts)Method("ReplaceAll");

  Expect("Version", Reads(version(object, NULL, NULL), "8.39 2016-06-14"));
  Expect("Compile", compile(object, T("(\\p{L}+)@(?<place>x+)")));
  Expect("Execute", execute(object, T("to Zoë@xx"), 0) == 3);
  Expect("Offset", offset(object, 0) == 3);
  Expect("Substring", Reads(substring(object, T("place"), NULL), "x"));
  Expect("ReplaceAll", Reads(replace_all(object, T("a@x b@x"), T("\\2\\1")), "xa xb"));
}

// The first is raised by the library; the second begins as an exception of the C++ runtime.
static void RaiseExceptions(void* object) {
  const NumberOfNumber offset = (NumberOfNumber)Method("Offset");
  const TextOfTexts escape = (TextOfTexts)Method("Escape");
  offset(object, -1);
  Expect("an index out of bounds", strcmp(raised, "OutOfBoundsException") == 0);

  Text* const text = T("longer than what fits into a string without an allocation");
  has_memory = 0;
  escape(object, text, NULL);
  has_memory = 1;
  Expect("no memory", strcmp(raised, "OutOfMemoryException") == 0);
  Expect("Escape", Reads(escape(object, T("a.b"), NULL), "a\\.b"));
}

int main(int count, char** arguments) {
  void* const library = count == 2 ? dlopen(arguments[1], RTLD_NOW) : NULL;
  if (library == NULL) {
    fprintf(stderr, "bare_host: %s\n", count == 2 ? dlerror() : "needs one library");
    return 2;
  }
  void (*start)(Function(*)(const char*));
  *(void**)&start = dlsym(library, "REALPluginMain");
  if (start != NULL) start(Resolve);
  if (definition == NULL) {
    fputs("bare_host: no class was registered\n", stderr);
    return 1;
  }
  char* const object = calloc(1, (size_t)(definition[kDataOffset] + definition[kDataSize]));
  ((NumberOfNumber)Method("Constructor"))(object, 0);
  SearchAndReplace(object);
  RaiseExceptions(object);
  return failures == 0 ? 0 : 1;
}

// The same work on 1, 10 and 100 MB: what a byte costs should not depend on how many there are.
#include <algorithm>
#include <functional>

#include "bench/engines.h"
#include "bench/rounds.h"
#include "bench/settings.h"

namespace bench {

namespace {

using Work = std::function<void()>;
using SharedRegEx = std::shared_ptr<RegEx>;

void WalkWithCharacters(const RegEx& regex, REALstringStruct* text) {
  for (int found = regex.execute(text, 0); found > 0;
       found = regex.execute_again(regex.offset(1))) {
    regex.offset_characters(0);
    regex.offset_characters(1);
  }
}

Work Walking(const SharedRegEx& regex, const String& text) {
  return [=, &text] { Walk(*regex, text.get()); };
}

Work WalkingWithCharacters(const SharedRegEx& regex, const String& text) {
  return [=, &text] { WalkWithCharacters(*regex, text.get()); };
}

Work Replacing(const SharedRegEx& regex, const String& text) {
  const auto replacement = std::make_shared<String>("[\\0]");
  return [=, &text] { Unlock(regex->replace_all(text.get(), replacement->get())); };
}

Work Filtering(const SharedRegEx& regex, const String& text) {
  const auto lines = std::make_shared<Array>(LinesOf(text, SIZE_MAX));
  return [=] { Unlock(regex->filter(lines->handle(), 0)); };
}

Work Escaping(const SharedRegEx& regex, const String& text) {
  return [=, &text] { Unlock(regex->escape(text.get())); };
}

struct Growing {
  const char* name;
  Work (*make)(const SharedRegEx&, const String&);
};

constexpr Growing kGrowing[] = {
    {"walk", Walking},      {"walk_characters", WalkingWithCharacters},
    {"replace", Replacing}, {"filter", Filtering},
    {"escape", Escaping},
};

// One contender for each size; the smaller ones work several times, so that slow moments of the
// machine weigh as little in theirs. No parts and no fastest turn: the largest has but one.
Row MakeRow(const Growing& growing) {
  const auto regex = std::make_shared<RegEx>("[A-Z][a-z]+");
  Row row;
  for (const int size : {1, 10, 100}) {
    if (size == 100 && TheSettings().quick) continue;
    const String& text = Text("mixed", size);
    const int times = std::max(1, (TheSettings().quick ? 10 : 30) / size);
    const Work work = growing.make(regex, text);
    row.push_back({"mb" + std::to_string(size), double(times) * text.length(), [=] {
                     for (int i = 0; i < times; ++i) work();
                     return kNothingFound;
                   }});
  }
  return row;
}

}  // namespace

void AddGrowthRows() {
  for (const Growing& growing : kGrowing) {
    AddRow(std::string("growth/") + growing.name, [&growing] { return MakeRow(growing); });
  }
}

}  // namespace bench

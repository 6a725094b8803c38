// The same work on 1, 10 and 100 MB: what a byte costs should not depend on how many there are.
//
// All sizes are at it for as long as the largest takes once, so that slow moments of the machine
// weigh alike.
#include "bench/engines.h"
#include "bench/rounds.h"
#include "bench/settings.h"

namespace bench {

namespace {

using SharedRegEx = std::shared_ptr<RegEx>;

// A text of so many megabytes, and how often it is worked through.
struct Sized {
  std::string name;
  int megabytes;
  int times;
  const String& text;

  double Bytes() const { return static_cast<double>(times) * text.length(); }
};

// A megabyte is a part, so that walks over all sizes take turns.
template <typename Visit>
Contender InMegabytes(const SharedRegEx& regex, const Sized& sized, Visit visit) {
  const auto walk = [=, &text = sized.text, of = sized.megabytes, at = 0](Part part) mutable {
    const Part megabyte{part.number % of, of};
    if (megabyte.number == 0) at = 0;
    while (at >= 0 && at < megabyte.EndIn(text.length())) {
      at = NextMatch(*regex, text.get(), at);
      if (at >= 0) visit(*regex);
    }
    return kNothingFound;
  };
  return InParts(sized.times * sized.megabytes, sized.name, sized.Bytes(), walk);
}

Contender Walking(const SharedRegEx& regex, const Sized& sized) {
  return InMegabytes(regex, sized, [](const RegEx&) {});
}

Contender WalkingWithCharacters(const SharedRegEx& regex, const Sized& sized) {
  return InMegabytes(regex, sized, [](const RegEx& matched) {
    matched.offset_characters(0);
    matched.offset_characters(1);
  });
}

// A program that names its text at every step. `execute` names it and answers Count.
template <typename Execute>
Contender NamingAgain(const SharedRegEx& regex, const Sized& sized, Execute execute) {
  const auto walk = [=] {
    for (int i = 0; i < sized.times; ++i) {
      for (int at = 0; execute(at) > 0;) at = regex->offset(1);
    }
    return kNothingFound;
  };
  return {sized.name, sized.Bytes(), walk};
}

Contender NamingString(const SharedRegEx& regex, const Sized& sized) {
  return NamingAgain(regex, sized, [=, &text = sized.text](int start) {
    return regex->execute(text.get(), start);
  });
}

Contender NamingBlock(const SharedRegEx& regex, const Sized& sized) {
  const auto block = std::make_shared<MemoryBlock>(sized.text);
  return NamingAgain(regex, sized,
                     [=](int start) { return regex->execute_memory(block->handle(), start, 0); });
}

template <typename Call>
Contender InCalls(const Sized& sized, Call call) {
  const auto work = [call, times = sized.times] {
    for (int i = 0; i < times; ++i) call();
    return kNothingFound;
  };
  return {sized.name, sized.Bytes(), work};
}

Contender Replacing(const SharedRegEx& regex, const Sized& sized) {
  const auto replacement = std::make_shared<String>("[\\0]");
  return InCalls(sized, [=, &text = sized.text] {
    Unlock(regex->replace_all(text.get(), replacement->get()));
  });
}

Contender Filtering(const SharedRegEx& regex, const Sized& sized) {
  const auto lines = std::make_shared<Array>(LinesOf(sized.text, SIZE_MAX));
  return InCalls(sized, [=] { Unlock(regex->filter(lines->handle(), 0)); });
}

Contender Escaping(const SharedRegEx& regex, const Sized& sized) {
  return InCalls(sized, [=, &text = sized.text] { Unlock(regex->escape(text.get())); });
}

constexpr const char* kWords = "[A-Z][a-z]+";
// Six in 10 MB: a block is read again at each.
constexpr const char* kFewMatches = "Hurd";

struct Growing {
  const char* name;
  Contender (*make)(const SharedRegEx&, const Sized&);
  const char* pattern = kWords;
};

constexpr Growing kGrowing[] = {
    {"walk", Walking},
    {"walk_characters", WalkingWithCharacters},
    {"replace", Replacing},
    {"filter", Filtering},
    {"escape", Escaping},
    {"named_string", NamingString},
    {"named_block", NamingBlock, kFewMatches},
};

Row MakeRow(const Growing& growing) {
  const int largest = TheSettings().quick ? 10 : 100;
  Row row;
  for (int size = 1; size <= largest; size *= 10) {
    // An object for each: walks that take turns keep their subjects.
    const auto regex = std::make_shared<RegEx>(growing.pattern);
    row.push_back(growing.make(
        regex, {"mb" + std::to_string(size), size, largest / size, Text("mixed", size)}));
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

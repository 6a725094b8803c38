#include "standin/declaration.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>
#include <utility>

namespace standin {
namespace {

constexpr std::pair<std::string_view, Kind> kTypes[] = {
    {"integer", Kind::kInteger},         {"boolean", Kind::kBoolean},
    {"double", Kind::kDouble},           {"string", Kind::kString},
    {"string()", Kind::kStringArray},    {"variant()", Kind::kVariantArray},
    {"memoryblock", Kind::kMemoryBlock},
};

char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

bool IsWord(char c) {
  return IsDigit(c) || c == '_' || c == '.' || (Lower(c) >= 'a' && Lower(c) <= 'z');
}

// Reads one declaration from left to right.
class Reader {
 public:
  explicit Reader(std::string_view text) : text_(text) {}

  bool Take(char symbol) {
    SkipBlanks();
    if (place_ == text_.size() || text_[place_] != symbol) return false;
    ++place_;
    return true;
  }

  void Expect(char symbol) {
    if (!Take(symbol)) Fail(std::string("'") + symbol + "'");
  }

  std::string Word() {
    std::string word = TakeWord();
    if (word.empty() || IsDigit(word.front())) Fail("a name");
    return word;
  }

  bool TakeKeyword(std::string_view keyword) {
    const std::size_t before = place_;
    if (Folded(TakeWord()) == keyword) return true;
    place_ = before;
    return false;
  }

  bool TakeBrackets() {
    if (!Take('(')) return false;
    Expect(')');
    return true;
  }

  Type ReadType(bool array) {
    const std::string name = Word();
    return ParseType(TakeBrackets() || array ? name + "()" : name);
  }

  Parameter ReadParameter() {
    Parameter parameter;
    parameter.name = Word();
    const bool array = TakeBrackets();
    if (!TakeKeyword("as")) Fail("\"as\"");
    parameter.type = ReadType(array);
    if (Take('=')) parameter.fallback = ReadLiteral();
    return parameter;
  }

  Literal ReadLiteral() {
    if (Take('"')) return ReadQuoted();
    if (TakeKeyword("true")) return true;
    if (TakeKeyword("false")) return false;
    if (TakeKeyword("nil")) return std::monostate();
    return ReadInteger();
  }

  void End() {
    SkipBlanks();
    if (place_ != text_.size()) Fail("the end");
  }

 private:
  void SkipBlanks() { place_ = std::min(text_.find_first_not_of(" \t", place_), text_.size()); }

  std::string TakeWord() {
    SkipBlanks();
    const std::size_t start = place_;
    while (place_ < text_.size() && IsWord(text_[place_])) ++place_;
    return std::string(text_.substr(start, place_ - start));
  }

  // Two quotes within a text stand for one.
  std::string ReadQuoted() {
    std::string value;
    for (;; ++place_) {
      if (place_ == text_.size()) Fail("a closing quote");
      if (text_[place_] != '"') {
        value += text_[place_];
      } else if (text_.substr(place_ + 1, 1) == "\"") {
        value += text_[++place_];
      } else {
        ++place_;
        return value;
      }
    }
  }

  std::int32_t ReadInteger() {
    SkipBlanks();
    std::int32_t number = 0;
    const char* start = text_.data() + place_;
    const auto [end, error] = std::from_chars(start, text_.data() + text_.size(), number);
    if (error != std::errc()) Fail("a value");
    place_ += static_cast<std::size_t>(end - start);
    return number;
  }

  [[noreturn]] void Fail(const std::string& expected) {
    throw std::invalid_argument("\"" + std::string(text_) + "\": expected " + expected +
                                " at character " + std::to_string(place_ + 1));
  }

  std::string_view text_;
  std::size_t place_ = 0;
};

}  // namespace

std::string Folded(std::string_view name) {
  std::string folded(name);
  std::ranges::transform(folded, folded.begin(), Lower);
  return folded;
}

bool SameName(std::string_view one, std::string_view other) {
  return std::ranges::equal(one, other, {}, Lower, Lower);
}

std::size_t MethodDeclaration::Required() const {
  const auto optional = std::ranges::find_if(
      parameters, [](const Parameter& parameter) { return parameter.fallback.has_value(); });
  return static_cast<std::size_t>(optional - parameters.begin());
}

// Only strings and variants come in arrays here; another array is an object that nothing fits.
Type ParseType(std::string_view name) {
  const std::string folded = Folded(name);
  const auto* row = std::ranges::find(kTypes, std::string_view(folded),
                                      &std::pair<std::string_view, Kind>::first);
  return {row == std::end(kTypes) ? Kind::kObject : row->second, std::string(name)};
}

MethodDeclaration ParseMethod(std::string_view text) {
  Reader reader(text);
  MethodDeclaration method;
  method.name = reader.Word();
  if (reader.Take('(') && !reader.Take(')')) {
    do {
      method.parameters.push_back(reader.ReadParameter());
    } while (reader.Take(','));
    reader.Expect(')');
  }
  if (reader.TakeKeyword("as")) method.result = reader.ReadType(false);
  reader.End();
  return method;
}

ConstantDeclaration ParseConstant(std::string_view text) {
  Reader reader(text);
  ConstantDeclaration constant;
  constant.name = reader.Word();
  reader.Expect('=');
  constant.value = reader.ReadLiteral();
  reader.End();
  return constant;
}

}  // namespace standin

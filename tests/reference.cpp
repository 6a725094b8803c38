#include "tests/reference.h"

#include <pcre.h>

#include <algorithm>
#include <memory>
#include <stdexcept>

namespace tests {

namespace {

constexpr int kCompileOptions = PCRE_UNGREEDY | PCRE_UTF8 | PCRE_NO_UTF8_CHECK;
constexpr int kVectorSize = 303;

int CharacterLength(char lead) {
  const auto byte = static_cast<unsigned char>(lead);
  if ((byte & 0xE0) == 0xC0) return 2;
  if ((byte & 0xF0) == 0xE0) return 3;
  return (byte & 0xF8) == 0xF0 ? 4 : 1;
}

std::string_view Cut(std::string_view text, int start, int end) {
  if (start < 0 || start >= end) return {};
  return text.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(end - start));
}

bool IsDigit(char byte) { return byte >= '0' && byte <= '9'; }

std::string Expand(std::string_view new_text, std::string_view target, const int* vector) {
  std::string out;
  for (std::size_t i = 0; i < new_text.size(); ++i) {
    if (new_text[i] != '\\') {
      out += new_text[i];
      continue;
    }
    const char escaped = ++i < new_text.size() ? new_text[i] : '\0';
    if (IsDigit(escaped)) {
      int group = escaped - '0';
      if (i + 1 < new_text.size() && IsDigit(new_text[i + 1])) {
        group = 10 * group + new_text[++i] - '0';
      }
      out += Cut(target, vector[2 * group], vector[2 * group + 1]);
    } else {
      out += escaped == 't' ? '\t' : escaped == 'r' ? '\r' : escaped == 'n' ? '\n' : escaped;
    }
  }
  return out;
}

}  // namespace

Replaced ReplaceAllDirectly(const std::string& pattern, std::string_view target,
                            std::string_view new_text) {
  const char* message = nullptr;
  int offset = 0;
  const std::unique_ptr<pcre, void (*)(void*)> code(
      pcre_compile(pattern.c_str(), kCompileOptions, &message, &offset, nullptr), pcre_free);
  if (code == nullptr) throw std::invalid_argument(pattern + ": " + message);
  const auto length = static_cast<int>(target.size());
  int vector[kVectorSize] = {};
  int start = 0;
  int copied = 0;
  Replaced result;
  const auto copy_to = [&](int end) {
    result.text += Cut(target, copied, end);
    copied = std::max(copied, end);
  };
  for (;;) {
    ++result.calls;
    if (pcre_exec(code.get(), nullptr, target.data(), length, start, PCRE_NO_UTF8_CHECK, vector,
                  kVectorSize) < 1) {
      break;
    }
    copy_to(vector[0]);
    result.text += Expand(new_text, target, vector);
    copied = std::max(copied, vector[1]);
    if (vector[1] >= length) break;
    const auto after = [&](int at) {
      return at + CharacterLength(target[static_cast<std::size_t>(at)]);
    };
    const int next = vector[0] == vector[1] ? after(vector[1]) : vector[1];
    start = next > start ? next : after(start);
  }
  copy_to(length);
  return result;
}

}  // namespace tests

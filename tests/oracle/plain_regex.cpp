#include "tests/oracle/plain_regex.h"

#include <algorithm>
#include <cctype>

#include "tests/oracle/plain_text.h"

namespace oracle {

std::string PlainMatch::Group(const std::string& subject, std::size_t group) const {
  const int start = vector[2 * group];
  const int end = vector[2 * group + 1];
  if (start < 0 || start >= end) return "";
  return subject.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(end - start));
}

PlainRegex::PlainRegex(const std::string& pattern, std::uint32_t compile_options,
                       std::uint32_t execute_options)
    : execute_options_(execute_options) {
  const std::string read = pattern.c_str();  // up to the first NUL byte
  const bool safe = !HasBrokenCharacters(read) && WithoutUnsafeBytes(read) == read;
  if (!safe) compile_options &= ~std::uint32_t{PCRE_NO_UTF8_CHECK};
  int offset = 0;
  code_ = {pcre_compile(read.c_str(), static_cast<int>(compile_options), &error_, &offset, nullptr),
           pcre_free};
}

void PlainRegex::Study() {
  const char* message = nullptr;
  study_.reset(pcre_study(code_.get(), 0, &message));
}

std::string PlainRegex::Shown(const std::string& subject) const {
  unsigned long options = 0;
  pcre_fullinfo(code_.get(), nullptr, PCRE_INFO_OPTIONS, &options);
  const bool unchecked = (options & PCRE_UTF8) != 0 && (execute_options_ & PCRE_NO_UTF8_CHECK) != 0;
  return unchecked ? WithoutUnsafeBytes(subject) : subject;
}

PlainMatch PlainRegex::Match(const std::string& shown, int start, std::size_t vector_size) const {
  PlainMatch match{0, std::vector<int>(vector_size)};
  match.result = pcre_exec(code_.get(), study_.get(), shown.data(), static_cast<int>(shown.size()),
                           start, static_cast<int>(execute_options_), match.vector.data(),
                           static_cast<int>(vector_size));
  return match;
}

std::string PlainRegex::Describe(const std::string& subject, int start) const {
  const PlainMatch match = Match(Shown(subject), start);
  std::string line =
      std::to_string(match.result) + " err=" + std::to_string(std::min(match.result, 0));
  int groups = 0;
  pcre_fullinfo(code_.get(), nullptr, PCRE_INFO_CAPTURECOUNT, &groups);
  for (int group = 0; match.result > 0 && group <= groups; ++group) {
    const auto at = static_cast<std::size_t>(group);
    line += DescribeGroup(group, match.vector[2 * at], match.vector[2 * at + 1],
                          match.Group(subject, at).c_str());
  }
  return line;
}

std::string DescribeGroup(int group, int start, int end, const std::string& text) {
  const std::string name = group > 0 ? ' ' + std::to_string(group) + ':' : " ";
  if (start < 0) return name + "unset";
  return name + std::to_string(start) + '-' + std::to_string(end) + " \"" + text + '"';
}

std::string DescribeDirectly(const std::string& pattern, const std::string& subject, int start,
                             std::uint32_t compile_options, std::uint32_t execute_options) {
  const PlainRegex regex(pattern, compile_options, execute_options);
  return regex.error() != nullptr ? regex.error() : regex.Describe(subject, start);
}

namespace {

// Replacement text for a match, its escapes replaced; groups from the bound on read as empty.
std::string Expand(const std::string& text, const PlainMatch& match, const std::string& subject,
                   std::size_t group_bound) {
  const auto is_digit = [&](std::size_t at) {
    return at < text.size() && std::isdigit(static_cast<unsigned char>(text[at])) != 0;
  };
  std::string out;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] != '\\') {
      out += text[at];
    } else if (const std::size_t escaped = ++at; is_digit(escaped)) {
      if (is_digit(at + 1)) ++at;
      const std::size_t group = std::stoul(text.substr(escaped, at + 1 - escaped));
      if (group < group_bound) out += match.Group(subject, group);
    } else if (at == text.size()) {
      out += '\0';
    } else {
      const std::size_t control = std::string("trn").find(text[at]);
      out += control == std::string::npos ? text[at] : "\t\r\n"[control];
    }
  }
  return out;
}

}  // namespace

ReplacedMatch ReplaceMatch(const PlainMatch& match, const std::string& subject,
                           const std::string& new_text) {
  const std::string text = Expand(new_text, match, subject, match.vector.size() / 3 - 1);
  const std::string whole = subject.substr(0, static_cast<std::size_t>(match.vector[0])) + text +
                            subject.substr(static_cast<std::size_t>(match.vector[1]));
  return {whole.c_str(), text.c_str()};
}

Replaced ReplaceAll(const PlainRegex& regex, const std::string& subject,
                    const std::string& new_text) {
  constexpr std::size_t kVectorSize = 303;
  constexpr std::size_t kGroups = 100;
  const std::string shown = regex.Shown(subject);
  Replaced all;
  std::size_t copied = 0;
  const auto copy_to = [&](std::size_t end) {
    if (end > copied) all.text += subject.substr(copied, end - copied);
    copied = std::max(copied, end);
  };
  for (std::size_t at = 0;;) {
    ++all.engine_calls;
    const PlainMatch match = regex.Match(shown, static_cast<int>(at), kVectorSize);
    if (match.result < 1) break;
    const auto start = static_cast<std::size_t>(match.vector[0]);
    const auto end = static_cast<std::size_t>(match.vector[1]);
    copy_to(start);
    all.text += Expand(new_text, match, subject, kGroups);
    copied = std::max(copied, end);
    if (end >= subject.size()) break;
    std::size_t next = start == end ? end + SequenceLength(subject, end) : end;
    if (next <= at) next = at + SequenceLength(subject, at);
    at = next;
  }
  copy_to(subject.size());
  return all;
}

}  // namespace oracle

// Lines from a terminal, with editing, completion and a history that is kept in a file.
#ifndef ZRK_STANDIN_ZRKHOST_LINE_EDITOR_H
#define ZRK_STANDIN_ZRKHOST_LINE_EDITOR_H

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

struct editline;
struct history;

namespace standin::zrkhost {

// What Tab does to the line: takes back `remove` characters before the cursor, puts `insert` there,
// and shows `choices` below.
struct Completion {
  std::size_t remove = 0;
  std::string insert;
  std::string choices;
};

// One is alive at a time; lines and files are in the locale's encoding.
class LineEditor {
 public:
  // Asked for the text up to the cursor and the terminal's width in columns.
  using Complete = std::function<Completion(std::string_view line, int width)>;
  enum class Ended { kLine, kInterrupted, kInput };

  // The history is read from the file, and written with each new entry; no path: none is kept.
  LineEditor(std::filesystem::path history_file, Complete complete);
  ~LineEditor();
  LineEditor(const LineEditor&) = delete;
  LineEditor& operator=(const LineEditor&) = delete;

  // Reads a line into `line`, without its end. Ctrl-C gives it up, the end of the input ends all.
  Ended Read(const char* prompt, std::string& line);
  void AddHistory(const std::string& entry);

 private:
  static unsigned char OnTab(editline* editor, int key);
  static unsigned char OnInterrupt(editline* editor, int key);
  static int ReadCharacter(editline* editor, wchar_t* character);
  static char* Prompt(editline* editor);

  std::filesystem::path file_;
  Complete complete_;
  std::unique_ptr<struct editline, void (*)(struct editline*)> editor_;
  std::unique_ptr<struct history, void (*)(struct history*)> history_;
  std::string prompt_;
  bool interrupted_ = false;
};

}  // namespace standin::zrkhost

#endif  // ZRK_STANDIN_ZRKHOST_LINE_EDITOR_H

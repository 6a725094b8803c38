#include "standin/zrkhost/line_editor.h"

#include <histedit.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cwchar>
#include <system_error>
#include <utility>

namespace standin::zrkhost {
namespace {

constexpr int kHistoryLines = 1000;

volatile std::sig_atomic_t resized = 0;

void OnResize(int) { resized = 1; }

LineEditor& Of(EditLine* editor) {
  LineEditor* self = nullptr;
  el_get(editor, EL_CLIENTDATA, &self);
  return *self;
}

// The editor knows nothing of a new width before it is told, and draws the line anew only then.
void FollowTheWindow(EditLine* editor) {
  resized = 0;
  std::fputs("\r", stdout);  // over what is there, not behind it
  std::fflush(stdout);
  el_resize(editor);
  el_set(editor, EL_REFRESH);
}

}  // namespace

LineEditor::LineEditor(std::filesystem::path history_file, Complete complete)
    : file_(std::move(history_file)),
      complete_(std::move(complete)),
      editor_(el_init("zrkhost", stdin, stdout, stderr), el_end),
      history_(history_init(), history_end) {
  if (!editor_ || !history_) throw std::bad_alloc();
  HistEvent event;
  ::history(history_.get(), &event, H_SETSIZE, kHistoryLines);
  if (!file_.empty()) ::history(history_.get(), &event, H_LOAD, file_.c_str());
  EditLine* const editor = editor_.get();
  el_set(editor, EL_CLIENTDATA, this);
  el_set(editor, EL_EDITOR, "emacs");
  el_set(editor, EL_HIST, ::history, history_.get());
  el_set(editor, EL_PROMPT, Prompt);
  el_set(editor, EL_GETCFN, ReadCharacter);
  el_wset(editor, EL_ADDFN, L"zrkhost-complete", L"Complete a name", OnTab);
  el_wset(editor, EL_ADDFN, L"zrkhost-interrupt", L"Give the line up", OnInterrupt);
  el_source(editor, nullptr);  // the user's own bindings, before ours
  el_set(editor, EL_BIND, "\t", "zrkhost-complete", nullptr);
  // While a line is edited Ctrl-C is a key like others, and no signal.
  el_set(editor, EL_SETTY, "-d", "-isig", nullptr);
  el_set(editor, EL_BIND, "^C", "zrkhost-interrupt", nullptr);
  struct sigaction action = {};
  action.sa_handler = OnResize;  // without SA_RESTART: a waiting read returns
  sigaction(SIGWINCH, &action, nullptr);
}

LineEditor::~LineEditor() = default;

LineEditor::Ended LineEditor::Read(const char* prompt, std::string& line) {
  prompt_ = prompt;
  interrupted_ = false;
  int length = 0;
  const char* const text = el_gets(editor_.get(), &length);
  if (interrupted_) return Ended::kInterrupted;
  if (!text || length <= 0) return Ended::kInput;
  line.assign(text, static_cast<std::size_t>(length));
  if (line.ends_with('\n')) line.pop_back();
  return Ended::kLine;
}

void LineEditor::AddHistory(const std::string& entry) {
  HistEvent event;
  ::history(history_.get(), &event, H_ENTER, entry.c_str());
  if (file_.empty()) return;
  std::error_code ignored;
  std::filesystem::create_directories(file_.parent_path(), ignored);
  ::history(history_.get(), &event, H_SAVE, file_.c_str());
}

unsigned char LineEditor::OnTab(EditLine* editor, int) {
  const LineInfo* const line = el_line(editor);
  int width = 0;
  el_get(editor, EL_GETTC, "co", &width);
  const auto before = static_cast<std::size_t>(line->cursor - line->buffer);
  const Completion completion = Of(editor).complete_({line->buffer, before}, width);
  if (completion.remove > 0) el_deletestr(editor, static_cast<int>(completion.remove));
  if (!completion.insert.empty()) el_insertstr(editor, completion.insert.c_str());
  if (completion.choices.empty()) return CC_REFRESH;
  std::printf("\n%s\n", completion.choices.c_str());
  std::fflush(stdout);
  return CC_REDISPLAY;
}

unsigned char LineEditor::OnInterrupt(EditLine* editor, int) {
  Of(editor).interrupted_ = true;
  std::fputs("^C\n", stdout);
  return CC_NEWLINE;
}

int LineEditor::ReadCharacter(EditLine* editor, wchar_t* character) {
  std::mbstate_t state{};
  for (;;) {
    if (resized) FollowTheWindow(editor);
    char byte = 0;
    const ssize_t count = read(STDIN_FILENO, &byte, 1);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return static_cast<int>(count);
    const std::size_t used = std::mbrtowc(character, &byte, 1, &state);
    if (used == static_cast<std::size_t>(-1)) state = {};  // no character of the locale: left out
    if (used <= 1) return 1;
  }
}

char* LineEditor::Prompt(EditLine* editor) { return Of(editor).prompt_.data(); }

}  // namespace standin::zrkhost

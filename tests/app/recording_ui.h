// A user interface that only remembers: it implements app/window/ui.h and app/state/posts.h in memory. Set
// its controls as an operator would, run a command, then look at what was shown. A box stands for two
// seconds, and its message loop goes on as that of a real one: what was posted comes, and so do the timers of
// that time.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "app/window/ui.h"

namespace tw::test {

struct Box {
  std::wstring text;
  std::wstring caption;
  BoxIcon icon;
  BoxButtons buttons;
  bool operator==(const Box&) const = default;
};

struct Control {
  bool enabled = true;
  bool visible = true;
  bool bold = false;
  bool checked = false;
  bool open = false;
  std::wstring text;
  std::vector<std::wstring> items;
  int selected = -1;
};

struct RecordingUi {
  std::vector<Box> boxes;
  std::vector<uint32_t> systemErrors;
  std::wstring status[5];
  std::vector<std::wstring> posts[5];
  std::vector<std::wstring> notices;
  std::vector<std::wstring> folders;          // "file " or "folder " and the path
  std::set<const wchar_t*> postedBuffers[5];  // where their texts stood, for who reads them late
  std::map<int, Control> controls;
  std::map<int, LampFace> lamps;
  std::wstring statusAlarm;        // the last one shown
  std::map<int, uint32_t> timers;  // id and period of those that run
  std::vector<PointerShape> pointers;
  std::vector<std::string> talk;  // with the device, as it was shown; empty: what stood there before
  std::string title;
  int repaints = 0;
  bool answerOk = true;
  std::vector<std::wstring> chosenFiles;  // what the file dialog gives; none: it is cancelled
  std::vector<ProgressBlock> progress;
  std::vector<bool> conversionEnds;
  size_t progressSeen = 0;        // blocks of `progress` that a box's message loop has handed on
  void (*duringBox)() = nullptr;  // what a test looks at while a box is shown
  int fullQueue = 0;              // so many ends of conversions are not taken
  int settingsClosed = 0;
  int queuedInput = 0;  // clicks and keys that wait
  int keptInput = 0;    // of these "Stop", Exit and closing
  int carriedOut = 0;
  int calls = 0;  // of the operator
  int beeps = 0;
  int alarms = 0;
  bool depthWindow = false;

  // What happened in its order, with the time passed since the last entry where that is 10 ms or more.
  std::vector<std::string> log;
  void Note(const std::string& what);
  // Files that have appeared here since the last entry are noted first, without the time in front of their
  // names. Empty: none is watched.
  std::filesystem::path watchedFolder;
  std::set<std::string> seenFiles;
  void NoteNewFiles();
  uint32_t noted_ms = 0;

  // Puts a text into a combo and selects it, as if the operator had chosen it.
  void Choose(int id, const std::wstring& text);
  [[nodiscard]] bool PointerIsArrow() const {
    return pointers.empty() || pointers.back() == PointerShape::arrow;
  }
};

// The one user interface of the test program; a test begins with a fresh one.
[[nodiscard]] RecordingUi& Ui();
void ResetUi();

}  // namespace tw::test

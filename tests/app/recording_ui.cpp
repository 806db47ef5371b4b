#include "tests/app/recording_ui.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <mutex>
#include <utility>

#include "app/window/commands.h"
#include "app/window/file_commands.h"
#include "base/text_format.h"
#include "platform/clock.h"

namespace tw {
namespace {

test::RecordingUi ui;
std::mutex postLock;  // workers post from threads of their own

std::string Narrow(const wchar_t* text) {
  char narrow[1024];
  return {narrow, NarrowText(narrow, text)};
}

void DeliverPosts(AppState& state) {
  std::vector<ProgressBlock> progress;
  std::vector<bool> ends;
  {
    const std::lock_guard hold(postLock);
    progress.assign(ui.progress.begin() + static_cast<ptrdiff_t>(ui.progressSeen), ui.progress.end());
    ui.progressSeen = ui.progress.size();
    ends = std::exchange(ui.conversionEnds, {});
  }
  for (const ProgressBlock& block : progress) NotePlaybackProgress(state, block);
  for (const bool exhausted : ends) HandleConversionEnd(state, exhausted);
}

void PassBox(AppState& state) {
  constexpr uint32_t kStands_ms = 2000;
  if (ui.duringBox != nullptr) ui.duringBox();
  DeliverPosts(state);
  for (const auto& [id, period_ms] : std::map(ui.timers)) {
    if (period_ms <= kStands_ms && ui.timers.contains(id)) HandleTimer(state, id);
  }
}

}  // namespace

namespace test {

RecordingUi& Ui() {
  return ui;
}

void ResetUi() {
  ui = RecordingUi{};
}

void RecordingUi::NoteNewFiles() {
  if (watchedFolder.empty()) return;
  constexpr size_t kTime = sizeof("20250314_093005") - 1;
  std::set<std::string> fresh;
  for (const auto& entry : std::filesystem::directory_iterator(watchedFolder)) {
    const std::string name = entry.path().filename().string();
    if (seenFiles.insert(name).second) fresh.insert("file " + name.substr(kTime));
  }
  log.insert(log.end(), fresh.begin(), fresh.end());
}

void RecordingUi::Note(const std::string& what) {
  const uint32_t now_ms = MillisecondClock();
  constexpr uint32_t kShortestWait_ms = 10;
  if (!log.empty() && now_ms - noted_ms >= kShortestWait_ms) {
    log.push_back("wait " + std::to_string((now_ms - noted_ms) / kShortestWait_ms * kShortestWait_ms));
  }
  noted_ms = now_ms;
  NoteNewFiles();
  log.push_back(what);
}

void RecordingUi::Choose(int id, const std::wstring& text) {
  Control& control = controls[id];
  auto item = std::find(control.items.begin(), control.items.end(), text);
  if (item == control.items.end()) item = control.items.insert(control.items.end(), text);
  control.selected = static_cast<int>(item - control.items.begin());
  control.text = text;
}

}  // namespace test

using test::Ui;

bool ShowBox(AppState& state, const wchar_t* text, const wchar_t* caption, BoxIcon icon, BoxButtons buttons) {
  Ui().boxes.push_back({text, caption, icon, buttons});
  Ui().Note("box " + Narrow(text));
  EXPECT_EQ(Ui().queuedInput, 0) << "would answer the box";
  PassBox(state);
  return Ui().answerOk;
}

void ShowSystemError(AppState& state, uint32_t code) {
  Ui().systemErrors.push_back(code);
  EXPECT_EQ(Ui().queuedInput, 0) << "would answer the box";
  PassBox(state);
}

void SetStatusText(AppState&, StatusPart part, const wchar_t* text) {
  const std::lock_guard hold(postLock);
  Ui().status[static_cast<size_t>(part)] = text;
  Ui().Note("status " + std::to_string(static_cast<int>(part)) + " " + Narrow(text));
}

void ShowNotice(AppState&, const wchar_t* text) {
  Ui().notices.emplace_back(text);
}
void OpenFolder(AppState&, const wchar_t* path, bool select) {
  Ui().folders.push_back((select ? L"file " : L"folder ") + std::wstring(path));
}

void PostStatusText(AppState&, StatusPart part, const wchar_t* text) {
  const std::lock_guard hold(postLock);
  Ui().status[static_cast<size_t>(part)] = text;
  Ui().posts[static_cast<size_t>(part)].emplace_back(text);
  Ui().postedBuffers[static_cast<size_t>(part)].insert(text);
}

void PostProgress(AppState&, const ProgressBlock& progress) {
  const std::lock_guard hold(postLock);
  Ui().progress.push_back(progress);
}

void PostOwnText(AppState& state, StatusPart part, OwnTexts& texts, const wchar_t* text) {
  {
    const std::lock_guard hold(postLock);
    CopyWide(texts.OfPart(part), text);
  }
  PostStatusText(state, part, texts.OfPart(part));
}

bool PostConversionEnd(AppState&, bool exhausted) {
  const std::lock_guard hold(postLock);
  if (Ui().fullQueue > 0) {
    --Ui().fullQueue;
    return false;
  }
  Ui().conversionEnds.push_back(exhausted);
  return true;
}

bool ChooseInputFiles(AppState&, std::vector<std::wstring>& paths) {
  paths = Ui().chosenFiles;
  return !paths.empty();
}

void ArrangeViews(AppState&) {}

void ShowProgress(AppState&, const wchar_t* text) {
  Ui().talk.push_back(Narrow(text));
}

void ShowPointer(PointerShape shape) {
  Ui().pointers.push_back(shape);
}

void EnableControl(AppState&, int id, bool enabled) {
  Ui().controls[id].enabled = enabled;
}
void ShowControl(AppState&, int id, bool visible) {
  Ui().controls[id].visible = visible;
}
void SetBold(AppState&, int id, bool bold) {
  Ui().controls[id].bold = bold;
}
bool IsChecked(AppState&, int id) {
  return Ui().controls[id].checked;
}
void SetChecked(AppState&, int id, bool checked) {
  Ui().controls[id].checked = checked;
}

void GetControlText(AppState&, int id, std::span<wchar_t> text) {
  CopyWide(text, Ui().controls[id].text);
}
void SetControlText(AppState&, int id, const wchar_t* text) {
  Ui().controls[id].text = text;
}

void ClearCombo(AppState& state, int id) {
  Ui().controls[id].items.clear();
  SelectComboItem(state, id, -1);
}

void AddComboItem(AppState&, int id, const wchar_t* text) {
  Ui().controls[id].items.emplace_back(text);
}

void SelectComboItem(AppState&, int id, int index) {
  test::Control& control = Ui().controls[id];
  const bool exists = index >= 0 && static_cast<size_t>(index) < control.items.size();
  control.selected = exists ? index : -1;
  control.text = exists ? control.items[static_cast<size_t>(index)] : L"";
}

int SelectedComboItem(AppState&, int id) {
  return Ui().controls[id].selected;
}

bool IsComboOpen(AppState&, int id) {
  return Ui().controls[id].open;
}

bool IsListOpen(AppState&) {
  return std::any_of(Ui().controls.begin(), Ui().controls.end(),
                     [](const auto& control) { return control.second.open; });
}

void DropQueuedInput(AppState&) {
  Ui().queuedInput = 0;
}
void CarryOutKeptInput(AppState&) {
  Ui().carriedOut += std::exchange(Ui().keptInput, 0);
}
void CloseSettingsDialog(AppState&) {
  ++Ui().settingsClosed;
}

void StartTimer(AppState&, int id, uint32_t period_ms) {
  Ui().Note("timer " + std::to_string(id) + " every " + std::to_string(period_ms));
  Ui().timers[id] = period_ms;
}
void StopTimer(AppState&, int id) {
  Ui().timers.erase(id);
}
void ShowLamp(AppState&, int id, const LampFace& face) {
  Ui().lamps[id] = face;
}
void SetStatusAlarm(AppState& state, StatusPart part, const wchar_t* text) {
  Ui().statusAlarm = text;
  SetStatusText(state, part, text);
}
void SetWindowTitle(AppState&, const wchar_t* title) {
  Ui().title = Narrow(title);
}
void InvalidateEchogram(AppState&) {
  ++Ui().repaints;
}
void CallOperator(AppState&, bool beep) {
  ++Ui().calls;
  Ui().beeps += beep ? 1 : 0;
}
void ShowDepthWindow(AppState&, const DepthFigures* figures) {
  Ui().depthWindow = figures != nullptr;
}
void SoundAlarm(AppState&) {
  ++Ui().alarms;
}
void EndProcess(int exitCode) {
  std::_Exit(exitCode);
}

}  // namespace tw

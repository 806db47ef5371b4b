#include "app/window/file_commands.h"

#include <iterator>
#include <span>
#include <string>
#include <vector>

#include "app/run/file_run.h"
#include "app/settings/control_states.h"
#include "app/settings/family_controls.h"
#include "app/settings/recent_recordings.h"
#include "app/state/file_naming.h"
#include "app/window/commands.h"
#include "app/window/control_ids.h"
#include "app/window/run_faults.h"
#include "app/window/ui.h"
#include "base/shared_value.h"
#include "base/text_format.h"
#include "platform/file.h"

namespace tw {
namespace {

constexpr wchar_t kError[] = L"Error";

// What the operator is told of a fault, in the order of the enumerators; a file's name goes ahead of the
// text.
struct FaultText {
  FileFaultKind kind;
  const wchar_t* text;
  const wchar_t* caption = kError;
  BoxIcon icon = BoxIcon::error;
};

constexpr FaultText kFaultTexts[] = {
    {FileFaultKind::none, L""},
    {FileFaultKind::deviceRuns, L"To open a file you should press \"Stop\" button first.", L"",
     BoxIcon::information},
    {FileFaultKind::noneChosen, L"File is not selected"},
    {FileFaultKind::severalChosen, L"Select One File"},
    {FileFaultKind::notOpened, L"  to open file."},
    {FileFaultKind::unknownFormat, L"Invalid file format."},
    {FileFaultKind::notPlayable, L"This file Cannot be playback"},
    {FileFaultKind::wrongPair, L"Select correct pair of files!!"},
    {FileFaultKind::notConvertible, L"Cannot convert this file(s)"},
    {FileFaultKind::noOutput, L"Unable to open file."},
};

constexpr bool StandInOrder() {
  for (size_t i = 0; i < std::size(kFaultTexts); ++i) {
    if (kFaultTexts[i].kind != static_cast<FileFaultKind>(i)) return false;
  }
  return std::size(kFaultTexts) == static_cast<size_t>(FileFaultKind::noWorker);
}
static_assert(StandInOrder());

// True without a fault; else the operator has been told of it. Without a worker the process is over.
bool Succeeds(AppState& state, const FileFault& fault) {
  if (fault.kind == FileFaultKind::none) return true;
  if (fault.kind == FileFaultKind::noWorker) EndWithoutWorker(state);
  const FaultText& told = kFaultTexts[static_cast<size_t>(fault.kind)];
  ShowBox(state, (fault.file + told.text).c_str(), told.caption, told.icon);
  return false;
}

void Refuse(AppState& state, FileFaultKind kind) {
  static_cast<void>(Succeeds(state, {kind, {}}));
}

bool IsDeviceRunning(const AppState& state) {
  return LoadShared(state.devicePort) != Handle::invalid;
}

// The files are open until their fault has been told.
FileFaultKind Play(AppState& state, const std::vector<std::wstring>& paths) {
  FilesToPlay files;
  FileFault fault = OpenForPlayback(state, paths, files);
  if (fault.kind == FileFaultKind::none) fault = BeginPlayback(state, files);
  if (!Succeeds(state, fault)) return fault.kind;
  NoteRecent(paths);
  RefreshSettingsControls(state);
  RefreshControlStates(state);
  ArrangeViews(state);
  return FileFaultKind::none;
}

// In place of what is played now.
FileFaultKind PlayInstead(AppState& state, const std::vector<std::wstring>& paths) {
  EndFileWorkers(state);
  ClearLiveTexts(state);
  const FileFaultKind fault = Play(state, paths);
  RefreshControlStates(state);
  return fault;
}

// Where the program writes or reads now, or wrote last; empty: nowhere yet.
void FindFileInUse(AppState& state, std::span<wchar_t> path) {
  CopyWide(path, state.lastFile);
  const Handle played = LoadShared(state.inputFileA);
  if (state.playbackActive != 0 && played != Handle::invalid) static_cast<void>(PathOfFile(played, path));
}

void Convert(AppState& state, Conversion conversion) {
  if (IsDeviceRunning(state)) return Refuse(state, FileFaultKind::deviceRuns);
  std::vector<std::wstring> paths;
  if (!ChooseInputFiles(state, paths) || paths.empty()) return Refuse(state, FileFaultKind::noneChosen);
  if (paths.size() > 1) return Refuse(state, FileFaultKind::severalChosen);
  EndFileWorkers(state);
  ClearLiveTexts(state);
  RefreshControlStates(state);
  OpenedRecording input;
  if (!Succeeds(state, OpenForConversion(state, paths[0], conversion, input)) ||
      !Succeeds(state, BeginConversion(state, paths[0], conversion, input)))
    return;
  RefreshControlStates(state);
}

}  // namespace

void PlayFiles(AppState& state) {
  if (IsDeviceRunning(state)) return Refuse(state, FileFaultKind::deviceRuns);
  std::vector<std::wstring> paths;
  if (!ChooseInputFiles(state, paths) || paths.empty()) return;
  static_cast<void>(PlayInstead(state, paths));
}

void PlayDropped(AppState& state, const std::vector<std::wstring>& paths) {
  if (paths.empty()) return;
  if (IsDeviceRunning(state)) {
    return ShowNotice(state, kFaultTexts[static_cast<size_t>(FileFaultKind::deviceRuns)].text);
  }
  if (const wchar_t* const reason = WhyDisabled(state, ID_PLAYBACK)) return ShowNotice(state, reason);
  static_cast<void>(PlayInstead(state, paths));
}

void PlayRecent(AppState& state, size_t index) {
  const std::vector<RecordingPaths> recent = LoadRecent();
  if (index >= recent.size() || WhyDisabled(state, ID_PLAYBACK) != nullptr) return;
  if (IsDeviceRunning(state)) return Refuse(state, FileFaultKind::deviceRuns);
  if (PlayInstead(state, recent[index]) == FileFaultKind::notOpened) ForgetRecent(recent[index]);
}

void ShowInFolder(AppState& state) {
  wchar_t path[kPathSize];
  FindFileInUse(state, path);
  OpenFolder(state, path[0] != L'\0' ? path : state.workingFolder, path[0] != L'\0');
}

void ResumePlayback(AppState& state) {
  if (ResumeFileRun(state)) RefreshControlStates(state);
}

void PausePlayback(AppState& state) {
  if (PauseFileRun(state)) RefreshControlStates(state);
}

void StepPlaybackBack(AppState& state, RunEvent step) {
  if (StepFileRunBack(state, step)) RefreshControlStates(state);
}

void NotePlaybackProgress(AppState& state, const ProgressBlock& progress) {
  if (NoteFileProgress(state, progress)) RefreshControlStates(state);
}

void ConvertToSegy(AppState& state) {
  Convert(state, Conversion::segy);
}
void ConvertToText(AppState& state) {
  Convert(state, Conversion::text);
}

void HandleConversionEnd(AppState& state, bool exhausted) {
  RefreshControlStates(state);
  if (exhausted) {
    wchar_t text[kStatusTextSize];
    const bool cut = LoadShared(state.conversionCut) != 0;
    CopyWide(std::span(text).subspan(CopyWide(text, cut ? L"Incomplete: " : L"Written: ")), state.converted);
    SetStatusText(state, StatusPart::position, text);
  }
  if (exhausted) ShowBox(state, L"Convert completed", L"Info", BoxIcon::information);
}

}  // namespace tw

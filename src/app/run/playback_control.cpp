#include "app/run/playback_control.h"

#include <optional>
#include <utility>

#include "acquisition/output_mode.h"
#include "app/run/run_start.h"
#include "app/run/worker_control.h"
#include "app/settings/control_states.h"
#include "app/settings/family_controls.h"
#include "app/state/file_naming.h"
#include "app/window/commands.h"
#include "app/window/run_faults.h"
#include "app/window/ui.h"
#include "base/shared_value.h"
#include "base/text_format.h"
#include "platform/owned_file.h"
#include "platform/thread.h"
#include "playback/detection.h"
#include "playback/file_worker.h"
#include "playback/pair.h"
#include "playback/ping_source.h"
#include "playback/played_channel.h"

namespace tw {
namespace {

constexpr wchar_t kError[] = L"Error";
constexpr wchar_t kWrongPair[] = L"Select correct pair of files!!";

void Refuse(AppState& state, const wchar_t* text) {
  ShowBox(state, text, kError, BoxIcon::error);
}

bool IsDeviceRunning(AppState& state) {
  if (LoadShared(state.devicePort) == Handle::invalid) return false;
  ShowBox(state, L"To open a file you should press \"Stop\" button first.", L"", BoxIcon::information);
  return true;
}

// A file that was opened and judged; closed again unless it is taken over.
struct Candidate {
  OwnedFile file;
  Candidates ways{};
  std::optional<Detected> told;
  std::unique_ptr<PingSource> recording;  // at its start; null: it holds no ping
  float range_m = 0;                      // that the first ping tells; 0: none
  bool isBare = false;                    // nothing but the line that tells how it was recorded
};

void TellUnopened(AppState& state, const std::wstring& path) {
  const size_t separator = path.find_last_of(L"/\\");
  const std::wstring text = (separator == path.npos ? path : path.substr(separator + 1)) + L"  to open file.";
  Refuse(state, text.c_str());
}

bool Open(AppState& state, const std::wstring& path, WriteSharing sharing, Candidate& candidate) {
  candidate.file = OwnedFile(OpenFileForReading(path.c_str(), sharing));
  if (candidate.file.Get() == Handle::invalid) {
    TellUnopened(state, path);
    return false;
  }
  candidate.ways = CandidatesOf(candidate.file.Get(), kGrowingRetries);
  if (candidate.ways.count != 0) candidate.told = candidate.ways.ways[0];
  return true;
}

// True when a ping can be read of it, which settles what the file is.
bool HoldsPing(AppState& state, Candidate& candidate) {
  RecordingFault fault = RecordingFault::none;
  auto recording =
      MakeRecording(candidate.file.Get(), candidate.ways, fault, state.settings.samplingFrequency_hz);
  RecordedPing first{};
  if (fault == RecordingFault::noMemory) {
    PostStatusText(state, StatusPart::position, PlaybackFailureText(kPlaybackWithoutMemory));
  }
  if (recording == nullptr || !recording->Next(first)) return false;
  candidate.range_m = first.header.range_m;
  if (!recording->Rewind()) return false;
  candidate.told = recording->Told();
  candidate.recording = std::move(recording);
  return true;
}

bool IsBare(const Candidate& candidate) {
  uint64_t size = 0;
  return candidate.told->info && FileSize(candidate.file.Get(), size) && size <= candidate.told->infoSize;
}

// Of a pair one file may be bare.
bool IsPlayable(AppState& state, const std::wstring& path, Candidate& candidate, bool inPair = false) {
  if (!Open(state, path, WriteSharing::allowed, candidate)) return false;
  if (!candidate.told) {
    Refuse(state, L"Invalid file format.");
    return false;
  }
  candidate.isBare = IsBare(candidate);
  if (candidate.isBare ? inPair : HoldsPing(state, candidate)) return true;
  Refuse(state, L"This file Cannot be playback");
  return false;
}

void BeginFileRun(AppState& state) {
  Reset(state.stopEvent);
  Reset(state.stopEventB);
  for (Event& event : state.runEvents) Reset(event);
  static_cast<void>(TakeSeekRequest(state.seekRequest));
  StoreShared(globals.playbackEnded, kPlaybackGoesOn);
  StoreShared(state.firstTime_ms, kNoPingYet);
  state.playbackPaused = 0;
  state.playbackAtEnd = 0;
  RaiseRunNumber(state);
  ClearRings(state);
  state.fileInRings = 1;
}

// What belongs to a worker, and what it goes on with.
void LayOut(PingSource*& recording, Handle& input, Candidate& candidate) {
  HandOver(recording, std::move(candidate.recording));
  StoreShared(input, candidate.file.Take());
}

bool StartFileWorker(AppState& state, Handle& thread, ThreadBody body) {
  const Handle started = StartThread(body, &state);
  StoreShared(thread, started);
  return started != Handle::null;
}

// The other worker of a pair ends, the files are closed, and the process is over.
[[noreturn]] void EndWithoutFileWorker(AppState& state) {
  EndFileWorkers(state);
  HandOver(state.recordingA, nullptr);
  HandOver(state.recordingB, nullptr);
  for (Handle* const file : {&state.inputFileA, &state.inputFileB, &state.segyCompanionA}) {
    CloseFile(ExchangeShared(*file, Handle::invalid));
  }
  EndWithoutWorker(state);
}

// A recording without a settings line tells its range with each ping, if at all.
void TakeRange(AppState& state, float range_m) {
  constexpr float kLeast_m = 1.0f;
  constexpr float kMost_m = 200.0f;
  if (!(range_m >= kLeast_m && range_m <= kMost_m)) return;
  const auto range_mm = static_cast<int32_t>(range_m * 1000.0f);
  state.settings.rangeLow_mm = state.settings.rangeHigh_mm = range_mm;
  state.displayRangeLower = state.displayRangeUpper = range_mm;
}

// What the recording tells of the settings it was made with.
void TakeSettings(AppState& state, const Candidate& file) {
  const Detected& told = *file.told;
  StoreShared(globals.deviceFamily, static_cast<int32_t>(told.family));
  state.settings.outputMode = told.outputMode;
  if (!told.info) return TakeRange(state, file.range_m);
  ApplyInfoLine(*told.info, state.settings);
  const OutputModeRow* const mode = FindMode(told.family, told.info->outputMode);
  state.settings.outputMode = mode == nullptr ? told.info->outputMode : mode->Played();
  // A view of the low frequency alone goes by the low channel's values.
  if (told.info->frequency_hz == state.settings.lowFrequency_hz) {
    ApplyLowInfoLine(*told.info, state.settings);
  }
  state.displayRangeUpper = RangeInMillimetres(told.info->range_mm);
  state.displayRangeLower = state.displayRangeUpper;
}

// The low channel's: the second line of a file of both channels, or the line of a pair's second file.
void TakeLowSettings(AppState& state, const std::optional<InfoLine>& low) {
  if (!low) return;
  ApplyLowInfoLine(*low, state.settings);
  state.displayRangeLower = RangeInMillimetres(low->range_mm);
}

// What a settings line tells of a channel's frequency. The pings tell it too, but a line with the altitudes
// of both channels only that of the first.
int32_t FrequencyOf(const std::optional<InfoLine>& info) {
  return info ? info->frequency_hz : 0;
}

void BeginPlayback(AppState& state, Candidate& a, Candidate* b) {
  const std::optional<InfoLine> low = b != nullptr ? b->told->info : a.told->low;
  BeginFileRun(state);
  SetConversion(state, Conversion::none);
  TakeSettings(state, a);
  TakeLowSettings(state, low);
  KeepInterval(state.settings);
  StoreShared(globals.dualMode, b != nullptr || a.told->channels > 1 ? 1 : 0);
  StoreShared(globals.playedFrequencyA_hz, FrequencyOf(a.told->info));
  StoreShared(globals.playedFrequencyB_hz, FrequencyOf(low));
  StoreShared(globals.lastCapture_s, -1);
  StoreShared(state.echogramEnabled, a.told->form->HasSamples() ? 1 : 0);
  StoreShared(state.playbackPace, kPlaybackPace_ms);
  state.playbackSpan = kPlaybackSpan;
  state.playbackActive = 1;
  LayOut(state.recordingA, state.inputFileA, a);
  if (b != nullptr) LayOut(state.recordingB, state.inputFileB, *b);
  if (!StartFileWorker(state, state.fileWorkerA, FileWorkerA) ||
      (b != nullptr && !StartFileWorker(state, state.fileWorkerB, FileWorkerB))) {
    EndWithoutFileWorker(state);
  }
  RefreshSettingsControls(state);
  RefreshControlStates(state);
  ArrangeViews(state);
}

void PlayOne(AppState& state, const std::wstring& path) {
  Candidate file;
  if (IsPlayable(state, path, file)) BeginPlayback(state, file, nullptr);
}

// A plays the higher frequency. Where one channel has not pinged the other is played alone.
void PlayPair(AppState& state, const std::vector<std::wstring>& paths) {
  const bool secondIsHigh = KHzOfName(paths[1]) > KHzOfName(paths[0]);
  Candidate a;
  Candidate b;
  if (!BelongTogether(paths[0], paths[1])) return Refuse(state, kWrongPair);
  if (!IsPlayable(state, paths[secondIsHigh ? 1 : 0], a, true) ||
      !IsPlayable(state, paths[secondIsHigh ? 0 : 1], b, !a.isBare))
    return;
  if (a.isBare || b.isBare) return BeginPlayback(state, a.isBare ? b : a, nullptr);
  if (a.told->form != b.told->form) return Refuse(state, kWrongPair);
  BeginPlayback(state, a, &b);
}

bool CanConvert(const Candidate& input, Conversion conversion) {
  if (!input.told || !input.told->form->HasSamples()) return false;
  return conversion == Conversion::segy || !input.told->form->isText;
}

void Convert(AppState& state, Conversion conversion) {
  if (IsDeviceRunning(state)) return;
  std::vector<std::wstring> paths;
  if (!ChooseInputFiles(state, paths) || paths.empty()) return Refuse(state, L"File is not selected");
  if (paths.size() > 1) return Refuse(state, L"Select One File");
  EndFileWorkers(state);
  ClearLiveTexts(state);
  RefreshControlStates(state);
  Candidate input;
  // Nobody may write it meanwhile, and so the output can never be the input.
  if (!Open(state, paths[0], WriteSharing::denied, input)) return;
  if (!HoldsPing(state, input) || !CanConvert(input, conversion))
    return Refuse(state, L"Cannot convert this file(s)");

  wchar_t name[kRecordNameSize];
  NameConversion(name, paths[0], conversion);
  CloseFile(ExchangeShared(state.segyCompanionA, Handle::invalid));
  const Handle output = CreateInFolder(state.workingFolder, name);
  if (output == Handle::invalid) return Refuse(state, L"Unable to open file.");
  StoreShared(state.segyCompanionA, output);
  char narrow[kRecordNameSize];
  NarrowText(narrow, name);
  FormatRecordTitle(globals.titleText, narrow, "");

  BeginFileRun(state);
  TakeSettings(state, input);
  StoreShared(globals.dualMode, input.told->channels > 1 ? 1 : 0);
  SetConversion(state, conversion);
  StoreShared(state.echogramEnabled, 1);
  LayOut(state.recordingA, state.inputFileA, input);
  if (!StartFileWorker(state, state.fileWorkerA, FileWorkerA)) EndWithoutFileWorker(state);
  RefreshControlStates(state);
}

}  // namespace

void PlayFiles(AppState& state) {
  if (IsDeviceRunning(state)) return;
  std::vector<std::wstring> paths;
  if (!ChooseInputFiles(state, paths) || paths.empty()) return;
  EndFileWorkers(state);
  ClearLiveTexts(state);
  if (paths.size() == 1) {
    PlayOne(state, paths[0]);
  } else if (paths.size() == 2) {
    PlayPair(state, paths);
  } else {
    Refuse(state, kWrongPair);
  }
  RefreshControlStates(state);
}

void ResumePlayback(AppState& state) {
  if (state.playbackActive == 0) return;
  if (state.playbackAtEnd != 0) RequestSeek(state.seekRequest, 0);
  state.playbackAtEnd = 0;
  state.playbackPaused = 0;
  Reset(state.runEvents[kPause]);
  RefreshControlStates(state);
}

void PausePlayback(AppState& state) {
  if (state.playbackActive == 0) return;
  state.playbackPaused = 1;
  Signal(state.runEvents[kPause]);
  RefreshControlStates(state);
}

void StepPlaybackBack(AppState& state, RunEvent step) {
  if (state.playbackActive == 0 || ConversionUnderWay(state) != Conversion::none) return;
  state.playbackAtEnd = 0;
  Signal(state.runEvents[step]);
  RefreshControlStates(state);
}

void NotePlaybackProgress(AppState& state, const ProgressBlock& progress) {
  if (state.playbackAtEnd == 0 || progress.position >= progress.fileSize) return;
  state.playbackAtEnd = 0;
  RefreshControlStates(state);
}

void ConvertToSegy(AppState& state) {
  Convert(state, Conversion::segy);
}
void ConvertToText(AppState& state) {
  Convert(state, Conversion::text);
}

void HandleConversionEnd(AppState& state, bool exhausted) {
  RefreshControlStates(state);
  if (exhausted) ShowBox(state, L"Convert completed", L"Info", BoxIcon::information);
}

}  // namespace tw

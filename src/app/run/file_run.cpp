#include "app/run/file_run.h"

#include <utility>

#include "acquisition/output_mode.h"
#include "app/run/run_start.h"
#include "app/run/worker_control.h"
#include "app/state/file_naming.h"
#include "app/state/posts.h"
#include "base/shared_value.h"
#include "base/text_format.h"
#include "platform/thread.h"
#include "playback/file_worker.h"
#include "playback/overview_thread.h"
#include "playback/pair.h"
#include "playback/played_channel.h"
#include "playback/recording_marks.h"

namespace tw {
namespace {

// Sets what the file's first bytes tell; MakeRecording goes by all that they can mean.
FileFault Open(const std::wstring& path, WriteSharing sharing, OpenedRecording& opened,
               Candidates& candidates) {
  opened.file = OwnedFile(OpenFileForReading(path.c_str(), sharing));
  if (opened.file.Get() == Handle::invalid) {
    const size_t separator = path.find_last_of(L"/\\");
    return {FileFaultKind::notOpened, separator == path.npos ? path : path.substr(separator + 1)};
  }
  candidates = CandidatesOf(opened.file.Get(), kGrowingRetries);
  if (candidates.count != 0) opened.told = candidates.ways[0];
  return {};
}

// True when a ping can be read of it, which settles what the file is.
bool HoldsPing(AppState& state, const Candidates& candidates, OpenedRecording& opened) {
  RecordingFault fault = RecordingFault::none;
  auto recording = MakeRecording(opened.file.Get(), candidates, fault, state.settings.samplingFrequency_hz);
  RecordedPing first{};
  if (fault == RecordingFault::noMemory) {
    PostStatusText(state, StatusPart::position, PlaybackFailureText(kPlaybackWithoutMemory));
  }
  if (recording == nullptr || !recording->Next(first)) return false;
  opened.range_m = first.header.range_m;
  if (!recording->Rewind()) return false;
  opened.told = recording->Told();
  opened.recording = std::move(recording);
  return true;
}

// Nothing but the line that tells how it was recorded.
bool IsBare(const OpenedRecording& opened) {
  uint64_t size = 0;
  return opened.told->info && FileSize(opened.file.Get(), size) && size <= opened.told->infoSize;
}

// Of a pair one file may be bare.
FileFault OpenPlayable(AppState& state, const std::wstring& path, OpenedRecording& opened,
                       bool mayBeBare = false) {
  Candidates candidates{};
  FileFault fault = Open(path, WriteSharing::allowed, opened, candidates);
  if (fault.kind != FileFaultKind::none) return fault;
  if (!opened.told) return {FileFaultKind::unknownFormat, {}};
  if (IsBare(opened) ? mayBeBare : HoldsPing(state, candidates, opened)) {
    if (opened.recording != nullptr) opened.recording->SetMarks(ReadMarksBeside(path));
    return {};
  }
  return {FileFaultKind::notPlayable, {}};
}

// A plays the higher frequency.
FileFault OpenPair(AppState& state, std::span<const std::wstring> paths, FilesToPlay& files) {
  if (!BelongTogether(paths[0], paths[1])) return {FileFaultKind::wrongPair, {}};
  const size_t high = KHzOfName(paths[1]) > KHzOfName(paths[0]) ? 1 : 0;
  FileFault fault = OpenPlayable(state, paths[high], files.a, true);
  if (fault.kind == FileFaultKind::none) {
    fault = OpenPlayable(state, paths[1 - high], files.b, files.a.recording != nullptr);
  }
  if (fault.kind != FileFaultKind::none) return fault;
  if (files.a.recording == nullptr) {
    files.a = std::move(files.b);
  } else if (files.b.recording != nullptr && files.a.told->form != files.b.told->form) {
    return {FileFaultKind::wrongPair, {}};
  }
  return {};
}

void BeginFileRun(AppState& state) {
  Reset(state.stopEvent);
  Reset(state.stopEventB);
  for (Event& event : state.runEvents) Reset(event);
  static_cast<void>(TakeSeekRequest(state.seekRequest));
  StoreShared(globals.playbackEnded, kPlaybackGoesOn);
  StoreShared(state.firstTime_ms, kNoPingYet);
  StoreShared(state.replay.time_ms, kNoPingYet);
  StoreShared(state.replay.timeRequest, 0);
  StoreShared(state.replay.stepOn, 0);
  StoreShared(state.replay.position, 0);
  StoreShared(state.replay.fileSize, 0);
  state.playbackPaused = 0;
  state.playbackAtEnd = 0;
  RaiseRunNumber(state);
  ClearRings(state);
  state.fileInRings = 1;
}

// What belongs to a worker, and what it goes on with.
void LayOut(PingSource*& recording, Handle& input, OpenedRecording& opened) {
  HandOver(recording, std::move(opened.recording));
  StoreShared(input, opened.file.Take());
}

bool StartFileWorker(AppState& state, Handle& thread, ThreadBody body) {
  const Handle started = StartThread(body, &state);
  StoreShared(thread, started);
  return started != Handle::null;
}

// The other worker of a pair ends, and the files are closed.
FileFault EndWithoutFileWorker(AppState& state) {
  static_cast<void>(EndFileRun(state));  // the views were not arranged yet
  HandOver(state.recordingA, nullptr);
  HandOver(state.recordingB, nullptr);
  for (Handle* const file : {&state.inputFileA, &state.inputFileB, &state.segyCompanionA}) {
    CloseFile(ExchangeShared(*file, Handle::invalid));
  }
  return {FileFaultKind::noWorker, {}};
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
void TakeSettings(AppState& state, const OpenedRecording& file) {
  const Detected& told = *file.told;
  StoreShared(globals.deviceFamily, static_cast<int32_t>(told.family));
  state.settings.outputMode = told.outputMode;
  if (!told.info) return TakeRange(state, file.range_m);
  ApplyInfoLine(*told.info, FieldChannel::high, state.settings);
  const OutputModeRow* const mode = FindMode(told.family, told.info->outputMode);
  state.settings.outputMode = mode == nullptr ? told.info->outputMode : mode->Played();
  // A view of the low frequency alone goes by the low channel's values.
  if (told.info->frequency_hz == state.settings.lowFrequency_hz) {
    ApplyInfoLine(*told.info, FieldChannel::low, state.settings);
  }
  state.displayRangeUpper = RangeInMillimetres(told.info->range_mm);
  state.displayRangeLower = state.displayRangeUpper;
}

// The low channel's: the second line of a file of both channels, or the line of a pair's second file.
void TakeLowSettings(AppState& state, const std::optional<InfoLine>& low) {
  if (!low) return;
  ApplyInfoLine(*low, FieldChannel::low, state.settings);
  state.displayRangeLower = RangeInMillimetres(low->range_mm);
}

// What a settings line tells of a channel's frequency. The pings tell it too, but a line with the altitudes
// of both channels only that of the first.
int32_t FrequencyOf(const std::optional<InfoLine>& info) {
  return info ? info->frequency_hz : 0;
}

bool CanConvert(const OpenedRecording& input, Conversion conversion) {
  if (!input.told->form->HasSamples()) return false;
  return conversion == Conversion::segy || !input.told->form->isText;
}

// A file worker closes its own thread handle and clears the field when it ends, so the field is read anew
// for each slice.
void EndFileWorker(Handle& thread, Event& stop) {
  constexpr uint32_t kWaitSlice_ms = 100;
  if (LoadShared(thread) == Handle::null) return;
  Signal(stop);
  for (;;) {
    const Handle now = LoadShared(thread);
    if (now == Handle::null || WaitForThread(now, kWaitSlice_ms) != ThreadWait::timedOut) break;
  }
  StoreShared(thread, Handle::null);
}

}  // namespace

FileFault OpenForPlayback(AppState& state, std::span<const std::wstring> paths, FilesToPlay& files) {
  if (paths.size() == 1) return OpenPlayable(state, paths[0], files.a);
  if (paths.size() == 2) return OpenPair(state, paths, files);
  return {FileFaultKind::wrongPair, {}};
}

FileFault BeginPlayback(AppState& state, FilesToPlay& files) {
  OpenedRecording& a = files.a;
  const bool pair = files.b.recording != nullptr;
  const std::optional<InfoLine> low = pair ? files.b.told->info : a.told->low;
  BeginFileRun(state);
  SetConversion(state, Conversion::none);
  TakeSettings(state, a);
  TakeLowSettings(state, low);
  KeepInterval(state.settings);
  StoreShared(globals.dualMode, pair || a.told->channels > 1 ? 1 : 0);
  StoreShared(globals.playedFrequencyA_hz, FrequencyOf(a.told->info));
  StoreShared(globals.playedFrequencyB_hz, FrequencyOf(low));
  StoreShared(globals.lastCapture_s, -1);
  StoreShared(state.echogramEnabled, a.told->form->HasSamples() ? 1 : 0);
  StoreShared(state.playbackPace, kPlaybackPace_ms);
  state.playbackSpan = kPlaybackSpan;
  state.playbackActive = 1;
  LayOut(state.recordingA, state.inputFileA, a);
  if (pair) LayOut(state.recordingB, state.inputFileB, files.b);
  TakeReplayOptions(state);
  if (!StartFileWorker(state, state.fileWorkerA, FileWorkerA) ||
      (pair && !StartFileWorker(state, state.fileWorkerB, FileWorkerB)))
    return EndWithoutFileWorker(state);
  return {};
}

FileFault OpenForConversion(AppState& state, const std::wstring& path, Conversion conversion,
                            OpenedRecording& input) {
  Candidates candidates{};
  // Nobody may write it meanwhile, and so the output can never be the input.
  FileFault fault = Open(path, WriteSharing::denied, input, candidates);
  if (fault.kind != FileFaultKind::none) return fault;
  if (HoldsPing(state, candidates, input) && CanConvert(input, conversion)) return {};
  return {FileFaultKind::notConvertible, {}};
}

FileFault BeginConversion(AppState& state, const std::wstring& path, Conversion conversion,
                          OpenedRecording& input) {
  wchar_t name[kRecordNameSize];
  NameConversion(name, path, conversion);
  CloseFile(ExchangeShared(state.segyCompanionA, Handle::invalid));
  const Handle output = CreateInFolder(state.workingFolder, name);
  if (output == Handle::invalid) return {FileFaultKind::noOutput, {}};
  StoreShared(state.segyCompanionA, output);
  StoreShared(state.conversionCut, 0);
  static_cast<void>(JoinPath(state.converted, state.workingFolder, name));
  CopyWide(state.lastFile, state.converted);
  char narrow[kRecordNameSize];
  NarrowText(narrow, name);
  FormatRecordTitle(globals.titleText, narrow, "");

  BeginFileRun(state);
  TakeSettings(state, input);
  StoreShared(globals.dualMode, input.told->channels > 1 ? 1 : 0);
  SetConversion(state, conversion);
  StoreShared(state.echogramEnabled, 1);
  LayOut(state.recordingA, state.inputFileA, input);
  if (!StartFileWorker(state, state.fileWorkerA, FileWorkerA)) return EndWithoutFileWorker(state);
  return {};
}

bool EndFileRun(AppState& state) {
  EndOverview(state);
  EndFileWorker(state.fileWorkerA, state.stopEvent);
  EndFileWorker(state.fileWorkerB, state.stopEventB);
  StoreShared(globals.playbackEnded, 0);  // nobody is left who could go on
  if (state.playbackActive == 0) return false;
  state.playbackActive = 0;
  state.playbackPaused = 0;
  state.playbackAtEnd = 0;
  return true;
}

// Without the bar nobody could choose another pace.
void TakeReplayOptions(AppState& state) {
  const bool bar = state.options.playbackBar != 0;
  StoreShared(state.replay.bar, bar ? 1 : 0);
  if (!bar) StoreShared(state.replay.pace_percent, kPaceAsGiven);
  StoreShared(state.replay.skipGaps, bar ? state.options.skipGaps : 0);
  if (!bar) return EndOverview(state);
  if (state.playbackActive != 0) BeginOverview(state);
}

bool ResumeFileRun(AppState& state) {
  if (state.playbackActive == 0) return false;
  if (state.playbackAtEnd != 0) RequestSeek(state.seekRequest, 0);
  state.playbackAtEnd = 0;
  state.playbackPaused = 0;
  Reset(state.runEvents[kPause]);
  return true;
}

bool PauseFileRun(AppState& state) {
  if (state.playbackActive == 0) return false;
  state.playbackPaused = 1;
  Signal(state.runEvents[kPause]);
  return true;
}

bool StepFileRunBack(AppState& state, RunEvent step) {
  if (state.playbackActive == 0 || ConversionUnderWay(state) != Conversion::none) return false;
  state.playbackAtEnd = 0;
  Signal(state.runEvents[step]);
  return true;
}

bool StepFileRunOn(AppState& state, int32_t pings) {
  if (state.playbackActive == 0 || state.playbackAtEnd != 0) return false;
  RequestStepOn(state.replay.stepOn, pings);
  return true;
}

bool NoteFileProgress(AppState& state, const ProgressBlock& progress) {
  if (state.playbackAtEnd == 0 || progress.position >= progress.fileSize) return false;
  state.playbackAtEnd = 0;
  return true;
}

}  // namespace tw

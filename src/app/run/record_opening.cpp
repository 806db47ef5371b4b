#include "app/run/record_opening.h"

#include <cstring>

#include "acquisition/output_mode.h"
#include "acquisition/record_file.h"
#include "app/run/record_split.h"
#include "app/run/run_events.h"
#include "base/shared_value.h"
#include "base/text_format.h"
#include "device/info_line.h"
#include "platform/clock.h"
#include "platform/file.h"
#include "platform/system_error.h"

namespace tw {
namespace {

constexpr uint32_t kSecond_ms = 1'000;

// What the device runs with: what the operator has chosen may wait for Apply. The output alone goes out with
// the start of a run, so that before it the chosen one counts.
DeviceSettings RunningSettings(const AppState& state) {
  DeviceSettings settings = state.appliedSettings;
  if (state.acquisitionThread == Handle::null) settings.outputMode = state.settings.outputMode;
  settings.simultaneous = LoadShared(globals.dualMode);
  return settings;
}

NamingFacts CollectFacts(const AppState& state, NamingMoment moment, DeviceFamily family) {
  const DeviceSettings settings = RunningSettings(state);
  const OutputModeRow& mode = AcceptedMode(family, settings.outputMode);
  const bool atStart = moment == NamingMoment::start;
  return {
      .moment = moment,
      .family = family,
      .dual = settings.simultaneous != 0,
      .modeWord = atStart ? mode.wordAtStart : mode.wordSwitchedOn,
      // kept: a 5, which Start takes for a 6, shares one as well.
      .sharesOneFile = mode.sent.SharesFile() || (settings.outputMode == 5 && !atStart),
      .hasSamples = mode.sent.HasSamples(),
      .frequencyInUse_hz = settings.frequencyInUse_hz,
      .lowFrequency_hz = settings.lowFrequency_hz,
      .highFrequency_hz = settings.highFrequency_hz,
      .measuredLow_hz = globals.measuredLowFrequency_hz,
      .measuredHigh_hz = globals.measuredHighFrequency_hz,
      .identity = state.appliedSettings.identity,  // the facts only point to it
      .identifierWord = settings.identifierWord,
      .segyCompanions = ConversionUnderWay(state) == Conversion::segy,
      .localTime = LocalNow(),
  };
}

// A file of this run holds both channels.
bool HoldsBothChannels(const DeviceSettings& settings) {
  return settings.simultaneous != 0 && AcceptedMode(FamilyInUse(), settings.outputMode).sent.SharesFile();
}

bool PathOf(const AppState& state, const char* name, std::span<wchar_t> path) {
  wchar_t wide[kRecordNameSize];
  WidenText(wide, name);
  return name[0] != '\0' && JoinPath(path, state.workingFolder, wide);
}

// A recording that the disk does not even take the settings line of. Of a binary run nothing is left then,
// since its worker finds no file to leave the byte in.
void ClearAwayUnbegun(const AppState& state, const char* name, OutputMode mode) {
  if (AcceptedMode(FamilyInUse(), mode).recorded.emptyRun != EmptyRun::leaveOneByte) return;
  wchar_t path[kPathSize];
  if (PathOf(state, name, path)) static_cast<void>(RemoveFile(path));
}

bool IsTaken(const AppState& state, const RecordFileName& name) {
  wchar_t path[kPathSize];
  if (!PathOf(state, name.record, path)) return false;
  const Handle file = OpenFileForReading(path, WriteSharing::allowed);
  CloseFile(file);
  return file != Handle::invalid;
}

Handle CreateNamed(const AppState& state, const char* name) {
  if (name[0] == '\0') return Handle::invalid;
  wchar_t wide[kRecordNameSize];
  WidenText(wide, name);
  return CreateInFolder(state.workingFolder, wide);
}

// Why a file could not be made; to be asked right after that.
RecordFault FaultOfCreation(const AppState& state) {
  const bool full = MeansFullDisk(LastSystemError());
  if (!IsFolder(state.workingFolder)) return RecordFault::folderMissing;
  return full ? RecordFault::diskFull : RecordFault::diskRefuses;
}

void NoteFault(AppState& state, RecordFault fault) {
  StoreShared(state.recordFault, static_cast<int32_t>(fault));
}

// Nothing of the files that were open before counts any more.
void BeginAccount(AppState& state) {
  StoreShared(state.recordingNumber, LoadShared(state.recordingNumber) + 1);
  StoreShared(state.recordedPings, 0);
  StoreShared(state.recordedBytes, 0);
  state.watch.recorded_ms = 0;
  state.watch.recordTick_ms = MillisecondClock();
}

// Creates one record file with its settings line(s).
Handle Begin(AppState& state, const RecordFileName& name) {
  Handle file = CreateNamed(state, name.record);
  if (file == Handle::invalid) {
    if (name.record[0] != '\0') NoteFault(state, FaultOfCreation(state));
    return file;
  }
  const DeviceSettings settings = RunningSettings(state);
  WriteInfoLine(settings, FamilyInUse(), file, name.channelFrequency_hz, HoldsBothChannels(settings));
  if (file != Handle::invalid) return file;
  NoteFault(state, RecordFault::diskFull);  // there is no room for its settings line
  ClearAwayUnbegun(state, name.record, settings.outputMode);
  return file;
}

void NoteOpened(AppState& state, RecordChannel channel, const char* name) {
  LogOpenedFile(state, name);
  if (channel == RecordChannel::a) static_cast<void>(PathOf(state, name, state.lastFile));
}

// The worker sees the handle only when the settings line is written.
void OpenOne(AppState& state, const RecordFileName& name, RecordChannel channel, Handle& companion) {
  const Handle file = Begin(state, name);
  PutRecordFile(state, channel, file);
  if (file != Handle::invalid) NoteOpened(state, channel, name.record);
  StoreShared(companion, CreateNamed(state, name.segy));
}

// With the option never to replace a recording: a name that exists waits for the next second.
RecordFileNames NamesOfNewFiles(const AppState& state, NamingMoment moment, DeviceFamily family) {
  constexpr uint32_t kSlice_ms = 50;
  constexpr uint32_t kLimit_ms = 5'000;  // somebody else makes one each second
  RecordFileNames names = NameRecordFiles(CollectFacts(state, moment, family));
  if (state.options.neverReplace == 0) return names;
  for (uint32_t waited_ms = 0; waited_ms < kLimit_ms; waited_ms += kSlice_ms) {
    if (!IsTaken(state, names.a) && !IsTaken(state, names.b)) break;
    SleepMilliseconds(kSlice_ms);
    names = NameRecordFiles(CollectFacts(state, moment, family));
  }
  return names;
}

// Two openings within a second have the same names, and the writer may still have the files of the first
// open. A disk that keeps it busy until that second is over gives the second ones other names.
RecordFileNames NamesOfFreeFiles(AppState& state, NamingMoment moment, DeviceFamily family) {
  const RecordFileNames names = NamesOfNewFiles(state, moment, family);
  char title[sizeof(Globals::titleText)];
  FormatRecordTitle(title, names.a.record, names.b.record);
  if (std::strcmp(title, globals.titleText) != 0 || AwaitRecords(state, kSecond_ms)) return names;
  return NamesOfNewFiles(state, moment, family);
}

// A conversion's output is closed by its worker, which may just be writing it: the worker finds the field
// empty.
void CloseCompanion(const AppState& state, Handle& companion) {
  const Handle file = ExchangeShared(companion, Handle::invalid);
  if (ConversionUnderWay(state) == Conversion::none) CloseFile(file);
}

}  // namespace

void OpenRecordFiles(AppState& state, NamingMoment moment) {
  OpenRecordFiles(state, moment, FamilyInUse());
}

void OpenRecordFiles(AppState& state, NamingMoment moment, DeviceFamily namingFamily) {
  CloseRecordFiles(state);
  BeginAccount(state);
  NoteFault(state, RecordFault::none);
  state.watch.faultTold = 0;
  state.splitPeriod = SplitPeriodNow(state);
  const bool first = namingFamily == DeviceFamily::first;
  if (first && moment == NamingMoment::start && state.settings.outputMode == 5) state.settings.outputMode = 6;

  StoreShared(state.recordFlushPeriod_ms, static_cast<uint32_t>(state.options.flushPeriod_s) * 1'000);
  const RecordFileNames names = NamesOfFreeFiles(state, moment, namingFamily);
  globals.lowKHz = NameKHz(globals.measuredLowFrequency_hz);
  globals.highKHz = NameKHz(globals.measuredHighFrequency_hz);
  OpenOne(state, names.a, RecordChannel::a, state.segyCompanionA);
  OpenOne(state, names.b, RecordChannel::b, state.segyCompanionB);
  FormatRecordTitle(globals.titleText, names.a.record, names.b.record);
}

bool SplitRecordFiles(AppState& state) {
  const RecordFileNames names =
      NameRecordFiles(CollectFacts(state, NamingMoment::recordSwitchedOn, FamilyInUse()));
  if (IsTaken(state, names.a) || IsTaken(state, names.b)) return false;
  const bool pair = IsRecordFileOpen(state, RecordChannel::b);
  const Handle a = IsRecordFileOpen(state, RecordChannel::a) ? Begin(state, names.a) : Handle::invalid;
  const Handle b = pair ? Begin(state, names.b) : Handle::invalid;
  NoteFault(state, RecordFault::none);  // the recording goes on in the old file
  if (a == Handle::invalid && b == Handle::invalid) return false;
  static_assert(sizeof state.nextNames[0] == sizeof names.a.record);
  std::memcpy(state.nextNames[0], names.a.record, sizeof names.a.record);
  std::memcpy(state.nextNames[1], names.b.record, sizeof names.b.record);
  BeginAccount(state);
  if (a != Handle::invalid) NoteOpened(state, RecordChannel::a, names.a.record);
  if (b != Handle::invalid) NoteOpened(state, RecordChannel::b, names.b.record);
  OfferRecordFile(state, RecordChannel::a, a);
  OfferRecordFile(state, RecordChannel::b, b);
  FormatRecordTitle(globals.titleText, names.a.record, names.b.record);
  return true;
}

void TakeBackOffers(AppState& state) {
  for (const RecordChannel channel : {RecordChannel::a, RecordChannel::b}) {
    const Handle file = TakeBackRecordFile(state, channel);
    if (file == Handle::invalid) continue;
    CloseFile(file);
    wchar_t path[kPathSize];
    const char* const name = state.nextNames[channel == RecordChannel::a ? 0 : 1];
    if (PathOf(state, name, path)) static_cast<void>(RemoveFile(path));
    LogRemovedFile(state, name);
  }
}

void CloseRecordFiles(AppState& state) {
  TakeBackOffers(state);
  CloseBothRecordFiles(state);
  CloseCompanion(state, state.segyCompanionA);
  CloseCompanion(state, state.segyCompanionB);
}

}  // namespace tw

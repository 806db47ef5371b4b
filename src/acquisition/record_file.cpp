#include "acquisition/record_file.h"

#include <cinttypes>
#include <utility>

#include "acquisition/record_writer.h"
#include "base/shared_value.h"
#include "base/text_format.h"
#include "platform/clock.h"
#include "platform/file.h"

namespace tw {
namespace {

constexpr uint32_t kRoomPoll_ms = 10;

bool IsOpen(Handle file) {
  return file != Handle::invalid && file != Handle::null;
}

// Under recordLock. False without memory for it.
bool MakeWriter(AppState& state) {
  if (state.recordWriter == nullptr) state.recordWriter = RecordWriter::Make(state);
  return state.recordWriter != nullptr;
}

// What becomes of the channel's open file, which takes no more pings. Nothing happens without one, or to a
// run other than the caller's. Only a disk that stood still through a thousand openings can leave no room for
// this.
void EndOpenFile(AppState& state, uint32_t runNumber, const RecordEntry& entry) {
  for (;;) {
    {
      Locked held(state.recordLock);
      Handle& field = ChannelOf(state, entry.channel).recordFile;
      if (!IsOpen(field) || LoadShared(state.runNumber) != runNumber) return;
      if (state.recordWriter->Put(entry)) {
        field = Handle::invalid;
        return;
      }
    }
    SleepMilliseconds(kRoomPoll_ms);
  }
}

bool HandOverFile(AppState& state, RecordChannel channel, Handle file) {
  Locked held(state.recordLock);
  if (!MakeWriter(state)) return false;
  if (!state.recordWriter->Put({.step = RecordStep::open, .channel = channel, .file = file})) return false;
  state.recordWriter->NoteNewRecording();
  ChannelOf(state, channel).recordFile = file;
  return true;
}

}  // namespace

void PutRecordFile(AppState& state, RecordChannel channel, Handle file) {
  CloseRecordFile(state, channel);
  if (IsOpen(file) && !HandOverFile(state, channel, file)) CloseFile(file);
}

void CloseRecordFile(AppState& state, RecordChannel channel) {
  EndOpenFile(state, LoadShared(state.runNumber), {.step = RecordStep::close, .channel = channel});
}

void TellRecordFile(AppState& state, RecordChannel channel) {
  Locked held(state.recordLock);
  if (!IsOpen(ChannelOf(state, channel).recordFile)) return;
  // Without room for it there is too much to do for that.
  static_cast<void>(state.recordWriter->Put({.step = RecordStep::tell, .channel = channel}));
}

void CloseBothRecordFiles(AppState& state) {
  CloseRecordFile(state, RecordChannel::a);
  CloseRecordFile(state, RecordChannel::b);
}

bool IsRecordFileOpen(AppState& state, RecordChannel channel) {
  Locked held(state.recordLock);
  return IsOpen(ChannelOf(state, channel).recordFile);
}

void OfferRecordFile(AppState& state, RecordChannel channel, Handle file) {
  Locked held(state.recordLock);
  ChannelOf(state, channel).nextRecord = file;
}

Handle TakeBackRecordFile(AppState& state, RecordChannel channel) {
  Locked held(state.recordLock);
  return std::exchange(ChannelOf(state, channel).nextRecord, Handle::invalid);
}

void ChangeRecordFiles(AppState& state, uint32_t runNumber) {
  Locked held(state.recordLock);
  if (LoadShared(state.runNumber) != runNumber || state.recordWriter == nullptr) return;
  for (const RecordChannel channel : {RecordChannel::a, RecordChannel::b}) {
    ChannelView view = ChannelOf(state, channel);
    if (!IsOpen(view.nextRecord) || !IsOpen(view.recordFile)) continue;
    // Without room for both the old file goes on.
    if (!state.recordWriter->PutChange(channel, view.nextRecord)) continue;
    view.recordFile = std::exchange(view.nextRecord, Handle::invalid);
  }
}

Recorded RecordPing(AppState& state, const PingToRecord& what, std::span<const char> ping) {
  Locked held(state.recordLock);
  // Files of the next run are opened after the number was raised.
  const bool stale = LoadShared(state.runNumber) != what.runNumber;
  if (stale || !IsOpen(ChannelOf(state, what.channel).recordFile)) return Recorded::noFile;
  const RecordEntry entry{.step = RecordStep::ping,
                          .channel = what.channel,
                          .emptyRun = what.emptyRun,
                          .any = what.any,
                          .tell = what.tell,
                          .recording = what.recording};
  if (state.recordWriter->Put(entry, ping)) return Recorded::handedOver;
  state.recordWriter->NoteLost();
  return Recorded::noRoom;
}

uint64_t RecordedBytes(AppState& state, uint32_t recording) {
  Locked held(state.recordLock);
  if (state.recordWriter == nullptr || state.recordWriter->Tally().recording != recording) return 0;
  return state.recordWriter->Tally().size_bytes;
}

void EndRecording(AppState& state, uint32_t runNumber, EmptyRun emptyRun, bool any) {
  for (const RecordChannel channel : {RecordChannel::a, RecordChannel::b}) {
    EndOpenFile(state, runNumber,
                {.step = RecordStep::end,
                 .channel = channel,
                 .emptyRun = emptyRun,
                 .any = any,
                 .recording = LoadShared(state.recordingNumber)});
  }
}

void DeleteEmptyRecordFiles(AppState& state) {
  for (const RecordChannel channel : {RecordChannel::a, RecordChannel::b}) {
    EndOpenFile(state, LoadShared(state.runNumber), {.step = RecordStep::remove, .channel = channel});
  }
  static_cast<void>(AwaitRecords(state, kWritingLimit_ms));
}

bool AwaitRecords(AppState& state, uint32_t limit_ms) {
  RecordWriter* writer = nullptr;
  {
    Locked held(state.recordLock);
    writer = state.recordWriter;
    if (writer == nullptr) return true;
    writer->Begin();
  }
  return WaitForEvent(writer->Idle(), limit_ms);
}

void FinishRecords(AppState& state, uint32_t began_ms) {
  const uint32_t passed_ms = MillisecondClock() - began_ms;
  if (AwaitRecords(state, passed_ms < kWritingLimit_ms ? kWritingLimit_ms - passed_ms : 0)) return;
  Locked held(state.recordLock);
  if (state.recordWriter->BytesLeft() != 0) state.recordWriter->NoteLeft();
}

void FreeRecordWriter(AppState& state) {
  RecordWriter::Free(std::exchange(state.recordWriter, nullptr));
}

void FormatFileSize(std::span<wchar_t> text, uint64_t size_bytes) {
  constexpr uint64_t kKilo = 1024;
  constexpr uint64_t kLastKilobytes = 10 * kKilo * kKilo;
  const bool bytes = size_bytes <= kKilo;
  const bool kilobytes = size_bytes <= kLastKilobytes;
  const uint64_t shown = bytes ? size_bytes : kilobytes ? size_bytes / kKilo : size_bytes / (kKilo * kKilo);
  FormatWide(text, "File size: %" PRIu64 "%s", shown, bytes ? "Bytes" : kilobytes ? "KB" : "MB");
}

}  // namespace tw

#include "acquisition/record_file.h"

#include <cinttypes>
#include <utility>

#include "base/text_format.h"
#include "platform/file.h"

namespace tw {
namespace {

constexpr size_t kPathSize = 1'024;

struct Slot {
  Handle& file;
  Handle& busy;
};

Slot SlotOf(AppState& state, RecordChannel channel) {
  if (channel == RecordChannel::a) return {state.recordFileA, state.recordBusyA};
  return {state.recordFileB, state.recordBusyB};
}

bool IsOpen(Handle file) {
  return file != Handle::invalid && file != Handle::null;
}

// Marks the channel's file as being written to; the invalid handle when none is open.
Handle BeginWriting(AppState& state, RecordChannel channel) {
  Locked held(state.recordLock);
  const Slot slot = SlotOf(state, channel);
  slot.busy = IsOpen(slot.file) ? slot.file : Handle::invalid;
  return slot.busy;
}

// Ends the writing. The file is closed when somebody has taken it out of the state meanwhile, or when it is
// to be given up.
void EndWriting(AppState& state, RecordChannel channel, Handle file, bool giveUp) {
  bool close = false;
  {
    Locked held(state.recordLock);
    const Slot slot = SlotOf(state, channel);
    if (slot.busy == file) slot.busy = Handle::invalid;  // after a long time it may be the next worker's
    close = slot.file != file || giveUp;
    if (slot.file == file && giveUp) slot.file = Handle::invalid;
  }
  if (close) CloseFile(file);
}

void CutBack(Handle file, uint32_t written) {
  uint64_t position = 0;
  if (written != 0 && FilePosition(file, position) && position >= written) {
    // When even this fails the file ends in a part of a ping; there is nothing more to be done about it.
    static_cast<void>(TruncateFile(file, position - written));
  }
}

// Ends the writing to a file without pings. The CR goes over the first byte, which takes no room on the disk.
void EndWithOneByte(AppState& state, RecordChannel channel, Handle file) {
  wchar_t path[kPathSize];
  uint32_t written = 0;
  const bool left = SeekFile(file, 0) && WriteFileBytes(file, "\r", 1, written) && TruncateFile(file, 1);
  const bool remove = !left && PathOfFile(file, path);
  EndWriting(state, channel, file, true);
  if (remove) static_cast<void>(RemoveFile(path));  // an undeletable file stays as it is
}

}  // namespace

void PutRecordFile(AppState& state, RecordChannel channel, Handle file) {
  CloseRecordFile(state, channel);
  Locked held(state.recordLock);
  SlotOf(state, channel).file = file;
}

void CloseRecordFile(AppState& state, RecordChannel channel) {
  Handle file = Handle::invalid;
  {
    Locked held(state.recordLock);
    const Slot slot = SlotOf(state, channel);
    file = std::exchange(slot.file, Handle::invalid);
    if (file == slot.busy) return;
  }
  if (IsOpen(file)) CloseFile(file);
}

void CloseBothRecordFiles(AppState& state) {
  CloseRecordFile(state, RecordChannel::a);
  CloseRecordFile(state, RecordChannel::b);
}

bool IsRecordFileOpen(AppState& state, RecordChannel channel) {
  Locked held(state.recordLock);
  return IsOpen(SlotOf(state, channel).file);
}

uint32_t WriteRecord(AppState& state, RecordChannel channel, std::span<const char> ping, GiveUp giveUp) {
  const Handle file = BeginWriting(state, channel);
  if (file == Handle::invalid) return 0;
  uint32_t written = 0;
  const bool whole = WriteFileBytes(file, ping.data(), static_cast<uint32_t>(ping.size()), written);
  if (!whole) CutBack(file, written);
  if (!whole && giveUp == GiveUp::leaveOneByte) {
    EndWithOneByte(state, channel, file);
  } else {
    EndWriting(state, channel, file, !whole);
  }
  return whole ? written : 0;
}

void DeleteEmptyRecordFile(AppState& state, RecordChannel channel) {
  const Handle file = BeginWriting(state, channel);
  if (file == Handle::invalid) return;
  wchar_t path[kPathSize];
  uint32_t written = 0;
  const bool named = WriteFileBytes(file, "\r", 1, written) && PathOfFile(file, path);
  EndWriting(state, channel, file, true);
  if (named) static_cast<void>(RemoveFile(path));  // an undeletable file stays, with its settings line
}

void DeleteEmptyRecordFiles(AppState& state) {
  DeleteEmptyRecordFile(state, RecordChannel::a);
  DeleteEmptyRecordFile(state, RecordChannel::b);
}

void LeaveOneByte(AppState& state, RecordChannel channel) {
  const Handle file = BeginWriting(state, channel);
  if (file != Handle::invalid) EndWithOneByte(state, channel, file);
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

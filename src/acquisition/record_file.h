// The record files of a run, shared by the GUI thread, which opens and closes them, the acquisition worker,
// which records, and the writer thread (acquisition/record_writer.h), which owns them from the moment they
// are put here. Nobody else waits for a disk: recording and closing only hand over, in order. The fields of
// the state record say which files still take pings; they and the writer are guarded by recordLock.
#pragma once

#include <cstdint>
#include <span>

#include "acquisition/record_queue.h"
#include "app/state/app_state.h"
#include "app/state/record_channel.h"

namespace tw {

// How long the end of a run, or of the program, waits for the disk.
inline constexpr uint32_t kWritingLimit_ms = 3'000;

// Hands an open file over; a file that stood in the field is closed. Without memory for the writer the file
// is closed at once, as one that cannot be created. GUI thread.
void PutRecordFile(AppState& state, RecordChannel channel, Handle file);

// Marks the channel's file invalid, and has it closed behind its last ping. GUI thread.
void CloseRecordFile(AppState& state, RecordChannel channel);

// Has the log of events told of the channel's file, as it is in front of the process's end. GUI thread.
void TellRecordFile(AppState& state, RecordChannel channel);

// Both files.
void CloseBothRecordFiles(AppState& state);

[[nodiscard]] bool IsRecordFileOpen(AppState& state, RecordChannel channel);

// A recording goes on in another file: offers one for the channel, open and with its settings line. The
// worker changes over to the offered files of both channels at once, ahead of a ping. GUI thread.
void OfferRecordFile(AppState& state, RecordChannel channel, Handle file);

// The file that the worker has not come to take, no longer offered; Handle::invalid: none. GUI thread.
[[nodiscard]] Handle TakeBackRecordFile(AppState& state, RecordChannel channel);

// Changes over to the files that are offered, if any. Acquisition worker only, where a ping begins.
void ChangeRecordFiles(AppState& state, uint32_t runNumber);

// What a worker says about a ping besides its bytes.
struct PingToRecord {
  RecordChannel channel;
  uint32_t runNumber;      // of the worker
  uint32_t recording = 0;  // recordingNumber, as the worker knows it
  EmptyRun emptyRun = EmptyRun::deleteFiles;
  bool any = false;   // the worker has handed a ping over before this one
  bool tell = false;  // the size of the recording is told in the status bar when the ping is written
};

enum class Recorded : uint8_t { handedOver, noFile, noRoom };

// Hands over one whole ping, which is written in one write. When the disk takes less than all of it the file
// is cut back to the last whole ping, or to what its form leaves of a recording without a ping, and closed,
// silently. `noRoom`: the disk has not kept pace for long; the ping is not recorded, which is counted and
// told. A worker whose run number is stale hands nothing over (noFile). Acquisition worker only.
[[nodiscard]] Recorded RecordPing(AppState& state, const PingToRecord& what, std::span<const char> ping);

// The bytes of a recording that stand in its files.
[[nodiscard]] uint64_t RecordedBytes(AppState& state, uint32_t recording);

// The end of a worker: both files are closed behind its last ping, or left as its form leaves those of a
// worker that recorded nothing. `any`: it has handed a ping over. A stale worker ends nothing. Acquisition
// worker only.
void EndRecording(AppState& state, uint32_t runNumber, EmptyRun emptyRun, bool any);

// Closes and deletes both files, of a run that never began, and waits for that, kWritingLimit_ms at most.
// GUI thread, when there is no worker.
void DeleteEmptyRecordFiles(AppState& state);

// Waits until all that was handed over stands in the files, so long at most. False when something is left,
// which is written later. GUI thread.
[[nodiscard]] bool AwaitRecords(AppState& state, uint32_t limit_ms);

// The same until kWritingLimit_ms after `began_ms` of the millisecond clock; what is left then is told.
void FinishRecords(AppState& state, uint32_t began_ms);

// Of a test's program, at its end: waits until the writer thread has ended, which it does when the files are
// closed, and gives its memory back.
void FreeRecordWriter(AppState& state);

inline constexpr size_t kSizeTextSize = 64;

// "File size: %llu%s": Bytes to 1,024, KB to 10,485,760, then MB; integer division. Pure.
void FormatFileSize(std::span<wchar_t> text, uint64_t size_bytes);

}  // namespace tw

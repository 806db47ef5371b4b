// The record files of a run, shared by the GUI thread, which opens and closes them, and the acquisition
// worker, which writes. Nobody waits for a disk and no handle is used after it was closed: the worker says
// which file it is writing to (the busy field); who closes a file takes it out of the state record and leaves
// the closing to the worker when that file is busy. The fields are those of the state record, under
// recordLock.
#pragma once

#include <cstdint>
#include <span>

#include "app/state/app_state.h"
#include "app/state/record_channel.h"

namespace tw {

// Puts an open file into the field; a file that stood there is closed. GUI thread.
void PutRecordFile(AppState& state, RecordChannel channel, Handle file);

// Closes the channel's file and marks it invalid. Any thread.
void CloseRecordFile(AppState& state, RecordChannel channel);

// Both files.
void CloseBothRecordFiles(AppState& state);

[[nodiscard]] bool IsRecordFileOpen(AppState& state, RecordChannel channel);

// What stays of a file that the disk refuses to go on with: its whole pings, or what LeaveOneByte leaves.
enum class GiveUp : uint8_t { leavePings, leaveOneByte };

// Writes one whole ping in one write and returns the bytes recorded: all of them, or 0. When there is no open
// file nothing happens. When the disk takes less than all, the file is cut back to the last whole ping and
// closed, silently. Acquisition worker only.
[[nodiscard]] uint32_t WriteRecord(AppState& state, RecordChannel channel, std::span<const char> ping,
                                   GiveUp giveUp = GiveUp::leavePings);

// The end of a run that recorded nothing: writes one CR into the open file (a file of length 0 has no name
// to be found), looks up its name, closes and deletes it. Acquisition worker, or the GUI thread when there is
// none.
void DeleteEmptyRecordFile(AppState& state, RecordChannel channel);

// Both files.
void DeleteEmptyRecordFiles(AppState& state);

// kept: the same of a binary recording, whose file stays, cut down to that one CR, and is closed. Where the
// disk refuses even this the file is deleted. Acquisition worker only.
void LeaveOneByte(AppState& state, RecordChannel channel);

inline constexpr size_t kSizeTextSize = 64;

// "File size: %llu%s": Bytes to 1,024, KB to 10,485,760, then MB; integer division. Pure.
void FormatFileSize(std::span<wchar_t> text, uint64_t size_bytes);

}  // namespace tw

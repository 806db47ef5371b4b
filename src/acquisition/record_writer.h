// The thread that owns the open record files, so that nobody else waits for the disk: who records hands over
// whole pings and what becomes of the files, in order, and goes on. The thread lives from the first ping or
// closing until every file is closed and nothing is left to write. It tells the log of events of each file
// that it closes, with pings and bytes, and of pings that were lost in front of it.
//
// Everything here but Make and Free is called under the state record's recordLock.
#pragma once

#include <cstdint>
#include <span>

#include "acquisition/disk_record.h"
#include "acquisition/record_queue.h"
#include "app/state/app_state.h"

namespace tw {

// Bytes that stand in the files of a recording, as far as one worker has written them.
struct RecordTally {
  uint32_t recording = 0;
  uint64_t size_bytes = 0;
  uint32_t pings = 0;
  bool any = false;  // the worker has recorded, in this recording or an earlier one
};

class RecordWriter {
 public:
  // Null without memory or events for it. GUI thread.
  [[nodiscard]] static RecordWriter* Make(AppState& state);

  // Waits for the thread's end, which comes when the files are closed. Null is ignored.
  static void Free(RecordWriter* writer);

  // Queues. False without room.
  [[nodiscard]] bool Put(const RecordEntry& entry, std::span<const char> ping = {});

  // Queues that the channel's file is closed and goes on as another one. False without room.
  [[nodiscard]] bool PutChange(RecordChannel channel, Handle file);

  [[nodiscard]] const RecordTally& Tally() const { return tally_; }

  // Waiting, and being written.
  [[nodiscard]] size_t BytesLeft() const { return queue_.Bytes() + taken_bytes_; }

  // Sees to it that the thread runs when there is something to do. Where the system has no thread to give it
  // is asked again at the next call.
  void Begin();

  // Signalled while nothing waits and nothing is being written. Waited for without the lock.
  [[nodiscard]] Event& Idle() { return idle_; }

  // For the operator, in the state record: a ping found no room (counted since files were opened for a new
  // recording); somebody stopped waiting for what is left, which is taken back when it has been written.
  void NoteLost();
  void NoteLeft();
  void NoteNewRecording();

 private:
  explicit RecordWriter(AppState& state) : state_(state) {}
  static void Thread(void* writer);

  // Writer thread, without the lock.
  void Run();
  [[nodiscard]] bool Next(bool& ended);
  void NoteProgress();
  void Rest();
  void Do();
  void WritePing();
  void TakeIntoAccount(bool whole);
  void EndFile();
  // Nothing happens to a file that is not open.
  void Close(DiskRecord& file);
  void CloseWithOneByte(DiskRecord& file);
  void Remove(DiskRecord& file);
  void LogLostWhenDue();
  void FlushWhenDue();
  [[nodiscard]] uint32_t FlushPeriod_ms() const;
  [[nodiscard]] DiskRecord& FileOf(RecordChannel channel) {
    return files_[channel == RecordChannel::a ? 0 : 1];
  }

  AppState& state_;
  Event work_{};
  Event idle_{};

  RecordTally tally_;
  bool runs_ = false;
  bool leftIsTold_ = false;
  uint32_t lostUnlogged_ = 0;
  size_t taken_bytes_ = 0;
  Handle thread_ = Handle::null;  // of the thread that was started last
  RecordQueue queue_;

  // Writer thread.
  DiskRecord files_[2];
  bool dirty_ = false;
  uint32_t dirtySince_ms_ = 0;
  RecordEntry entry_{};
  char ping_[kMaxRecordSize];
};

}  // namespace tw

#include "acquisition/record_writer.h"

#include <new>
#include <utility>

#include "acquisition/record_file.h"
#include "acquisition/record_log.h"
#include "app/state/posts.h"
#include "base/shared_value.h"
#include "platform/clock.h"
#include "platform/memory.h"
#include "platform/thread.h"

namespace tw {
namespace {

// For whichever writer: there is one in a process.
constinit StatusTexts sizeTexts{};

}  // namespace

RecordWriter* RecordWriter::Make(AppState& state) {
  void* const block = AllocateZeroed(sizeof(RecordWriter));
  if (block == nullptr) return nullptr;
  auto* const writer = new (block) RecordWriter(state);
  if (MakeEvent(writer->work_, ResetMode::automatic) && MakeEvent(writer->idle_, ResetMode::manual)) {
    Signal(writer->idle_);
    return writer;
  }
  Free(writer);
  return nullptr;
}

void RecordWriter::Free(RecordWriter* writer) {
  if (writer == nullptr) return;
  if (writer->thread_ != Handle::null) {
    static_cast<void>(WaitForThread(writer->thread_, kWaitForever));
    CloseThread(writer->thread_);
  }
  DestroyEvent(writer->work_);
  DestroyEvent(writer->idle_);
  FreeZeroed(writer, sizeof(RecordWriter));
}

bool RecordWriter::Put(const RecordEntry& entry, std::span<const char> ping) {
  if (!queue_.Put(entry, ping)) return false;
  Reset(idle_);
  // A run that comes to nothing needs no thread.
  if (entry.step != RecordStep::open) Begin();
  return true;
}

bool RecordWriter::PutChange(RecordChannel channel, Handle file) {
  return Put({.step = RecordStep::change, .channel = channel, .file = file});
}

void RecordWriter::Begin() {
  if (runs_) return Signal(work_);
  if (queue_.IsEmpty()) return;
  CloseThread(thread_);
  thread_ = StartThread(Thread, this);
  runs_ = thread_ != Handle::null;
}

void RecordWriter::NoteLost() {
  ++lostUnlogged_;
  StoreShared(state_.pingsLost, LoadShared(state_.pingsLost) + 1);
}

void RecordWriter::NoteLeft() {
  leftIsTold_ = true;
  NoteProgress();
}

void RecordWriter::NoteNewRecording() {
  StoreShared(state_.pingsLost, 0);
}

void RecordWriter::NoteProgress() {
  if (!leftIsTold_) return;
  StoreShared(state_.leftToWrite_bytes, uint64_t{BytesLeft()});
  leftIsTold_ = BytesLeft() != 0;
}

void RecordWriter::Thread(void* writer) {
  static_cast<RecordWriter*>(writer)->Run();
}

void RecordWriter::Run() {
  for (;;) {
    FlushWhenDue();
    LogLostWhenDue();
    bool ended = false;
    if (Next(ended)) {
      Do();
    } else if (ended) {
      return;
    } else {
      Rest();
    }
  }
}

// Takes the next entry. False when there is none; `ended`: nor will there be one for this thread.
bool RecordWriter::Next(bool& ended) {
  Locked held(state_.recordLock);
  const bool taken = queue_.Take(entry_, ping_);
  taken_bytes_ = taken ? entry_.size_bytes : 0;
  NoteProgress();
  if (taken) return true;
  ended = !files_[0].IsOpen() && !files_[1].IsOpen();
  if (ended) runs_ = false;
  Signal(idle_);
  return false;
}

// Until there is something to do.
void RecordWriter::Rest() {
  const uint32_t period_ms = FlushPeriod_ms();
  if (!dirty_ || period_ms == 0) {
    static_cast<void>(WaitForEvent(work_, kWaitForever));
    return;
  }
  const uint32_t passed_ms = MillisecondClock() - dirtySince_ms_;
  if (passed_ms < period_ms) static_cast<void>(WaitForEvent(work_, period_ms - passed_ms));
}

void RecordWriter::Do() {
  DiskRecord& file = FileOf(entry_.channel);
  switch (entry_.step) {
    case RecordStep::open:
      return file.Open(entry_.file);
    case RecordStep::change:
      Close(file);
      return file.Open(entry_.file);
    case RecordStep::ping:
      return WritePing();
    case RecordStep::close:
      return Close(file);
    case RecordStep::end:
      return EndFile();
    case RecordStep::remove:
      return Remove(file);
    case RecordStep::tell:
      return RecordNote(state_, file).TellClosed();
  }
}

void RecordWriter::WritePing() {
  DiskRecord& file = FileOf(entry_.channel);
  const bool whole = file.IsOpen() && file.Write({ping_, entry_.size_bytes});
  if (whole && !dirty_) {
    dirty_ = true;
    dirtySince_ms_ = MillisecondClock();
  }
  TakeIntoAccount(whole);
  if (whole || !file.IsOpen()) return;
  LogRefusal(state_, file);
  if (entry_.emptyRun == EmptyRun::leaveOneByte && tally_.size_bytes == 0) return CloseWithOneByte(file);
  Close(file);
}

// Counts the ping, tells the size of a recording that still goes on, and takes a file that failed out of the
// state record before it is closed.
void RecordWriter::TakeIntoAccount(bool whole) {
  Locked held(state_.recordLock);
  if (!entry_.any) tally_ = {};
  if (tally_.recording != entry_.recording) tally_.size_bytes = tally_.pings = 0;
  tally_.recording = entry_.recording;
  if (whole) tally_.size_bytes += entry_.size_bytes;
  if (whole) ++tally_.pings;
  if (LoadShared(state_.recordingNumber) == tally_.recording) {
    StoreShared(state_.recordedPings, tally_.pings);
    StoreShared(state_.recordedBytes, tally_.size_bytes);
  }
  tally_.any = tally_.any || whole;
  Handle& field = ChannelOf(state_, entry_.channel).recordFile;
  const Handle file = FileOf(entry_.channel).Get();
  if (file == Handle::invalid || field != file) return;
  if (!whole) {
    field = Handle::invalid;
    const RecordFault fault =
        FileOf(entry_.channel).IsDiskFull() ? RecordFault::diskFull : RecordFault::diskRefuses;
    StoreShared(state_.recordFault, static_cast<int32_t>(fault));
  }
  if (!entry_.tell) return;
  auto& text = sizeTexts.Next();
  FormatFileSize(text, tally_.size_bytes);
  PostStatusText(state_, StatusPart::pingLine, text);
}

// What a worker leaves depends on what has become of its pings.
void RecordWriter::EndFile() {
  DiskRecord& file = FileOf(entry_.channel);
  const bool any = entry_.any && tally_.any;
  const bool present = any && tally_.recording == entry_.recording && tally_.size_bytes != 0;
  if (entry_.emptyRun == EmptyRun::deleteFiles && !any) return Remove(file);
  if (entry_.emptyRun == EmptyRun::leaveOneByte && !present) return CloseWithOneByte(file);
  Close(file);
}

void RecordWriter::Close(DiskRecord& file) {
  if (!file.IsOpen()) return;
  if (FlushPeriod_ms() != 0) file.Flush();
  const RecordNote note(state_, file);
  file.Close();
  note.TellClosed();
}

void RecordWriter::CloseWithOneByte(DiskRecord& file) {
  if (!file.IsOpen()) return;
  const RecordNote note(state_, file);
  if (file.CloseWithOneByte()) return note.TellOneByte();
  note.TellRemoved();
}

void RecordWriter::Remove(DiskRecord& file) {
  if (!file.IsOpen()) return;
  const RecordNote note(state_, file);
  file.Remove();
  note.TellRemoved();
}

// Seldom, however many there are: once the disk has caught up, or a file has come to its end.
void RecordWriter::LogLostWhenDue() {
  uint32_t lost = 0;
  {
    Locked held(state_.recordLock);
    const bool due = queue_.IsEmpty() || entry_.step != RecordStep::ping;
    if (due) lost = std::exchange(lostUnlogged_, 0);
  }
  if (lost != 0) LogLostPings(state_, lost);
}

void RecordWriter::FlushWhenDue() {
  const uint32_t period_ms = FlushPeriod_ms();
  if (!dirty_ || period_ms == 0 || MillisecondClock() - dirtySince_ms_ < period_ms) return;
  dirty_ = false;
  for (DiskRecord& file : files_) file.Flush();
}

uint32_t RecordWriter::FlushPeriod_ms() const {
  return LoadShared(state_.recordFlushPeriod_ms);
}

}  // namespace tw

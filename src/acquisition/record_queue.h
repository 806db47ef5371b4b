// What waits for the disk: whole pings, and between them what becomes of the record files, first in, first
// out. A block of memory that is written round and round; its pages become resident when they are used, so
// that a disk that keeps pace costs next to nothing. Holds no lock: its owner does.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "acquisition/stream_form.h"
#include "app/state/record_channel.h"
#include "platform/handle.h"

namespace tw {

// What the writer does with the file of a channel.
enum class RecordStep : uint8_t {
  open,    // from now on it is `file`
  change,  // is closed, and from now on it is `file`
  ping,    // takes the bytes behind the entry
  close,   // is closed
  end,     // the same at the end of a worker, which may have recorded nothing
  remove,  // closed and deleted: nothing was recorded
  tell     // stays, and the log of events is told of it as if it were closed
};

struct RecordEntry {
  RecordStep step;
  RecordChannel channel;
  EmptyRun emptyRun = EmptyRun::deleteFiles;  // of ping and end
  bool any = false;                           // end: the worker has queued a ping; ping: not its first one
  bool tell = false;                          // ping: the size of the recording is told behind it
  uint32_t recording = 0;                     // of ping and end: the recording's number
  uint32_t size_bytes = 0;                    // of the ping behind the entry
  Handle file = Handle::invalid;              // of open and change
};

// Of pings. What else is queued finds room behind it.
inline constexpr size_t kRecordQueueBound = size_t{16} << 20;

class RecordQueue {
 public:
  // Puts the entry and, of a ping, its bytes; size_bytes is set here. False without room for all of it: then
  // nothing is put.
  [[nodiscard]] bool Put(RecordEntry entry, std::span<const char> ping = {});

  // Takes the oldest entry with its bytes. False when the queue is empty: then nothing is touched.
  [[nodiscard]] bool Take(RecordEntry& entry, std::span<char, kMaxRecordSize> ping);

  [[nodiscard]] bool IsEmpty() const { return used_ == 0; }

  // Of all that is queued.
  [[nodiscard]] size_t Bytes() const { return used_; }

 private:
  static constexpr size_t kCapacity = kRecordQueueBound + (size_t{64} << 10);

  void CopyIn(const void* from, size_t size);
  void CopyOut(void* to, size_t size);

  size_t begin_ = 0;
  size_t used_ = 0;
  char bytes_[kCapacity];
};

}  // namespace tw

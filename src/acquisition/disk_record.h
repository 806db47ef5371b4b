// The open record file of one channel, as the writer thread has it: pings stand in it whole or not at all.
// The given silence: what the disk refuses is told to nobody here. Writer thread only.
#pragma once

#include <cstdint>
#include <span>

#include "platform/handle.h"

namespace tw {

class DiskRecord {
 public:
  // A file that stood there has been closed.
  void Open(Handle file) {
    file_ = file;
    pings_ = 0;
  }

  [[nodiscard]] bool IsOpen() const { return file_ != Handle::invalid; }
  [[nodiscard]] Handle Get() const { return file_; }

  // Writes a ping in one write. When the disk takes less than all, the file is cut back to the last whole
  // ping, and the result is false.
  [[nodiscard]] bool Write(std::span<const char> ping);

  // After a Write that failed: for want of room. A disk that takes a part is full, whatever it is called.
  [[nodiscard]] bool IsDiskFull() const { return full_; }

  // That stand in it.
  [[nodiscard]] uint32_t Pings() const { return pings_; }

  // Flushes to the disk what was written since the last time.
  void Flush();

  // Ends the file. Of all that ends one this alone may be called when none is open.
  void Close();

  // kept: of a binary recording without a ping the file stays, cut down to one CR. Where the disk refuses
  // even this it is deleted, and the result is false.
  [[nodiscard]] bool CloseWithOneByte();

  // Of any other recording without a ping nothing stays: writes one CR (a file of length 0 has no name to be
  // found), looks up the name, closes and deletes.
  void Remove();

 private:
  void CloseAndDelete(bool remove);

  Handle file_ = Handle::invalid;
  uint32_t pings_ = 0;
  bool dirty_ = false;
  bool full_ = false;
};

}  // namespace tw

// What the log of events (app/state/event_log.h) hears of record files from the writer thread. While it is
// off nothing happens, and no file is asked for its name.
#pragma once

#include <cstdint>

#include "acquisition/disk_record.h"
#include "app/state/app_state.h"

namespace tw {

// Of a file: made while it is open, told when it is closed.
class RecordNote {
 public:
  RecordNote(AppState& state, const DiskRecord& file);

  void TellClosed() const;   // "20260314_093005_Dual_450kHz_id_E3105_txt12.log, 12 pings, 18205 bytes"
  void TellOneByte() const;  // the same of a file that was cut down to a byte
  void TellRemoved() const;

 private:
  AppState& state_;
  char name_[256];
  uint32_t pings_ = 0;
  uint64_t size_bytes_ = 0;
};

// Pings that found no room while the disk stood still.
void LogLostPings(AppState& state, uint32_t pings);

// The disk has ended the file.
void LogRefusal(AppState& state, const DiskRecord& file);

}  // namespace tw

// What the lamps of the main window tell: how the recording goes, whether pings come, what the receiver
// says, how long the disk lasts. Pure; any thread.
#pragma once

#include <cstdint>
#include <span>

#include "app/state/app_state.h"
#include "gps/receiver_watch.h"

namespace tw {

enum class LampColour : uint8_t {
  grey,   // nothing goes on
  green,  // all is well
  red,    // red letters
  alarm,  // white letters on red
};

struct LampFace {
  LampColour colour;
  wchar_t text[64];
  wchar_t second[32];  // a second line, in red letters
  wchar_t tip[512];    // shown while the mouse rests on it; lines end in LF
};

struct RecordingFacts {
  bool wanted;        // a live run goes on and is to be recorded
  bool open;          // into a file that is open
  RecordFault fault;  // if it is not
  uint64_t recorded_ms;
  uint32_t noData_s;  // 0: pings come
  uint32_t pings;     // in the files that were opened last
  uint64_t bytes;
  uint64_t free_bytes;  // of the working folder, or kUnknownSpace
  const char* files;    // their names
  uint32_t now_ms;      // the millisecond clock, by which the lamp flashes
};

// "REC 00:12:31" in red, "not recording" in grey, or, flashing, "NOT RECORDING: disk full"; below it
// "NO DATA 12 s" where the run has fallen silent.
[[nodiscard]] LampFace LampOf(const RecordingFacts& facts);

struct ReceiverFacts {
  bool chosen;  // for the run that goes on
  bool open;    // its port is; else it has failed
  ReceiverState state;
  uint32_t silent_s;  // since its last byte
  int32_t baud;
  bool hasFix;
  uint32_t fixAge_s;
  int32_t quality;  // of its GGA
  int32_t satellites;
  double hdop;
};

// "DGPS 8/0.9 1s" (quality, satellites in use, HDOP, age of the fix), "none 3 sat", "silent 12 s",
// "no sentences" or "port failed"; empty without a receiver. The tip says it in words.
[[nodiscard]] LampFace LampOf(const ReceiverFacts& facts);

// "silent 12 s", "no sentences at 4800 bps" or "port failed". False, and `text` is empty, while the receiver
// tells something or there is none.
[[nodiscard]] bool FormatReceiverTrouble(std::span<wchar_t> text, const ReceiverFacts& facts);

struct DiskFacts {
  uint32_t pingsLost;   // in front of a disk that is too slow
  uint64_t left_bytes;  // still to be written although the run is over
  bool wanted;          // a run goes on and is to be recorded
  RecordFault fault;
  uint64_t rate_Bps;    // bytes recorded a second; 0: not known yet
  uint64_t free_bytes;  // or kUnknownSpace
};

// What the last part of the status bar tells, the worst first: "Pings not recorded, the disk is too slow :
// 7"; "Still to be written : 12 KB"; why there is no recording, "Ended: disk full", "folder missing"; how
// long the disk takes the recording on, "Disk: 23 h", below ten hours "Disk: 1.5 h", below one "Disk: 20
// min", and nothing above 24. True when that is an alarm: pings are lost, nothing is recorded, or less than
// two hours are left.
[[nodiscard]] bool FormatDiskState(std::span<wchar_t> text, const DiskFacts& facts);

}  // namespace tw

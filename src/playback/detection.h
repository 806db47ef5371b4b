// What kind of recording a file is, told by its first bytes.
//
// Recordings of this program begin with one INFO line (two when both channels of a dual device stand in the
// file), whose device kind and output mode decide. Older ones have none; they are told by what they are known
// to hold, looked for in a fixed order. The first thing found is what the start check goes by; which of the
// others the file is after all turns out when it is read.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "acquisition/stream_form.h"
#include "device/info_line.h"
#include "platform/handle.h"

namespace tw {

inline constexpr size_t kStartSize = 2'048;

// One way of reading a file.
struct Detected {
  const StreamForm* form;
  DeviceFamily family;
  int32_t outputMode;  // 100 and 101 are told as 102
  int32_t channels;    // in this file: 1 or 2
  std::optional<InfoLine> info;
  std::optional<InfoLine> low;  // of a file of both channels: its second line
  size_t infoSize;              // bytes up to and with the last INFO line
  bool byInfo;                  // the INFO line says so; else echo text itself tells keys and mode
};

// The ways to try, in this order, until one finds a ping; each form once.
struct Candidates {
  std::array<Detected, 16> ways;
  size_t count;
};

// Judges the first bytes of a file, up to kStartSize of them. Nothing: no kind that is known. Pure.
[[nodiscard]] std::optional<Detected> DetectRecording(std::span<const uint8_t> start);

// The same with all that it can be: what the INFO line says, every binary form where that says one of them,
// then what each mark stands for; of echo text the form of either side's keys. None: no kind that is known.
[[nodiscard]] Candidates CandidatesOf(std::span<const uint8_t> start);

// Reads the first bytes of a file: looks again up to `retries` times, 50 ms apart, as long as they tell
// nothing. The file's position is its start afterwards. Returns how many bytes there are; 0 as well when the
// file cannot be read.
[[nodiscard]] size_t ReadStart(Handle file, std::span<uint8_t, kStartSize> start, int retries);
inline constexpr int kGrowingRetries = 5;  // for a file that may still be written

// Both at once: what an open file can be.
[[nodiscard]] Candidates CandidatesOf(Handle file, int retries);

}  // namespace tw

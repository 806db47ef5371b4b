// What kind of recording a file is, told by its first bytes.
//
// Recordings of this program begin with one INFO line (two when both channels of a dual device stand in the
// file), whose device kind and output mode decide. Older ones have none; they are told by what they are known
// to hold, looked for in a fixed order.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "device/info_line.h"
#include "platform/handle.h"

namespace tw {

inline constexpr size_t kStartSize = 2'048;

// The forms that a stream of pings can have.
enum class StreamForm : uint8_t {
  firstText,   // echo text blocks of the first family
  secondText,  // of the others
  frames,      // "TR57"
  dualFrames,  // "DUAL"
  deviceBlocks,
  firstNmea,
  secondNmea,
  simple,
  deso,
  dual,
  dfx,
  old,
  psa916,
  altiTemp,
};

struct Detected {
  StreamForm form;
  int32_t family;      // 1, 2 or 0
  int32_t outputMode;  // 100 and 101 are told as 102
  int32_t channels;    // in this file: 1 or 2
  std::optional<InfoLine> info;
  std::optional<InfoLine> low;  // of a file of both channels: its second line
  size_t infoSize;              // bytes up to and with the last INFO line
};

// Whether the pings have samples, and whether they are frames instead of text.
[[nodiscard]] bool CarriesEchoes(const Detected& recording);
[[nodiscard]] bool IsBinary(const Detected& recording);

// Judges the first bytes of a file, up to kStartSize of them. Nothing: no kind that is known. Pure.
[[nodiscard]] std::optional<Detected> DetectRecording(std::span<const uint8_t> start);

// The form of the stream that a family sends in an output mode; a mode that the family does not have counts
// as 3. Pure.
[[nodiscard]] StreamForm FormOfMode(int32_t family, int32_t outputMode);

// Reads the first bytes of a file, which may still be growing: looks again up to five times, 50 ms apart, as
// long as they tell nothing. The file's position is its start afterwards. Returns how many bytes there are; 0
// as well when the file cannot be read.
[[nodiscard]] size_t ReadStart(Handle file, std::span<uint8_t, kStartSize> start);

}  // namespace tw

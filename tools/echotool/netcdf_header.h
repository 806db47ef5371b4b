// What stands in a NetCDF file of a channel: its variables with their attributes, and the value of each for a
// ping. Pure; any thread.
#pragma once

#include <cstdint>

#include "tools/echotool/netcdf_output.h"

namespace tw::echotool {

// Shorts while all samples are below the largest one.
[[nodiscard]] CdfType NetcdfSampleType(const ChannelSurvey& survey);

// Whether the samples of all pings lie equally far from the transducer, and how far is known.
[[nodiscard]] bool NetcdfHasRange(const ChannelSurvey& survey, float soundSpeed_mps);

[[nodiscard]] CdfContents NetcdfContents(const NetcdfTold& told);

struct ChannelPing {
  const RecordedPing& ping;
  std::optional<int64_t> time_ms;
  int32_t channel;
  float soundSpeed_mps;
  double lowFrequency_hz;  // of the line that tells both channels
};

inline constexpr size_t kNetcdfValuesSize = 128;

// Stores the ping's values, all but its echo, as they stand in its record. Returns their size.
[[nodiscard]] size_t StoreNetcdfValues(const ChannelPing& ping, uint8_t* out);

}  // namespace tw::echotool

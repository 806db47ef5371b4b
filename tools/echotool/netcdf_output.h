// A channel of a recording as NetCDF, classic format with 64-bit offsets (cdf.h), after the CF conventions
// 1.10: record dimension `ping`, one value of each kind a ping, its echo as a row of `echo(ping, sample)`.
// What a ping does not have is the fill value, as is what lies behind the end of its trace. In constant
// memory: the file's layout is known from a first pass. Pure but for the output; one thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "tools/echotool/cdf.h"
#include "tools/echotool/track_output.h"

namespace tw::echotool {

// What the first pass has to find out of a channel.
struct ChannelSurvey {
  uint64_t pings = 0;
  uint32_t longest = 0;      // samples
  bool large = false;        // a sample of 32,767 or more
  uint32_t sampling_hz = 0;  // of the first ping
  bool sameSampling = true;  // of all

  void Add(const RecordedPing& ping);
};

// Whether a ping has something of a channel, 0 or 1: there are lines that tell both.
[[nodiscard]] bool Concerns(const RecordedPing& ping, int32_t channel);

struct RecordingSurvey {
  ChannelSurvey channels[2];
  bool samplingAssumed = false;
  std::optional<int64_t> first_ms;  // the earliest time of a ping and the latest
  std::optional<int64_t> last_ms;
  std::string sha256;  // of the file; NetCDF alone

  void Add(const RecordedPing& ping);
};

struct NetcdfTold {
  const PingSource& recording;
  const RecordingSurvey& survey;
  std::string name;  // of the file, as text
  int32_t channel;   // 0 or 1
};

class NetcdfWriter final : public PingWriter {
 public:
  NetcdfWriter(OutputFile& output, const NetcdfTold& told);

  // Ahead of Begin. False, and `error` says why, when the channel is more than the format can tell.
  [[nodiscard]] bool Prepare(std::string& error);

  // Of the whole file, once prepared.
  [[nodiscard]] uint64_t Size() const;

  [[nodiscard]] bool Begin() override;
  [[nodiscard]] bool Append(const RecordedPing& ping) override;
  [[nodiscard]] bool End() override { return output_.Flush(); }
  [[nodiscard]] std::string Emptiness() const override;

 private:
  [[nodiscard]] bool AppendRange();
  [[nodiscard]] bool AppendSamples(std::span<const uint16_t> samples);
  [[nodiscard]] bool AppendFill(size_t samples);

  OutputFile& output_;
  const int32_t channel_;
  const ChannelSurvey survey_;
  const float soundSpeed_mps_;
  const double lowFrequency_hz_;
  const CdfType sampleType_;
  const bool hasRange_;
  CdfContents contents_;
  CdfLayout layout_;
  uint64_t pings_ = 0;
  bool changed_ = false;
};

}  // namespace tw::echotool

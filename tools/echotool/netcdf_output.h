// A channel of a recording as NetCDF, classic format with 64-bit offsets (cdf.h), after the CF conventions
// 1.10: record dimension `ping`, one value of each kind a ping, its echo as a row of `echo(ping, sample)`.
// What a ping does not have is the fill value, as is what lies behind the end of its trace. In constant
// memory: the file's layout is that of the recording's first pings, and the file is written anew where a
// later one does not fit in. One thread.
#pragma once

#include <atomic>
#include <cstdint>
#include <optional>
#include <string>

#include "platform/handle.h"
#include "tools/echotool/cdf.h"
#include "tools/echotool/ping_clock.h"
#include "tools/echotool/track_output.h"

namespace tw::echotool {

// What the layout of a channel's file depends on.
struct ChannelSurvey {
  uint64_t pings = 0;
  uint32_t longest = 0;      // samples
  bool large = false;        // a sample of 32,767 or more
  uint32_t sampling_hz = 0;  // of the first ping
  bool sameSampling = true;  // of all

  void Add(const RecordedPing& ping);
  // Whether pings of the other one fit into the layout of this one.
  [[nodiscard]] bool Holds(const ChannelSurvey& other) const;
};

// Whether a ping has something of a channel, 0 or 1: there are lines that tell both.
[[nodiscard]] bool Concerns(const RecordedPing& ping, int32_t channel);

struct RecordingSurvey {
  ChannelSurvey channels[2];
  bool samplingAssumed = false;
  std::optional<int64_t> first_ms;  // the earliest time of a ping and the latest
  std::optional<int64_t> last_ms;
  bool whole = true;   // all pings have been looked at, else the first ones
  std::string sha256;  // of the file; empty: not known yet
  PingClock clock = {};

  void Add(const RecordedPing& ping);
};

struct NetcdfTold {
  const PingSource& recording;
  const RecordingSurvey& survey;
  std::string name;  // of the file, as text
  int32_t channel;   // 0 or 1
};

// Where the recording is read again, and the file that the output writes to.
struct NetcdfFiles {
  std::wstring recording;
  Handle output;
  const std::atomic<bool>& interrupted;
};

class NetcdfWriter final : public PingWriter {
 public:
  NetcdfWriter(OutputFile& output, const NetcdfTold& told, NetcdfFiles files);

  // Ahead of Begin. False, and `error` says why, when the channel is more than the format can tell.
  [[nodiscard]] bool Prepare(std::string& error);

  // Of the whole file, once prepared with what is told of the whole recording.
  [[nodiscard]] uint64_t Size() const;

  [[nodiscard]] bool Begin() override;
  [[nodiscard]] bool Append(const RecordedPing& ping) override;
  [[nodiscard]] bool End() override;
  [[nodiscard]] std::string Emptiness() const override { return fault_; }

 private:
  [[nodiscard]] const ChannelSurvey& Laid() const { return survey_.channels[channel_]; }
  [[nodiscard]] float SoundSpeed_mps() const { return recording_.Kind().soundSpeed_mps; }
  [[nodiscard]] bool Complete();
  [[nodiscard]] bool CompleteHeader();
  [[nodiscard]] bool WriteAnew();
  [[nodiscard]] bool AppendRange();
  [[nodiscard]] bool AppendSamples(std::span<const uint16_t> samples);
  [[nodiscard]] bool AppendFill(size_t samples);

  OutputFile& output_;
  const PingSource& recording_;
  const std::string name_;
  const int32_t channel_;
  const NetcdfFiles files_;
  const double lowFrequency_hz_;
  RecordingSurvey survey_;
  CdfLayout layout_;
  ChannelSurvey found_;  // while it is written
  PingClock clock_;
  bool fits_ = true;
  std::string fault_;
};

}  // namespace tw::echotool

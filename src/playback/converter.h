// Conversions: what becomes of each ping of a recording, on its way into an output file. One thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "acquisition/ping_record.h"
#include "playback/output_file.h"
#include "playback/ping_source.h"
#include "playback/segy_text_header.h"

namespace tw {

class PingConverter {
 public:
  virtual ~PingConverter() = default;

  // All three: false when the output has failed.
  [[nodiscard]] virtual bool Begin() { return true; }  // ahead of the first ping
  // A ping, its samples as they stand in the recording (at most 50,000).
  [[nodiscard]] virtual bool Append(const RecordedPing& ping) = 0;
  [[nodiscard]] virtual bool End() { return true; }  // behind the last one
};

struct SegyOptions {
  uint32_t paddedLength = 0;  // samples of every trace, zeros behind the ping's own; 0: each trace its own
  bool numbered = false;      // inline and crossline numbers in the trace headers
};

// One trace a ping, behind the file's headers. A ping without a sampling frequency gives no trace.
class SegyConverter final : public PingConverter {
 public:
  SegyConverter(OutputFile& output, std::span<const uint8_t, kSegyTextHeaderSize> textHeader,
                float soundSpeed_mps, const SegyOptions& options = {});

  [[nodiscard]] bool Append(const RecordedPing& ping) override;

  [[nodiscard]] uint32_t Traces() const { return traces_; }
  // Those whose ping has more samples than a trace can tell.
  [[nodiscard]] uint32_t CutTraces() const { return cutTraces_; }

 private:
  [[nodiscard]] bool AppendFileHeaders(const PingHeader& ping, uint32_t length);

  OutputFile& output_;
  std::span<const uint8_t, kSegyTextHeaderSize> textHeader_;
  float soundSpeed_mps_;
  SegyOptions options_;
  uint32_t traces_ = 0;
  uint32_t cutTraces_ = 0;
};

// One text block a ping. kept: only a recording on the 100 kHz grid has sample lines, which is found once, at
// the first ping that tells its sampling frequency.
class TextConverter final : public PingConverter {
 public:
  explicit TextConverter(OutputFile& output) : output_(output) {}

  [[nodiscard]] bool Append(const RecordedPing& ping) override;

 private:
  OutputFile& output_;
  size_t repeat_ = 0;
};

}  // namespace tw

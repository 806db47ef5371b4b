// The program's own conversions behind the interface of the other outputs. One thread.
#pragma once

#include "playback/converter.h"
#include "tools/echotool/track_output.h"

namespace tw::echotool {

class SegyWriter final : public PingWriter {
 public:
  SegyWriter(OutputFile& output, float soundSpeed_mps, const SegyOptions& options);
  [[nodiscard]] bool Append(const RecordedPing& ping) override;
  [[nodiscard]] bool End() override { return output_.Flush(); }
  [[nodiscard]] std::string Emptiness() const override;
  [[nodiscard]] std::string Note() const override;

 private:
  OutputFile& output_;
  SegyConverter converter_;
  uint64_t pings_ = 0;
};

class TextWriter final : public PingWriter {
 public:
  explicit TextWriter(OutputFile& output) : output_(output), converter_(output) {}
  [[nodiscard]] bool Append(const RecordedPing& ping) override { return converter_.Append(ping); }
  [[nodiscard]] bool End() override { return output_.Flush(); }

 private:
  OutputFile& output_;
  TextConverter converter_;
};

}  // namespace tw::echotool

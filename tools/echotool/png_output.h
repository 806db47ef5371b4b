// The bare echogram of one channel of a recording as a picture. One thread.
#pragma once

#include "playback/output_file.h"
#include "tools/echotool/echogram_columns.h"
#include "tools/echotool/options.h"
#include "tools/echotool/track_output.h"

namespace tw::echotool {

class PngWriter final : public PingWriter {
 public:
  PngWriter(OutputFile& output, float soundSpeed_mps, const PictureOptions& options);
  [[nodiscard]] bool Append(const RecordedPing& ping) override;
  [[nodiscard]] bool End() override;
  [[nodiscard]] std::string Emptiness() const override;

 private:
  OutputFile& output_;
  const PictureOptions options_;
  EchogramColumns columns_;
};

}  // namespace tw::echotool

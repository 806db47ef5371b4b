// A recording as NMEA 0183, for programs that replay a log: ahead of each ping its time as ZDA; each new
// position as GGA and RMC; then depth, temperature, pitch and roll as far as the ping has them, the sentences
// that the program itself sends to other instruments.
//
//   $GNZDA,093000.25,01,05,2026,00,00*77
//   $GNGGA,093000.25,3506.000000,N,12903.000000,E,1,,,12.0,M,,M,,*75
//   $GNRMC,093000.25,A,3506.000000,N,12903.000000,E,,,010526,,,A*44
//   $SDDBT,40.52,f,12.35,M,6.75,F*34
//   $SDDPT,12.35,0.00,30.0*53
//
// Pure but for the output; one thread.
#pragma once

#include "tools/echotool/track.h"
#include "tools/echotool/track_output.h"

namespace tw::echotool {

class NmeaWriter final : public PingWriter {
 public:
  explicit NmeaWriter(OutputFile& output) : output_(output) {}
  [[nodiscard]] bool Append(const RecordedPing& ping) override;
  [[nodiscard]] bool End() override { return output_.Flush(); }
  [[nodiscard]] std::string Emptiness() const override;

 private:
  [[nodiscard]] bool AppendPosition(const RecordedPing& ping, const Place_deg& place, int64_t time_ms);

  OutputFile& output_;
  PingClock clock_;
  Track track_;
};

}  // namespace tw::echotool

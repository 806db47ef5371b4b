// A virtual GPS receiver on a boat that sails a straight course. A state machine without clock, thread or
// I/O (see instrument.h). It sends an epoch of sentences several times a second and heeds nothing that it
// receives.
//
// It sends no faster than its line. An epoch that is due while earlier bytes have not left yet waits; when
// it would be more than one interval late it is left out, as receivers do that keep to whole seconds.
#pragma once

#include <cstdint>
#include <string_view>

#include "simulator/bounded_log.h"
#include "simulator/instrument.h"
#include "simulator/paced_line.h"

namespace tw::sim {

enum class GpsTalker : uint8_t { gp, gn };

struct GpsFaults {
  InstrumentFaults instrument = {};
  int32_t badChecksumEvery = 0;  // each how-manieth sentence has a wrong checksum; 0: none
};

struct GpsOptions {
  GpsTalker talker = GpsTalker::gp;
  int32_t baud = 4'800;                  // 300 to 12,000,000
  int64_t delivery_us = 0;               // 0: byte by byte; else bytes arrive in bursts at its multiples
  int32_t epochsPerSecond = 1;           // 1 to 10
  double latitude_deg = 35.1;            // -89.9 to 89.9, north positive
  double longitude_deg = 129.05;         // -180 to 180, east positive
  double course_deg = 60.0;              // 0 to 360, true
  double speed_kn = 5.0;                 // 0 to 100
  uint32_t startTime_s = 1'700'000'000;  // UTC at time 0, seconds since 1970
  int64_t fixFrom_us = 0;                // no fix before that; kNever: never one
  bool differential = true;              // false: quality 1, age and station empty
  bool emptyFields = false;  // leaves out what a cheap receiver does not know: declination, second height
                             // and the channels without a satellite
  bool laterFields = false;  // fields that newer editions of NMEA 0183 put at the end of sentences
  size_t logSize = 16'384;   // entries kept of the log
  GpsFaults faults = {};
};

struct SentEpoch {
  int64_t time_us;    // the binder's time at which it began to leave
  int64_t utc_centi;  // its own time, hundredths of a second since 1970
  double latitude_deg;
  double longitude_deg;
  bool fix;
  uint64_t offset;  // of its first byte in all that was sent
  uint64_t size;
};

// Sentences made by the last call; the newest may still be leaving.
struct GpsCounts {
  uint64_t gga = 0, gsa = 0, gsv = 0, rmc = 0, vtg = 0, gll = 0;
  uint64_t leftOut = 0;   // epochs for which the line had no room
  uint64_t received = 0;  // bytes
};

class VirtualGps final : public VirtualInstrument {
 public:
  explicit VirtualGps(const GpsOptions& options);

  void Receive(std::span<const uint8_t> bytes, int64_t now_us) override;
  [[nodiscard]] size_t Send(std::span<uint8_t> out, int64_t now_us) override;
  [[nodiscard]] size_t Waiting(int64_t now_us) override;
  [[nodiscard]] int64_t NextSend_us(int64_t now_us) const override;
  [[nodiscard]] bool HungUp(int64_t now_us) const override;
  [[nodiscard]] int32_t LineSpeed() const override { return line_.Baud(); }

  [[nodiscard]] const GpsCounts& Counts() const { return counts_; }
  [[nodiscard]] const BoundedLog<SentEpoch>& Epochs() const { return epochs_; }

 private:
  void Advance(int64_t now_us);
  [[nodiscard]] int64_t NextEpoch_us() const;
  void SendEpoch(int64_t start_us);
  void Put(std::string_view sentence, int64_t start_us);

  GpsOptions options_;
  PacedLine line_;
  int64_t interval_us_;
  int64_t epoch_ = 0;  // number of the next one; it is due at that many intervals
  uint64_t sentences_ = 0;
  bool hungUp_ = false;
  GpsCounts counts_;
  BoundedLog<SentEpoch> epochs_;
};

}  // namespace tw::sim

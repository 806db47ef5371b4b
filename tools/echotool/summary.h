// What a recording holds, gathered ping by ping. Pure; one thread.
#pragma once

#include <cstdint>
#include <string>

#include "playback/ping_source.h"

namespace tw::echotool {

// How much of a recording that has been read to its end was skipped, in bytes and as its share.
[[nodiscard]] std::string DamageText(const PingSource& recording);

class Summary {
 public:
  void Add(const RecordedPing& ping);

  // A few lines of text, each indented, ending in a line feed.
  [[nodiscard]] std::string Text(const PingSource& recording) const;

  [[nodiscard]] uint64_t Pings() const { return pings_; }
  [[nodiscard]] uint32_t LongestTrace() const { return longest_; }
  // Pings whose position had not changed for more than ten seconds.
  [[nodiscard]] uint64_t Stood() const { return stood_; }

 private:
  struct Span {
    double low = 0;
    double high = 0;
    bool any = false;
    void Add(double value);
  };

  void NotePosition(const RecordedPing& ping);

  uint64_t pings_ = 0;
  uint64_t channelPings_[2] = {};
  uint32_t first_ = 0;
  uint32_t last_ = 0;
  uint32_t longest_ = 0;
  Span time_s_;
  Span depth_m_;
  Span latitude_deg_;
  Span longitude_deg_;

  // Of the position that the pings have had for the last time, since when, and how many had it for too long.
  double stillLatitude_ = 0;
  double stillLongitude_ = 0;
  int64_t stillSince_ms_ = 0;
  bool hasStill_ = false;
  uint64_t stood_ = 0;
};

}  // namespace tw::echotool

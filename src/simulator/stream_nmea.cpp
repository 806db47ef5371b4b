// NMEA epochs, one channel of a ping each. First family, the frequency line only when the device reports its
// frequency:
//
//   #F 450000 Hz
//   $SDZDA,221320.25,14,11,2023,00,00,*hh       time, day, month, year
//   $SDDBT,40.50,f,12.345,M,6.75,F*hh           feet, metres, fathoms; "$SDDBT,,f,,M,,F" when empty fields
//                                               stand for no bottom
//   $SDDPT,12.345,0.0*hh                        when asked for
//   $SDXDR,A,1.25,D,PTCH,A,-0.50,D,ROLL*hh
//   $SDMTW,14.20,*hh
//   $SDXDR,A,1.17,P,EMA*hh                      ends the epoch
//
// Second and third family:
//
//   $GPDBT,40.50,f,12.345,M,,*hh
//   $GPDPT,12.345,0.0*hh
//   $YXXDR,A,1.25,D,PTCH,A,-0.50,D,ROLL*hh
//   $GPMTW,14.20,*hh
//   $GPEMA,1.17*hh                              ends the epoch
//
// Every line ends in CR LF. A sentence can be left out by its address ("$SDDBT").
#include "base/calendar.h"
#include "simulator/stream_forms.h"

namespace tw::sim {
namespace {

constexpr size_t kOversize = 256'001;

struct Addresses {
  std::string_view depth, depthOfWater, attitude, temperature, ema;
};
constexpr Addresses kFirstFamily{"$SDDBT", "$SDDPT", "$SDXDR", "$SDMTW", "$SDXDR"};
constexpr Addresses kSecondFamily{"$GPDBT", "$GPDPT", "$YXXDR", "$GPMTW", "$GPEMA"};

// Whole hundredths, rounded.
constexpr int64_t CentiFeet(int64_t depth_mm) {
  return (depth_mm * 1'000 + 1'524) / 3'048;
}
constexpr int64_t CentiFathoms(int64_t depth_mm) {
  return (depth_mm * 1'000 + 9'144) / 18'288;
}

class EpochWriter {
 public:
  EpochWriter(const PingReport& ping, const BlockShape& shape, const Addresses& addresses, StreamMessage& out)
      : ping_(ping), shape_(shape), addresses_(addresses), text_(out) {}

  void Frequency() {
    if (ping_.reportsFrequency) text_.Text("#F ").Count(ping_.txFrequency_hz).Text(" Hz\r\n");
  }

  void DateAndTime() {
    if (!Begins("$SDZDA", ping_.sentences.dateAndTime)) return;
    const CalendarTime at = CalendarFromUnixSeconds(ping_.time_s);
    const auto two = [&](int32_t value) { text_.Padded(static_cast<uint64_t>(value), 2); };
    two(at.hour);
    two(at.minute);
    two(at.second);
    text_.Text(".").Padded(ping_.time_ms / 10, 2).Text(",");
    two(at.day);
    text_.Text(",");
    two(at.month);
    text_.Text(",").Padded(static_cast<uint64_t>(at.year), 4).Text(",00,00,");
    End();
  }

  void Depth(bool fathoms) {
    if (!Begins(addresses_.depth, ping_.sentences.depth)) return;
    if (fathoms && ping_.altitude_mm == 0 && !ping_.sentences.depthZero) {
      text_.Text(",f,,M,,F");
    } else {
      text_.Decimal(CentiFeet(ping_.altitude_mm), 2).Text(",f,").Decimal(ping_.altitude_mm, 3).Text(",M,");
      if (fathoms) text_.Decimal(CentiFathoms(ping_.altitude_mm), 2).Text(",F");
      if (!fathoms) text_.Text(",");
    }
    End();
    if (!Begins(addresses_.depthOfWater, ping_.sentences.depthOfWater)) return;
    text_.Decimal(ping_.altitude_mm, 3).Text(",0.0");
    End();
  }

  void Attitude() {
    if (!Begins(addresses_.attitude, ping_.sentences.attitude)) return;
    text_.Text("A,").Decimal(ping_.pitch_centi, 2).Text(",D,PTCH,A,");
    text_.Decimal(ping_.roll_centi, 2).Text(",D,ROLL");
    End();
  }

  void Temperature() {
    if (!Begins(addresses_.temperature, ping_.sentences.temperature)) return;
    text_.Decimal(ping_.temperature_centi, 2).Text(",");
    End();
  }

  void Ema(std::string_view before, std::string_view behind) {
    while (shape_.fault == BlockFault::oversize && text_.Size() < kOversize) text_.Text("$SDTXT,\r\n");
    if (shape_.fault == BlockFault::noEndMark || !Begins(addresses_.ema, ping_.sentences.ema)) return;
    text_.Text(before).Decimal(ping_.ema_centi, 2).Text(behind);
    End();
  }

 private:
  bool Begins(std::string_view address, bool wanted) {
    if (!wanted || address == shape_.missingKey) return false;
    begin_ = text_.Size();
    text_.Text(address).Text(",");
    return true;
  }
  void End() { text_.EndSentence(begin_); }

  const PingReport& ping_;
  const BlockShape& shape_;
  const Addresses& addresses_;
  TextWriter text_;
  size_t begin_ = 0;
};

void AppendFirstFamilyEpoch(const PingReport& ping, const BlockShape& shape, StreamMessage& out) {
  EpochWriter epoch(ping, shape, kFirstFamily, out);
  epoch.Frequency();
  epoch.DateAndTime();
  epoch.Depth(true);
  epoch.Attitude();
  epoch.Temperature();
  epoch.Ema("A,", ",P,EMA");
}

void AppendSecondFamilyEpoch(const PingReport& ping, const BlockShape& shape, StreamMessage& out) {
  EpochWriter epoch(ping, shape, kSecondFamily, out);
  epoch.Depth(false);
  epoch.Attitude();
  epoch.Temperature();
  epoch.Ema("", "");
}

constexpr StreamMode kFirstFamilyModes[] = {
    {3, StreamKind::epoch, AppendFirstFamilyEpoch, 0, 0, true, false},
};

constexpr StreamMode kOtherFamiliesModes[] = {
    {3, StreamKind::epoch, AppendSecondFamilyEpoch, 0, 0, false, false},
};

}  // namespace

const StreamRows kEpochRows{kFirstFamilyModes, kOtherFamiliesModes};

}  // namespace tw::sim

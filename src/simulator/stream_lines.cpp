// The line forms, one ping each, with three decimals of a metre:
//
//   Alt : 12.345                       simple altimeter; a device that reports its frequency sends the two
//                                      lines "Hz" and " 450000.0" in front
//   DA12.345 m*                        DESO-25(M), first channel; "DB" is the second
//   Dual : 17, 12.345, 12.601, 14.20   altimeter dual: number, both altitudes, temperature
//   1 12.345 12.601 0.00 12.10 100     Sonarmite DFX: the altitude, the low one (0 when it is not in use),
//                                      a zero, battery volts, quality
//   1 12.345 0 0 0 12.10 100 17        Sonarmite OLD: the altitude, battery volts, quality, number
//   R12.345                            PSA-916
//   12.345,   14.20                    AltiPlusTemp.: altitude, temperature
//
// All lines end in CR LF.
#include "simulator/stream_forms.h"

namespace tw::sim {
namespace {

constexpr int kMetreDecimals = 3;
constexpr int32_t kBattery_centivolt = 1'210;
constexpr int32_t kQuality_percent = 100;

// Readers take it as a signed number.
int64_t LineNumber(const PingReport& ping) {
  return ping.number & 0x7FFF'FFFF;
}

void AppendSimple(const PingReport& ping, const BlockShape& /*shape*/, StreamMessage& out) {
  TextWriter text(out);
  if (ping.reportsFrequency) text.Text("Hz\r\n ").Decimal(int64_t{ping.txFrequency_hz} * 10, 1).Text("\r\n");
  text.Text("Alt : ").Decimal(ping.altitude_mm, kMetreDecimals).Text("\r\n");
}

void AppendDeso25(const PingReport& ping, const BlockShape& /*shape*/, StreamMessage& out) {
  TextWriter text(out);
  text.Text(ping.secondChannel ? "DB" : "DA").Decimal(ping.altitude_mm, kMetreDecimals).Text(" m*\r\n");
}

void AppendAltimeterDual(const PingReport& ping, const BlockShape& /*shape*/, StreamMessage& out) {
  TextWriter text(out);
  text.Text("Dual : ").Count(LineNumber(ping)).Text(", ");
  text.Decimal(ping.altitude_mm, kMetreDecimals).Text(", ");
  text.Decimal(ping.altitudeLow_mm, kMetreDecimals).Text(", ");
  text.Decimal(ping.temperature_centi, 2).Text("\r\n");
}

void AppendSonarmiteDfx(const PingReport& ping, const BlockShape& /*shape*/, StreamMessage& out) {
  TextWriter text(out);
  text.Text("1 ").Decimal(ping.altitude_mm, kMetreDecimals).Text(" ");
  text.Decimal(ping.altitudeLow_mm, kMetreDecimals).Text(" 0.00 ");
  text.Decimal(kBattery_centivolt, 2).Text(" ").Count(kQuality_percent).Text("\r\n");
}

void AppendSonarmiteOld(const PingReport& ping, const BlockShape& /*shape*/, StreamMessage& out) {
  TextWriter text(out);
  text.Text("1 ").Decimal(ping.altitude_mm, kMetreDecimals).Text(" 0 0 0 ");
  text.Decimal(kBattery_centivolt, 2).Text(" ").Count(kQuality_percent).Text(" ");
  text.Count(LineNumber(ping)).Text("\r\n");
}

void AppendPsa916(const PingReport& ping, const BlockShape& /*shape*/, StreamMessage& out) {
  TextWriter(out).Text("R").Decimal(ping.altitude_mm, kMetreDecimals).Text("\r\n");
}

void AppendAltiPlusTemp(const PingReport& ping, const BlockShape& /*shape*/, StreamMessage& out) {
  TextWriter text(out);
  text.Decimal(ping.altitude_mm, kMetreDecimals).Text(",   ").Decimal(ping.temperature_centi, 2).Text("\r\n");
}

constexpr StreamMode Line(int32_t outputMode, decltype(StreamMode::append) append, bool joint = false) {
  return {outputMode, StreamKind::line, append, 0, 0, false, joint};
}

constexpr StreamMode kFirstFamily[] = {
    Line(1, AppendSimple),
    Line(6, AppendDeso25),
    Line(7, AppendAltimeterDual, true),
    Line(8, AppendSonarmiteDfx, true),
    Line(9, AppendSonarmiteOld, true),
};

constexpr StreamMode kOtherFamilies[] = {
    Line(1, AppendSimple),
    Line(7, AppendPsa916),
    Line(8, AppendAltiPlusTemp),
    Line(9, AppendSonarmiteDfx, true),
    Line(10, AppendSonarmiteOld, true),
};

}  // namespace

const StreamRows kLineRows{kFirstFamily, kOtherFamilies};

}  // namespace tw::sim

#include "simulator/virtual_gps.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "simulator/gps_sentences.h"

namespace tw::sim {
namespace {

constexpr int64_t kSecond_us = 1'000'000;
constexpr double kMinutesPerDegree = 60.0;
constexpr double kRadiansPerDegree = std::numbers::pi / 180.0;
constexpr size_t kMostUntaken = 1 << 20;
constexpr int64_t kSkyEvery_s = 5;  // GSA and GSV fill a slow line, so they come in each fifth second only

double Within(double value, double least, double most) {
  return value >= least ? std::min(value, most) : least;  // what is not a number is the least
}

GpsOptions WithinBounds(GpsOptions options) {
  options.baud = std::clamp(options.baud, 300, 12'000'000);
  options.delivery_us = std::clamp<int64_t>(options.delivery_us, 0, kSecond_us);
  options.epochsPerSecond = std::clamp(options.epochsPerSecond, 1, 10);
  options.latitude_deg = Within(options.latitude_deg, -89.9, 89.9);
  options.longitude_deg = Within(options.longitude_deg, -180.0, 180.0);
  options.course_deg = Within(options.course_deg, 0.0, 360.0);
  options.speed_kn = Within(options.speed_kn, 0.0, 100.0);
  options.logSize = std::min<size_t>(options.logSize, 1 << 20);
  return options;
}

struct Position {
  double latitude_deg;
  double longitude_deg;
};

// Where the boat is after so many hours: a rhumb line on the sphere, with the longitude scale of the middle
// latitude; it stops short of the poles and wraps at the date line.
Position PositionAfter(const GpsOptions& options, double hours) {
  const double course = options.course_deg * kRadiansPerDegree;
  const double miles = options.speed_kn * hours;
  const double north_deg = miles * std::cos(course) / kMinutesPerDegree;
  const double latitude_deg = std::clamp(options.latitude_deg + north_deg, -89.9, 89.9);
  const double middle = (options.latitude_deg + latitude_deg) / 2 * kRadiansPerDegree;
  const double east_deg = miles * std::sin(course) / kMinutesPerDegree / std::cos(middle);
  return {latitude_deg, std::remainder(options.longitude_deg + east_deg, 360.0)};
}

std::string_view NameOf(GpsTalker talker) {
  return talker == GpsTalker::gp ? "GP" : "GN";
}

}  // namespace

VirtualGps::VirtualGps(const GpsOptions& options)
    : options_(WithinBounds(options)),
      line_(options_.baud, options_.delivery_us),
      interval_us_(kSecond_us / options_.epochsPerSecond),
      epochs_(options_.logSize) {}

void VirtualGps::Receive(std::span<const uint8_t> bytes, int64_t now_us) {
  Advance(now_us);
  counts_.received += bytes.size();
}

size_t VirtualGps::Send(std::span<uint8_t> out, int64_t now_us) {
  Advance(now_us);
  return line_.Take(out, now_us);
}

size_t VirtualGps::Waiting(int64_t now_us) {
  Advance(now_us);
  return line_.Ready(now_us);
}

bool VirtualGps::HungUp(int64_t now_us) const {
  return options_.faults.instrument.HungUpAt(now_us);
}

int64_t VirtualGps::NextEpoch_us() const {
  return options_.faults.instrument.AfterSilence_us(std::max(epoch_ * interval_us_, line_.Idle_us()));
}

int64_t VirtualGps::NextSend_us(int64_t now_us) const {
  const int64_t ready_us = line_.NextReady_us(now_us);
  if (ready_us != kNever) return ready_us;
  const int64_t begins_us = NextEpoch_us();
  if (HungUp(now_us) || begins_us == kNever || HungUp(begins_us)) return kNever;
  return std::max(now_us, line_.FirstVisible_us(begins_us));
}

void VirtualGps::Advance(int64_t now_us) {
  if (hungUp_) return;
  const bool ends = HungUp(now_us);
  const int64_t until_us = ends ? options_.faults.instrument.hangUpAt_us : now_us;
  for (int64_t at_us; (at_us = NextEpoch_us()) <= until_us;) {
    // Epochs that are late by an interval or more are left out, as are all while nobody takes the bytes.
    const int64_t reached_us = line_.Untaken() > kMostUntaken ? until_us + interval_us_ : at_us;
    const int64_t current = std::max(epoch_, reached_us / interval_us_);
    counts_.leftOut += static_cast<uint64_t>(current - epoch_);
    epoch_ = current;
    if (reached_us != at_us) break;
    SendEpoch(at_us);
    ++epoch_;
  }
  if (!ends) return;
  line_.CutUnsent(until_us);
  hungUp_ = true;
}

void VirtualGps::SendEpoch(int64_t start_us) {
  const int64_t due_us = epoch_ * interval_us_;
  const int64_t utc_centi = int64_t{options_.startTime_s} * 100 + due_us / 10'000;
  const Position at = PositionAfter(options_, static_cast<double>(due_us) / (3'600.0 * kSecond_us));
  GpsMoment moment = {
      .utc = CalendarFromUnixSeconds(utc_centi / 100),
      .latitude_deg = at.latitude_deg,
      .longitude_deg = at.longitude_deg,
      .course_deg = options_.course_deg,
      .speed_kn = options_.speed_kn,
      .fix = due_us >= options_.fixFrom_us,
      .differential = options_.differential,
      .emptyFields = options_.emptyFields,
      .laterFields = options_.laterFields,
  };
  moment.utc.millisecond = static_cast<int32_t>(utc_centi % 100 * 10);
  const std::string_view talker = NameOf(options_.talker);
  const uint64_t offset = line_.End();
  Put(GgaSentence(talker, moment), start_us);
  ++counts_.gga;
  if (epoch_ % (kSkyEvery_s * options_.epochsPerSecond) == 0) {
    Put(GsaSentence(talker, moment), start_us);
    ++counts_.gsa;
    for (int i = 1; i <= kGsvSentences; ++i, ++counts_.gsv) Put(GsvSentence(i, moment), start_us);
  }
  Put(RmcSentence(talker, moment), start_us);
  ++counts_.rmc;
  Put(VtgSentence(talker, moment), start_us);
  ++counts_.vtg;
  Put(GllSentence(talker, moment), start_us);
  ++counts_.gll;
  epochs_.Add(
      {start_us, utc_centi, at.latitude_deg, at.longitude_deg, moment.fix, offset, line_.End() - offset});
}

void VirtualGps::Put(std::string_view sentence, int64_t start_us) {
  std::string text(sentence);
  ++sentences_;
  const int32_t every = options_.faults.badChecksumEvery;
  if (every > 0 && sentences_ % static_cast<uint64_t>(every) == 0) {
    char& digit = text[text.size() - 3];  // the last one before CR LF
    digit = digit == '0' ? '1' : '0';
  }
  line_.Put({reinterpret_cast<const uint8_t*>(text.data()), text.size()}, start_us);
}

}  // namespace tw::sim

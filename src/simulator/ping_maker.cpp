#include "simulator/ping_maker.h"

#include <algorithm>
#include <cmath>

#include "simulator/stream_forms.h"

namespace tw::sim {
namespace {

constexpr size_t kLeastSamples = 100;
constexpr size_t kMostSamples = 12'000;

int32_t Centi(double value) {
  return static_cast<int32_t>(std::lround(value * 100.0));
}

double SoundSpeed_mps(const SounderSettings& settings) {
  return static_cast<double>(settings.Thousandths(Setting::sound)) / kThousand;
}

double SamplesPerMetre(const SounderSettings& settings) {
  return 2.0 * static_cast<double>(settings.Whole(Setting::samplingFrequency)) / SoundSpeed_mps(settings);
}

Setting OfChannel(Setting low, bool isLow) {
  return static_cast<Setting>(static_cast<uint8_t>(low) + (isLow ? 0 : 1));
}

int32_t Whole(const SounderSettings& settings, Setting setting) {
  return static_cast<int32_t>(settings.Whole(setting));
}

SentenceChoice ChosenSentences(const SounderSettings& settings) {
  const auto on = [&](Setting setting) { return settings.Whole(setting) != 0; };
  return {.dateAndTime = on(Setting::nmeaZda),
          .depth = on(Setting::nmeaDbt),
          .depthOfWater = on(Setting::nmeaDpt),
          .attitude = on(Setting::nmeaXdr),
          .temperature = on(Setting::nmeaMtw),
          .ema = on(Setting::nmeaEma),
          .depthZero = on(Setting::nmeaDepthZero)};
}

// A reading that nobody interprets: from 1.00 to 1.99.
int32_t Ema_centi(uint32_t number) {
  return 100 + static_cast<int32_t>(number % 100);
}

SentPing AccountOf(const PingReport& report) {
  SentPing account{};
  account.number = report.number;
  account.deviceTime_s = report.time_s;
  account.deviceTime_ms = report.time_ms;
  account.altitude_m = static_cast<float>(report.altitude_mm / 1'000.0);
  account.altitudeLow_m = static_cast<float>(report.altitudeLow_mm / 1'000.0);
  account.temperature_c = static_cast<float>(report.temperature_centi / 100.0);
  account.pitch_deg = static_cast<float>(report.pitch_centi / 100.0);
  account.roll_deg = static_cast<float>(report.roll_centi / 100.0);
  account.ema = static_cast<float>(report.ema_centi / 100.0);
  account.txFrequency_hz = report.txFrequency_hz;
  account.samplingFrequency_hz = report.samplingFrequency_hz;
  account.outputMode = report.outputMode;
  account.channels = report.channels;
  account.sampleCount = static_cast<uint32_t>(report.samples.size());
  return account;
}

}  // namespace

// What a channel finds.
struct PingMaker::Sounding {
  int32_t bottomIndex;  // of the sample, however many there are
  int32_t altitude_mm;  // 0: out of range
};

// What one message is about.
struct PingMaker::Soundings {
  SeaState sea;
  Sounding main;  // of the channel that the message is for; of the high one when it is for both
  Sounding low;
  bool isLow;
  bool secondChannel;
  bool both;
};

PingMaker::PingMaker(const SounderOptions& options)
    : options_(options), seaBed_{options.seed, options.depth_m, options.relief_m} {
  samples_.reserve(2 * kMostSamples);
}

ChannelUse PingMaker::UseOf(const SounderSettings& settings) const {
  const bool two = options_.family == DeviceFamily::first && settings.Whole(Setting::simultaneous) != 0;
  if (two) {
    const StreamMode* mode = ModeOf(settings);
    return mode != nullptr && mode->joint ? ChannelUse::both : ChannelUse::highOfTwo;
  }
  return settings.LowInUse() ? ChannelUse::low : ChannelUse::high;
}

const StreamMode* PingMaker::ModeOf(const SounderSettings& settings) const {
  const StreamMode* mode = FindStreamMode(options_.family, Whole(settings, Setting::output));
  if (mode == nullptr) return nullptr;
  const bool binary = mode->kind == StreamKind::block || mode->kind == StreamKind::compandedBlock;
  const StreamMode* form = binary ? FindBinaryForm(options_.binaryForm) : nullptr;
  return form != nullptr ? form : mode;
}

const StreamMode& PingMaker::AnotherMode(const StreamMode& mode, Dice& dice) const {
  const auto modes = StreamModesOf(options_.family);
  const StreamMode* other = &modes[dice.Below(modes.size())];
  if (other->outputMode == mode.outputMode) other = other == &modes.back() ? &modes.front() : other + 1;
  return *other;
}

size_t PingMaker::CountInRange(bool low, const SounderSettings& settings) const {
  if (options_.sampleCount != 0) return static_cast<size_t>(options_.sampleCount);
  const auto range_mm = settings.Whole(OfChannel(Setting::rangeLow, low));
  const auto count = static_cast<size_t>(static_cast<double>(range_mm) / 1'000.0 * SamplesPerMetre(settings));
  return std::clamp(count, kLeastSamples, kMostSamples);
}

PingMaker::Sounding PingMaker::Sound(double depth_m, bool low, const SounderSettings& settings) const {
  const double perMetre = SamplesPerMetre(settings);
  const auto bottom = static_cast<int32_t>(std::lround(depth_m * perMetre));
  const bool heard = static_cast<size_t>(bottom) < CountInRange(low, settings);
  return {bottom, heard ? static_cast<int32_t>(std::lround(bottom / perMetre * 1'000.0)) : 0};
}

// Appends one channel's samples.
void PingMaker::Paint(const PingMoment& moment, const Sounding& sounding, bool low, const StreamMode& mode,
                      const SounderSettings& settings) {
  if (mode.sampleBits == 0) return;
  const size_t begin = samples_.size();
  const size_t count =
      mode.fixedSamples != 0 ? static_cast<size_t>(mode.fixedSamples) : CountInRange(low, settings);
  samples_.resize(begin + count);
  const auto samples = std::span(samples_).subspan(begin);
  PaintEcho({.seed = options_.seed,
             .pingIndex = moment.pingIndex,
             .sailed_s = moment.sailed_s,
             .samplesPerMetre = SamplesPerMetre(settings),
             .bottomIndex = sounding.bottomIndex,
             .lowFrequency = low},
            samples);
  const int32_t lost = 12 - mode.sampleBits;
  for (uint16_t& sample : samples) sample = static_cast<uint16_t>(sample >> lost);
  if (mode.kind != StreamKind::compandedBlock) return;
  for (uint16_t& sample : samples) sample = Expand(Compand(sample));
}

PingMaker::Soundings PingMaker::SoundAll(const PingMoment& moment, ChannelUse use,
                                         const SounderSettings& settings) const {
  const bool isLow = use == ChannelUse::low || use == ChannelUse::lowOfTwo;
  const SeaState sea = seaBed_.At(moment.sailed_s);
  const Sounding low = Sound(sea.depth_m + sea.sediment_m, true, settings);
  return {.sea = sea,
          .main = isLow ? low : Sound(sea.depth_m, false, settings),
          .low = low,
          .isLow = isLow,
          .secondChannel = use == ChannelUse::lowOfTwo,
          .both = use == ChannelUse::both};
}

PingReport PingMaker::ReportOf(const PingMoment& moment, const Soundings& found, const StreamMode& mode,
                               const SounderSettings& settings) const {
  const bool frame = mode.kind == StreamKind::frame;
  return {.identity = options_.identity,
          .time_s = static_cast<uint32_t>(moment.clock_ms / 1'000),
          .time_ms = static_cast<uint32_t>(moment.clock_ms % 1'000),
          .outputMode = frame ? Whole(settings, Setting::output) : mode.outputMode,
          .samplingFrequency_hz = Whole(settings, Setting::samplingFrequency),
          .resolution_um = static_cast<int32_t>(std::lround(1e6 / SamplesPerMetre(settings))),
          .range_mm = Whole(settings, OfChannel(Setting::rangeLow, found.isLow)),
          .altitude_mm = found.main.altitude_mm,
          .altitudeLow_mm = found.both && !frame ? found.low.altitude_mm : 0,
          .temperature_centi = Centi(found.sea.temperature_c),
          .pitch_centi = Centi(found.sea.pitch_deg),
          .roll_centi = Centi(found.sea.roll_deg),
          .ema_centi = Ema_centi(moment.number),
          .number = moment.number,
          .txFrequency_hz = Whole(settings, OfChannel(Setting::frequencyLow, found.isLow)),
          .secondChannel = found.secondChannel,
          .reportsFrequency = options_.reportsFrequency && options_.family == DeviceFamily::first,
          .channels = found.both && frame ? 2 : 1,
          .sentences = ChosenSentences(settings),
          .samples = samples_};
}

// The shape of the next message: usually whole.
BlockShape PingMaker::ShapeOf(const StreamMode& mode) const {
  const SounderFaults& faults = options_.faults;
  const bool heeds = mode.kind == StreamKind::echoText || mode.kind == StreamKind::epoch;
  if (!heeds || messageIndex_ % static_cast<uint64_t>(faults.blockEvery) != 0) return {};
  return {faults.block, faults.block == BlockFault::missingKey ? std::string_view(faults.missingKey) : ""};
}

void PingMaker::Make(const PingMoment& moment, ChannelUse use, const SounderSettings& settings) {
  message_.Clear();
  samples_.clear();
  account_ = {};
  const StreamMode* asked = ModeOf(settings);
  if (asked == nullptr) return;
  Dice dice = FaultDice(options_.seed, ++messageIndex_);
  StreamFault fault = DrawFault(options_.faults, dice);
  const StreamMode& mode = fault == StreamFault::otherMode ? AnotherMode(*asked, dice) : *asked;
  if (fault == StreamFault::timeJump && !mode.tellsTime) fault = StreamFault::none;

  const Soundings found = SoundAll(moment, use, settings);
  Paint(moment, found.main, found.isLow, mode, settings);
  const bool heard = static_cast<size_t>(found.main.bottomIndex) < samples_.size();
  if (found.both && mode.kind == StreamKind::frame) Paint(moment, found.low, true, mode, settings);

  PingReport report = ReportOf(moment, found, mode, settings);
  if (fault == StreamFault::timeJump) report.time_s = JumpedTime_s(report.time_s, dice);
  account_ = AccountOf(report);
  account_.bottomIndex = heard ? found.main.bottomIndex : -1;
  const BlockShape shape = ShapeOf(mode);
  account_.faulty = shape.fault != BlockFault::none;
  account_.intact = !account_.faulty;
  mode.append(report, shape, message_);
  Damage(fault, dice);
}

// Lets the fault hit the finished message and keeps account of it.
void PingMaker::Damage(StreamFault fault, Dice& dice) {
  const sim::Damage damage = ApplyFault(fault, dice, message_);
  const bool bytesMeant = fault == StreamFault::timeJump || fault == StreamFault::otherMode;
  if (damage.happened || bytesMeant) {
    account_.fault = fault;
    account_.faulty = true;
    account_.intact = account_.intact && fault == StreamFault::timeJump;
    account_.faultAt = damage.at;
    account_.faultSize = damage.size;
  }
  account_.size = message_.bytes.size();
  account_.hash = HashOf(message_.bytes);
}

}  // namespace tw::sim

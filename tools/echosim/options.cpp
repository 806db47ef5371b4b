#include "tools/echosim/options.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>

#include "simulator/sounder_keywords.h"

namespace tw::echosim {
namespace {

using sim::BlockFault;
using sim::InterfaceWord;
using sim::PromptStyle;
using sim::StreamFault;

// Reads a value; false leaves the options as they are.
using Reader = bool (*)(ToolOptions& options, std::string_view value);

struct OptionRow {
  std::string_view name;
  std::string_view value;  // its name in the help text; empty: the option takes none
  std::string_view help;
  Reader read;
};

template <typename Number>
bool ReadNumber(std::string_view text, Number least, Number most, Number& target) {
  Number value{};
  const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (failure != std::errc{} || end != text.data() + text.size()) return false;
  if (!(value >= least && value <= most)) return false;
  target = value;
  return true;
}

// Seconds with a fraction, as microseconds.
bool ReadMoment(std::string_view text, int64_t& target_us) {
  double seconds = 0.0;
  if (!ReadNumber(text, 0.0, 1e9, seconds)) return false;
  target_us = std::llround(seconds * 1e6);
  return true;
}

bool ReadText(std::string_view text, std::string& target) {
  target = text;
  return !text.empty();
}

template <typename Value>
struct Choice {
  std::string_view name;
  Value value;
};

template <typename Value, size_t kCount>
bool ReadChoice(std::string_view text, const Choice<Value> (&choices)[kCount], Value& target) {
  const auto* at = std::find_if(std::begin(choices), std::end(choices),
                                [&](const Choice<Value>& choice) { return choice.name == text; });
  if (at == std::end(choices)) return false;
  target = at->value;
  return true;
}

bool ReadSpeed(std::string_view text, int32_t& target) {
  int32_t speed = 0;
  if (!ReadNumber(text, 1, 12'000'000, speed)) return false;
  if (std::find(std::begin(sim::kLineSpeeds), std::end(sim::kLineSpeeds), speed) ==
      std::end(sim::kLineSpeeds))
    return false;
  target = speed;
  return true;
}

// A silence that is given a start but no length lasts for ever.
bool ReadSilenceStart(std::string_view text, sim::InstrumentFaults& faults) {
  if (faults.silentFor_us == 0) faults.silentFor_us = sim::kNever;
  return ReadMoment(text, faults.silentFrom_us);
}
bool ReadSilenceLength(std::string_view text, sim::InstrumentFaults& faults) {
  if (faults.silentFrom_us == sim::kNever) faults.silentFrom_us = 0;
  return ReadMoment(text, faults.silentFor_us);
}

// A version of at most two decimals, as hundredths.
bool ReadFirmware(std::string_view text, int32_t& hundredths) {
  double version = 0.0;
  if (!ReadNumber(text, 0.01, 99.99, version)) return false;
  hundredths = static_cast<int32_t>(std::lround(version * 100.0));
  return true;
}

constexpr Choice<sim::DeviceFamily> kFamilies[] = {
    {"1", sim::DeviceFamily::first}, {"2", sim::DeviceFamily::second}, {"0", sim::DeviceFamily::third}};
constexpr Choice<sim::Smoothing> kSmoothings[] = {
    {"none", sim::Smoothing::absent}, {"off", sim::Smoothing::off}, {"on", sim::Smoothing::on}};
constexpr Choice<InterfaceWord> kInterfaces[] = {
    {"rs232", InterfaceWord::rs232}, {"rs485", InterfaceWord::rs485}, {"usb", InterfaceWord::usb}};
constexpr Choice<PromptStyle> kPrompts[] = {{"whole", PromptStyle::whole},
                                            {"missing", PromptStyle::missing},
                                            {"split", PromptStyle::split},
                                            {"doubled", PromptStyle::doubledReturn}};
constexpr Choice<sim::BinaryForm> kBinaryForms[] = {{"block", sim::BinaryForm::block},
                                                    {"frame", sim::BinaryForm::frame},
                                                    {"dual-frame", sim::BinaryForm::dualFrame}};
constexpr Choice<StreamFault> kStreamFaults[] = {
    {"flipped", StreamFault::flippedBytes}, {"lost", StreamFault::lostBytes},
    {"doubled", StreamFault::doubledBytes}, {"truncated", StreamFault::truncated},
    {"absurd", StreamFault::absurdCount},   {"nan", StreamFault::notANumber},
    {"time", StreamFault::timeJump},        {"mode", StreamFault::otherMode}};

bool AddStreamFault(std::string_view text, sim::SounderFaults& faults) {
  StreamFault fault{};
  if (!ReadChoice(text, kStreamFaults, fault)) return false;
  faults.stream.push_back(fault);
  return true;
}

constexpr Choice<sim::GpsTalker> kTalkers[] = {{"gp", sim::GpsTalker::gp}, {"gn", sim::GpsTalker::gn}};

using O = ToolOptions;
using V = std::string_view;

constexpr OptionRow kLines[] = {
    {"--link", "PATH", "the echosounder on a pseudo terminal, to which PATH becomes a link (not on Windows)",
     [](O& o, V v) { return ReadText(v, o.device); }},
    {"--port", "NAME", "the echosounder on a serial port, COM7 (Windows)",
     [](O& o, V v) { return ReadText(v, o.device); }},
    {"--gps-link", "PATH", "the GPS receiver likewise", [](O& o, V v) { return ReadText(v, o.gpsDevice); }},
    {"--gps-port", "NAME", "the GPS receiver likewise", [](O& o, V v) { return ReadText(v, o.gpsDevice); }},
    {"--gps-off", "", "no GPS receiver, whatever was said before",
     [](O& o, V) { return o.gpsDevice.clear(), true; }},
    {"--log", "FILE", "one line per ping: number, time, altitude, samples, place in the stream, hash",
     [](O& o, V v) { return ReadText(v, o.logFile); }},
    {"--commands", "FILE", "what the echosounder received, with times",
     [](O& o, V v) { return ReadText(v, o.commandFile); }},
    {"--line-log", "FILE", "each change of the settings that the program gives the line (not on Windows)",
     [](O& o, V v) { return ReadText(v, o.lineFile); }},
    {"--strict-line", "", "noise instead of bytes while the line's two ends differ in speed",
     [](O& o, V) { return o.strictLine = true; }},
    {"--seconds", "N", "ends after N seconds instead of at SIGINT or SIGTERM",
     [](O& o, V v) { return ReadNumber(v, 0.0, 1e9, o.seconds); }},
    {"--help", "", "this text", [](O& o, V) { return o.help = true; }},
};

constexpr OptionRow kSounder[] = {
    {"--family", "N", "device family: 1 (the default), 2 or 0",
     [](O& o, V v) { return ReadChoice(v, kFamilies, o.sounder.family); }},
    {"--mode", "N", "output mode at power-on, by its number: 2 (10-bit text) is the default",
     [](O& o, V v) { return ReadNumber(v, 0, 1'000, o.sounder.outputMode); }},
    {"--rate", "N", "pings a second, 1 to 50; 0 is automatic, 10 a second (the default)",
     [](O& o, V v) {
       double rate = 0.0;
       if (!ReadNumber(v, 0.0, 50.0, rate) || (rate > 0.0 && rate < 1.0)) return false;
       o.sounder.pingsPerSecond = rate;
       return true;
     }},
    {"--samples", "N", "samples a ping, 100 to 12000; without it they follow from range and sampling",
     [](O& o, V v) { return ReadNumber(v, 100, 12'000, o.sounder.sampleCount); }},
    {"--sampling", "HZ", "sampling frequency, 1000 to 100000 (25000)",
     [](O& o, V v) { return ReadNumber(v, 1'000, 100'000, o.sounder.samplingFrequency_hz); }},
    {"--range", "MM", "range at power-on, 1000 to 200000 (30000)",
     [](O& o, V v) { return ReadNumber(v, 1'000, 200'000, o.sounder.range_mm); }},
    {"--depth", "M", "depth of the sea bed, 0.5 to 200 (12)",
     [](O& o, V v) { return ReadNumber(v, 0.5, 200.0, o.sounder.depth_m); }},
    {"--relief", "M", "how far it rises and falls, at most half the depth (2.5)",
     [](O& o, V v) { return ReadNumber(v, 0.0, 100.0, o.sounder.relief_m); }},
    {"--seed", "N", "another sea; the same seed gives the same pings (1)",
     [](O& o, V v) { return ReadNumber<uint64_t>(v, 0, UINT64_MAX, o.sounder.seed); }},
    {"--speed", "BAUD", "speed of the line at power-on, one of the program's list (115200)",
     [](O& o, V v) { return ReadSpeed(v, o.sounder.baud); }},
    {"--delivery", "US", "bytes come in bursts, US microseconds apart; 0 one by one (1000)",
     [](O& o, V v) { return ReadNumber<int64_t>(v, 0, 1'000'000, o.sounder.delivery_us); }},
    {"--identity", "TEXT", "its identity (VIRTUAL-0001); for families 2 and 0 a number of 1 to 9 digits (42)",
     [](O& o, V v) { return v.size() <= 95 && ReadText(v, o.sounder.identity); }},
    {"--firmware", "N", "its firmware's version, 0.01 to 99.99 (2.10)",
     [](O& o, V v) { return ReadFirmware(v, o.sounder.firmware_hundredths); }},
    {"--interface", "NAME", "rs232 (the default), rs485 or usb, as its information says",
     [](O& o, V v) { return ReadChoice(v, kInterfaces, o.sounder.interfaceWord); }},
    {"--auto", "", "the automatic mode is on at power-on, and its preset 10 in force",
     [](O& o, V) { return o.sounder.automatic = true; }},
    {"--preset", "N", "the preset in force at power-on, 0 to 255; 255 is none (the default)",
     [](O& o, V v) { return ReadNumber(v, 0, 255, o.sounder.preset); }},
    {"--smoothing", "NAME", "none (the firmware knows nothing of it), off (the default) or on",
     [](O& o, V v) { return ReadChoice(v, kSmoothings, o.sounder.smoothing); }},
    {"--no-dual-old", "", "refuses output 9 for both frequencies",
     [](O& o, V) { return o.sounder.refusesDualOld = true; }},
    {"--speed-at-once", "", "a new line speed is in force at once, not from the next #reset on",
     [](O& o, V) { return o.sounder.speedAtOnce = true; }},
    {"--low", "", "the low frequency is in use at power-on",
     [](O& o, V) { return o.sounder.lowFrequency = true; }},
    {"--frequency", "HZ", "families 2 and 0: its frequency, 10000 to 1000000 (450000)",
     [](O& o, V v) { return ReadNumber(v, 10'000, 1'000'000, o.sounder.frequency_hz); }},
    {"--dual", "", "both frequencies at power-on", [](O& o, V) { return o.sounder.dual = true; }},
    {"--binary-form", "NAME", "of the binary modes: block (the default), frame or dual-frame",
     [](O& o, V v) { return ReadChoice(v, kBinaryForms, o.sounder.binaryForm); }},
    {"--no-frequency", "", "lines and sentences do not tell the frequency",
     [](O& o, V) { return o.sounder.reportsFrequency = false, true; }},
    {"--streaming", "", "pings at power-on instead of standing at its prompt",
     [](O& o, V) { return o.sounder.streaming = true; }},
};

constexpr OptionRow kGps[] = {
    {"--gps-talker", "NAME", "gp (the default) or gn",
     [](O& o, V v) { return ReadChoice(v, kTalkers, o.gps.talker); }},
    {"--gps-rate", "N", "positions a second, 1 to 10 (1)",
     [](O& o, V v) { return ReadNumber(v, 1, 10, o.gps.epochsPerSecond); }},
    {"--gps-speed", "BAUD", "speed of its line (4800)", [](O& o, V v) { return ReadSpeed(v, o.gps.baud); }},
    {"--gps-latitude", "DEG", "where the boat starts, north positive (35.1)",
     [](O& o, V v) { return ReadNumber(v, -89.9, 89.9, o.gps.latitude_deg); }},
    {"--gps-longitude", "DEG", "east positive (129.05)",
     [](O& o, V v) { return ReadNumber(v, -180.0, 180.0, o.gps.longitude_deg); }},
    {"--gps-course", "DEG", "its course, 0 to 360 (60)",
     [](O& o, V v) { return ReadNumber(v, 0.0, 360.0, o.gps.course_deg); }},
    {"--gps-knots", "N", "its speed, 0 to 100 (5)",
     [](O& o, V v) { return ReadNumber(v, 0.0, 100.0, o.gps.speed_kn); }},
    {"--gps-no-fix", "", "never a fix", [](O& o, V) { return o.gps.fixFrom_us = sim::kNever, true; }},
    {"--gps-fix-after", "S", "no fix for the first S seconds",
     [](O& o, V v) { return ReadMoment(v, o.gps.fixFrom_us); }},
    {"--gps-no-differential", "", "no differential data: quality 1, age and station empty",
     [](O& o, V) { return o.gps.differential = false, true; }},
    {"--gps-empty-fields", "", "leaves fields empty as cheap receivers do",
     [](O& o, V) { return o.gps.emptyFields = true; }},
    {"--gps-later-fields", "", "fields of newer editions at the end of sentences",
     [](O& o, V) { return o.gps.laterFields = true; }},
};

constexpr OptionRow kFaults[] = {
    {"--dead", "", "sends nothing, heeds nothing",
     [](O& o, V) { return o.sounder.faults.instrument.dead = true; }},
    {"--silent-from", "S", "falls silent S seconds after the start",
     [](O& o, V v) { return ReadSilenceStart(v, o.sounder.faults.instrument); }},
    {"--silent-for", "S", "and speaks again after S seconds; without it never",
     [](O& o, V v) { return ReadSilenceLength(v, o.sounder.faults.instrument); }},
    {"--hang-up-at", "S", "the plug is pulled after S seconds",
     [](O& o, V v) { return ReadMoment(v, o.sounder.faults.instrument.hangUpAt_us); }},
    {"--reply-delay", "MS", "answers late, 0 to 60000",
     [](O& o, V v) { return ReadNumber(v, 0, 60'000, o.sounder.faults.replyDelay_ms); }},
    {"--late", "KEYWORD", "answers KEYWORD late the first time",
     [](O& o, V v) { return ReadText(v, o.sounder.faults.late); }},
    {"--late-by", "MS", "by so much, 0 to 60000 (2300)",
     [](O& o, V v) { return ReadNumber(v, 0, 60'000, o.sounder.faults.late_ms); }},
    {"--prompt", "FORM", "whole, missing, split or doubled (an extra carriage return)",
     [](O& o, V v) { return ReadChoice(v, kPrompts, o.sounder.faults.prompt); }},
    {"--split-end-mark", "", "the end mark of a stream comes in two pieces",
     [](O& o, V) { return o.sounder.faults.splitEndMark = true; }},
    {"--split-pause", "MS", "pause within what is split, 0 to 60000 (50)",
     [](O& o, V v) { return ReadNumber(v, 0, 60'000, o.sounder.faults.splitPause_ms); }},
    {"--no-end-mark", "", "blocks without their two empty lines",
     [](O& o, V) { return o.sounder.faults.block = BlockFault::noEndMark, true; }},
    {"--missing-key", "KEY", "blocks without the line of KEY (#Altitude)",
     [](O& o, V v) {
       o.sounder.faults.block = BlockFault::missingKey;
       return ReadText(v, o.sounder.faults.missingKey);
     }},
    {"--oversize", "", "blocks of more than 256,000 bytes",
     [](O& o, V) { return o.sounder.faults.block = BlockFault::oversize, true; }},
    {"--fault-every", "N", "each how-manieth block has the fault (1)",
     [](O& o, V v) { return ReadNumber(v, 1, 1'000'000, o.sounder.faults.blockEvery); }},
    {"--stream-fault", "NAME",
     "flipped, lost, doubled, truncated, absurd, nan, time or mode; may be repeated",
     [](O& o, V v) { return AddStreamFault(v, o.sounder.faults); }},
    {"--stream-fault-rate", "N", "share of the messages that they hit, 0 to 1 (0.01)",
     [](O& o, V v) { return ReadNumber(v, 0.0, 1.0, o.sounder.faults.streamRate); }},
    {"--garbage", "N", "N bytes of garbage behind each block, at most 65536",
     [](O& o, V v) { return ReadNumber(v, 0, 65'536, o.sounder.faults.garbageBytes); }},
    {"--deaf", "", "hears nothing; with --streaming it cannot be stopped",
     [](O& o, V) { return o.sounder.faults.deaf = true; }},
    {"--chatter", "", "sends noise ten times a second at its prompt",
     [](O& o, V) { return o.sounder.faults.chatter = true; }},
    {"--refuse", "KEYWORD", "answers Error to KEYWORD; may be given several times",
     [](O& o, V v) { return o.sounder.faults.refused.emplace_back(v), !v.empty(); }},
    {"--lacks", "KEYWORD", "older firmware: Error when asked for KEYWORD or what came after it",
     [](O& o, V v) { return ReadText(v, o.sounder.faults.lacksFrom); }},
    {"--lacks-silently", "", "no answer at all when asked for what it lacks",
     [](O& o, V) { return o.sounder.faults.lacksSilently = true; }},
    {"--info-bytes", "N", "family 0: its information block is cut or padded to N bytes, 0 to 1000 (38)",
     [](O& o, V v) { return ReadNumber(v, 0, 1'000, o.sounder.faults.informationBytes); }},
    {"--mute", "KEYWORD", "gives no answer to KEYWORD; may be given several times",
     [](O& o, V v) { return o.sounder.faults.mute.emplace_back(v), !v.empty(); }},
    {"--gps-dead", "", "the GPS receiver sends nothing",
     [](O& o, V) { return o.gps.faults.instrument.dead = true; }},
    {"--gps-silent-from", "S", "it falls silent",
     [](O& o, V v) { return ReadSilenceStart(v, o.gps.faults.instrument); }},
    {"--gps-silent-for", "S", "and speaks again",
     [](O& o, V v) { return ReadSilenceLength(v, o.gps.faults.instrument); }},
    {"--gps-hang-up-at", "S", "its plug is pulled",
     [](O& o, V v) { return ReadMoment(v, o.gps.faults.instrument.hangUpAt_us); }},
    {"--gps-bad-checksum", "N", "each Nth of its sentences has a wrong checksum",
     [](O& o, V v) { return ReadNumber(v, 0, 1'000'000, o.gps.faults.badChecksumEvery); }},
};

struct Section {
  std::string_view title;
  std::span<const OptionRow> rows;
};
constexpr Section kSections[] = {
    {"Lines and files", kLines}, {"Echosounder", kSounder}, {"GPS receiver", kGps}, {"Faults", kFaults}};

const OptionRow* Find(std::string_view name) {
  for (const Section& section : kSections) {
    for (const OptionRow& row : section.rows) {
      if (row.name == name) return &row;
    }
  }
  return nullptr;
}

// What can be judged only when all arguments are known, since it depends on the family. Empty when all is
// well.
std::string UnsuitedToTheFamily(const sim::SounderOptions& sounder) {
  const sim::SounderOptions made = sim::WithinBounds(sounder);
  const std::string& lacks = sounder.faults.lacksFrom;
  if (made.outputMode != sounder.outputMode) return "--mode cannot be " + std::to_string(sounder.outputMode);
  if (!sounder.identity.empty() && made.identity != sounder.identity) {
    return "--identity cannot be " + sounder.identity;
  }
  if (!lacks.empty() && sim::FindKeyword(sounder.family, lacks) == nullptr) {
    return "--lacks cannot be " + lacks;
  }
  if (made.dual != sounder.dual || made.lowFrequency != sounder.lowFrequency) {
    return "--dual and --low are for family 1";
  }
  if (made.frequency_hz != sounder.frequency_hz) return "--frequency is for families 2 and 0";
  return {};
}

}  // namespace

bool ParseOptions(std::span<const char* const> arguments, ToolOptions& options, std::string& error) {
  for (size_t i = 0; i < arguments.size(); ++i) {
    const std::string name = arguments[i];
    const OptionRow* row = Find(name);
    if (row == nullptr) {
      error = "unknown option " + name;
      return false;
    }
    std::string_view value;
    if (!row->value.empty()) {
      if (++i == arguments.size()) {
        error = name + " needs a value";
        return false;
      }
      value = arguments[i];
    }
    if (!row->read(options, value)) {
      error = name + " cannot be " + std::string(value);
      return false;
    }
  }
  error = UnsuitedToTheFamily(options.sounder);
  return error.empty();
}

std::string HelpText() {
  constexpr size_t kHelpColumn = 28;
  std::string text =
      "usage: echosim [options]\n\n"
      "A virtual echosounder and a virtual GPS receiver on serial lines. Prints what it sent when it ends.\n"
      "Nobody need be reading: what does not fit the line's buffer is dropped and counted.\n";
  for (const Section& section : kSections) {
    text += "\n" + std::string(section.title) + ":\n";
    for (const OptionRow& row : section.rows) {
      std::string left = "  " + std::string(row.name);
      if (!row.value.empty()) left += " " + std::string(row.value);
      left.resize(std::max(left.size() + 1, kHelpColumn), ' ');
      text += left + std::string(row.help) + "\n";
    }
  }
  return text;
}

}  // namespace tw::echosim

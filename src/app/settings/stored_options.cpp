#include "app/settings/stored_options.h"

#include <bit>

#include "outputs/output_options.h"
#include "platform/registry.h"

namespace tw {
namespace {

using O = Options;
using enum OptionPage;

constexpr const wchar_t* kSchemes[] = {L"Standard", L"Blue to yellow", L"Violet to yellow", L"Grey on black",
                                       L"Black on white"};
constexpr const wchar_t* kUnits[] = {L"Metres", L"Feet"};
constexpr const wchar_t* kTimes[] = {L"Seconds ago", L"Clock, UTC", L"Clock, local"};

// clang-format off
constexpr OptionRow kRows[] = {
    {link, &O::keepRunGoing, L"KeepRunGoing", L"&Keep the run going when the link is lost", nullptr, 0, 0, 1, nullptr, true},
    {link, &O::silence_s, L"LinkSilence", L"Lost without &data for", L"s", 10, 5, 60, &O::keepRunGoing, true},
    {link, &O::beepWhenLost, L"BeepWhenLost", L"&Beep when the link is lost", nullptr, 0, 0, 1, &O::keepRunGoing},
    {link, &O::receiverSilence_s, L"ReceiverSilence", L"Receiver &silent after", L"s", 5, 2, 60, nullptr, true},
    {link, &O::dropSilentPosition, L"DropSilentPosition", L"No &position from a silent receiver", nullptr, 0, 0, 1, nullptr, true},
    {link, &O::startByItself, L"StartByItself", L"S&tart by itself when the program starts", nullptr, 0, 0, 1, nullptr},
    {link, &O::giveUpWriting, L"GiveUpWriting", L"&Give up writing to a port after 10 s", nullptr, 0, 0, 1, nullptr, true},

    {recording, &O::splitByTime, L"SplitByTime", L"A new record file by &time", nullptr, 0, 0, 1, nullptr, true},
    {recording, &O::splitPeriod_min, L"SplitMinutes", L"&Every", L"min", 60, 1, 1'440, &O::splitByTime, true},
    {recording, &O::splitBySize, L"SplitBySize", L"A new record file by &size", nullptr, 0, 0, 1, nullptr, true},
    {recording, &O::splitSize_MB, L"SplitMegabytes", L"E&very", L"MB", 500, 1, 100'000, &O::splitBySize, true},
    {recording, &O::neverReplace, L"NeverReplace", L"&Never replace a recording", nullptr, 0, 0, 1, nullptr},
    {recording, &O::flushPeriod_s, L"FlushPeriod", L"&Flush to the disk every (0: never)", L"s", 2, 0, 60, nullptr, true},
    {recording, &O::recordAgain, L"RecordAgain", L"&Record on when a full disk has space again", nullptr, 0, 0, 1, nullptr},
    {recording, &O::beepWhenEnded, L"BeepWhenEnded", L"&Beep when the disk ends a recording", nullptr, 0, 0, 1, nullptr},
    {recording, &O::eventLog, L"EventLog", L"Event &log in the working folder (events.csv)", nullptr, 0, 0, 1, nullptr},
    {recording, &O::askBeforeClosing, L"AskBeforeClosing", L"&Ask before closing while recording", nullptr, 0, 0, 1, nullptr},

    {outputs, &O::sendSerial, L"OutputSerial", L"Depth to a &serial port", nullptr, 0, 0, 1, nullptr, true},
    {outputs, &O::serialPort, L"OutputSerialPort", L"&COM port", L"", 1, 1, 256, &O::sendSerial},
    {outputs, &O::serialSpeed_bps, L"OutputSerialSpeed", L"S&peed", L"bps", 4'800, 1'200, 3'000'000, &O::sendSerial},
    {outputs, &O::sendUdp, L"OutputUdp", L"Depth b&y UDP", nullptr, 0, 0, 1, nullptr, true},
    {outputs, nullptr, L"OutputUdpAddress", L"&Address", nullptr, 0, 0, 0, &O::sendUdp, false, &O::udpAddress},
    {outputs, &O::udpPort, L"OutputUdpPort", L"P&ort", L"", 10'110, 1, 65'535, &O::sendUdp},
    {outputs, &O::sendTcp, L"OutputTcp", L"Depth to &TCP clients", nullptr, 0, 0, 1, nullptr, true},
    {outputs, nullptr, L"OutputTcpAddress", L"A&ddress", nullptr, 0, 0, 0, &O::sendTcp, false, &O::tcpAddress},
    {outputs, &O::tcpPort, L"OutputTcpPort", L"Po&rt", L"", 10'110, 1, 65'535, &O::sendTcp},
    {sentences, &O::sendDbt, L"OutputDbt", L"$SDDBT, depth &below the transducer", nullptr, 1, 0, 1, nullptr},
    {sentences, &O::sendDpt, L"OutputDpt", L"$SDDPT, &depth and offset", nullptr, 0, 0, 1, nullptr},
    {sentences, &O::transducerOffset_cm, L"OutputOffset", L"Transducer &offset", L"cm", 0, -5'000, 5'000, &O::sendDpt},
    {sentences, &O::sendMtw, L"OutputMtw", L"$SDMTW, &temperature", nullptr, 0, 0, 1, nullptr},
    {sentences, &O::sendXdr, L"OutputXdr", L"$SDXDR, &pitch and roll", nullptr, 0, 0, 1, nullptr},
    {sentences, &O::sendGga, L"OutputGga", L"&GGA of the receiver", nullptr, 0, 0, 1, nullptr},
    {sentences, &O::sendRmc, L"OutputRmc", L"&RMC of the receiver", nullptr, 0, 0, 1, nullptr},
    {sentences, &O::outputRate, L"OutputRate", L"Pi&ngs, at most", L"/s", 10, 1, 50, nullptr},
    {sentences, &O::sendLowChannel, L"OutputLow", L"Of both channels the &low one", nullptr, 0, 0, 1, nullptr},

    {display, &O::noDataOverEchogram, L"NoDataOverEchogram", L"\"&NO DATA\" over the echogram", nullptr, 0, 0, 1, nullptr},
    {display, &O::colours, L"Colours", L"&Colours", nullptr, kStandardColours, 0, kBlackOnWhite, nullptr, false, nullptr, kSchemes},
    {display, &O::contrastLower_percent, L"ContrastLower", L"Weakest sho&wn", L"%", 0, 0, 95, nullptr, false, nullptr, {}, true},
    {display, &O::contrastUpper_percent, L"ContrastUpper", L"&Full colour at", L"%", 100, 5, 100, nullptr, false, nullptr, {}, true},
    {display, &O::depthUnit, L"DepthUnit", L"Depths &in", nullptr, kMetres, 0, kFeet, nullptr, false, nullptr, kUnits},
    {display, &O::timeLabels, L"TimeLabels", L"&Times", nullptr, kSecondsAgo, 0, kClockLocal, nullptr, false, nullptr, kTimes},
    {display, &O::depthTrace, L"DepthTrace", L"The &depth as a line over the echogram", nullptr, 0, 0, 1, nullptr},
    {display, &O::gapLines, L"GapLines", L"A &line where a run begins or goes on", nullptr, 0, 0, 1, nullptr},
    {display, &O::gapsBlack, L"GapsBlack", L"&Black where no ping came for 2 s", nullptr, 0, 0, 1, nullptr},
    {display, &O::readOutInShots, L"ReadOutInShots", L"The &read-out in pictures too", nullptr, 0, 0, 1, nullptr},

    {depth, &O::depthWindow, L"DepthWindow", L"Depth in &large figures", nullptr, 0, 0, 1, nullptr},
    {depth, &O::alarmShallow, L"AlarmShallow", L"Alarm when it is &shallow", nullptr, 0, 0, 1, nullptr},
    {depth, &O::shallow_cm, L"AlarmShallowDepth", L"Less &than", L"cm", 200, 10, 1'000'000, &O::alarmShallow},
    {depth, &O::alarmDeep, L"AlarmDeep", L"Alarm when it is &deep", nullptr, 0, 0, 1, nullptr},
    {depth, &O::deep_cm, L"AlarmDeepDepth", L"&More than", L"cm", 5'000, 10, 1'000'000, &O::alarmDeep},
    {depth, &O::alarmBeep, L"AlarmBeep", L"&Beep", nullptr, 0, 0, 1, nullptr},

    {playback, &O::playbackBar, L"PlaybackBar", L"&Playback bar", nullptr, 0, 0, 1, nullptr},
    {playback, &O::skipGaps, L"SkipGaps", L"S&kip gaps of more than 5 s", nullptr, 0, 0, 1, &O::playbackBar},
};
// clang-format on

constexpr OptionAddress kThisComputer{L"127.0.0.1"};

void MakeStandard(const OptionRow& row, Options& options) {
  if (row.address != nullptr) {
    options.*row.address = kThisComputer;
  } else {
    options.*row.value = row.standard;
  }
}

void Load(const OptionRow& row, Options& options) {
  MakeStandard(row, options);
  if (row.address != nullptr) {
    OptionAddress stored{};
    uint32_t ip = 0;
    const bool fits =
        ReadRegistryText(kOptionsKey, row.name, stored.text, 2 * sizeof stored.text / sizeof(wchar_t)) &&
        ParseAddress(stored.text, ip);
    if (fits) options.*row.address = stored;
    return;
  }
  uint32_t stored = 0;
  if (!ReadRegistryNumber(kOptionsKey, row.name, stored)) return;
  const auto value = std::bit_cast<int32_t>(stored);
  if (value >= row.least && value <= row.most) options.*row.value = value;
}

void Save(const OptionRow& row, const Options& options) {
  if (row.address != nullptr) {
    static_cast<void>(WriteRegistryText(kOptionsKey, row.name, (options.*row.address).text));
  } else {
    static_cast<void>(
        WriteRegistryNumber(kOptionsKey, row.name, std::bit_cast<uint32_t>(options.*row.value)));
  }
}

}  // namespace

const wchar_t* NameOfPage(OptionPage page) {
  constexpr const wchar_t* kNames[kOptionPages] = {L"Link",    L"Recording", L"Outputs", L"Sentences",
                                                   L"Display", L"Depth",     L"Playback"};
  return kNames[static_cast<size_t>(page)];
}

std::span<const OptionRow> OptionRows() {
  return kRows;
}

Options StandardOptions() {
  Options options{};
  for (const OptionRow& row : kRows) MakeStandard(row, options);
  return options;
}

void ResetPage(OptionPage page, Options& options) {
  for (const OptionRow& row : kRows) {
    if (row.page == page) MakeStandard(row, options);
  }
}

Options LoadOptions() {
  Options options{};
  for (const OptionRow& row : kRows) Load(row, options);
  return options;
}

void SaveOptions(const Options& options) {
  for (const OptionRow& row : kRows) Save(row, options);
}

}  // namespace tw

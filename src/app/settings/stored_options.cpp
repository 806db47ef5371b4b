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
    {link, &O::keepRunGoing, L"KeepRunGoing", L"&Keep the run going when the link is lost",
     L"The run waits for its device and goes on in the same files, instead of ending with \"Connection lost!\". The status bar tells since when, and why.",
     nullptr, 0, 0, 1, nullptr, true},
    {link, &O::silence_s, L"LinkSilence", L"Lost without &data for",
     L"Longer only for a device that pings less than once in three seconds.",
     L"s", 10, 5, 60, &O::keepRunGoing, true},
    {link, &O::beepWhenLost, L"BeepWhenLost", L"&Beep when the link is lost",
     L"Once, when it is; the window flashes in any case.",
     nullptr, 0, 0, 1, &O::keepRunGoing},
    {link, &O::receiverSilence_s, L"ReceiverSilence", L"Receiver &silent after",
     L"From then on the lamp calls the GPS receiver silent. Set it above the time between two of its positions.",
     L"s", 5, 2, 60, nullptr, true},
    {link, &O::dropSilentPosition, L"DropSilentPosition", L"No &position from a silent receiver",
     L"Else the pings that follow are recorded at the place where the receiver fell silent.",
     nullptr, 0, 0, 1, nullptr, true},
    {link, &O::startByItself, L"StartByItself", L"S&tart by itself when the program starts",
     L"As soon as the ports that were used last are there: after a power cut the boat computer records again without anybody. A change counts from the next start of the program on.",
     nullptr, 0, 0, 1, nullptr},
    {link, &O::giveUpWriting, L"GiveUpWriting", L"&Give up writing to a port after 10 s",
     L"Else a cable or an adapter that takes no bytes keeps the window busy for as long as it likes.",
     nullptr, 0, 0, 1, nullptr, true},

    {recording, &O::splitByTime, L"SplitByTime", L"A new record file by &time",
     L"At full multiples of the clock: each full hour. No ping is lost between two files.",
     nullptr, 0, 0, 1, nullptr, true},
    {recording, &O::splitPeriod_min, L"SplitMinutes", L"&Every",
     L"60 is a file for each hour of the clock, 1440 one for each day.",
     L"min", 60, 1, 1'440, &O::splitByTime, true},
    {recording, &O::splitBySize, L"SplitBySize", L"A new record file by &size",
     L"No ping is lost or torn; both files of a pair change at the same ping.",
     nullptr, 0, 0, 1, nullptr, true},
    {recording, &O::splitSize_MB, L"SplitMegabytes", L"E&very",
     L"Of both files of a pair together. A disk formatted as FAT32 takes none above 4294.",
     L"MB", 500, 1, 100'000, &O::splitBySize, true},
    {recording, &O::neverReplace, L"NeverReplace", L"&Never replace a recording",
     L"A name that exists waits for the next second. When the clock is set back for the winter, an hour has the same names twice.",
     nullptr, 0, 0, 1, nullptr},
    {recording, &O::flushPeriod_s, L"FlushPeriod", L"&Flush to the disk every (0: never)",
     L"What a power cut can cost. 0 leaves it to Windows when to write.",
     L"s", 2, 0, 60, nullptr, true},
    {recording, &O::recordAgain, L"RecordAgain", L"&Record on when a full disk has space again",
     L"In a new file; the disk is asked every 10 s.",
     nullptr, 0, 0, 1, nullptr},
    {recording, &O::beepWhenEnded, L"BeepWhenEnded", L"&Beep when the disk ends a recording",
     L"Once. The lamp tells it in any case.",
     nullptr, 0, 0, 1, nullptr},
    {recording, &O::eventLog, L"EventLog", L"Event &log in the working folder (events.csv)",
     L"One line for each start, stop, file, lost link and mark, with its UTC: what happened while nobody looked.",
     nullptr, 0, 0, 1, nullptr},
    {recording, &O::askBeforeClosing, L"AskBeforeClosing", L"&Ask before closing while recording",
     L"A question when the window is closed while a run records. The end of the Windows session is not held up.",
     nullptr, 0, 0, 1, nullptr},

    {outputs, &O::sendSerial, L"OutputSerial", L"Depth to a &serial port",
     L"To an autopilot or a plotter with an NMEA 0183 input. The page Sentences says what is sent.",
     nullptr, 0, 0, 1, nullptr, true},
    {outputs, &O::serialPort, L"OutputSerialPort", L"&COM port",
     L"Its number. The port of the echosounder or of the GPS receiver cannot be chosen.",
     L"", 1, 1, 256, &O::sendSerial},
    {outputs, &O::serialSpeed_bps, L"OutputSerialSpeed", L"S&peed",
     L"NMEA 0183 instruments listen at 4800. What does not fit is left out, and what is sent is the newest ping.",
     L"bps", 4'800, 1'200, 3'000'000, &O::sendSerial},
    {outputs, &O::sendUdp, L"OutputUdp", L"Depth b&y UDP",
     L"A datagram for each sentence, to a chart program here or on another computer, whether anybody listens or not.",
     nullptr, 0, 0, 1, nullptr, true},
    {outputs, nullptr, L"OutputUdpAddress", L"&Address",
     L"127.0.0.1 is this computer; one that ends in .255 mostly reaches all of a network.",
     nullptr, 0, 0, 0, &O::sendUdp, false, &O::udpAddress},
    {outputs, &O::udpPort, L"OutputUdpPort", L"P&ort",
     L"The one at which the chart program waits, mostly 10110.",
     L"", 10'110, 1, 65'535, &O::sendUdp},
    {outputs, &O::sendTcp, L"OutputTcp", L"Depth to &TCP clients",
     L"To up to eight programs that connect to this one. One that does not read is sent away after two seconds.",
     nullptr, 0, 0, 1, nullptr, true},
    {outputs, nullptr, L"OutputTcpAddress", L"A&ddress",
     L"Where clients are waited for: 127.0.0.1 lets in this computer alone, 0.0.0.0 the whole network.",
     nullptr, 0, 0, 0, &O::sendTcp, false, &O::tcpAddress},
    {outputs, &O::tcpPort, L"OutputTcpPort", L"Po&rt",
     L"Type the same one into the client. Windows asks once whether the program may be reached.",
     L"", 10'110, 1, 65'535, &O::sendTcp},
    {sentences, &O::sendDbt, L"OutputDbt", L"$SDDBT, depth &below the transducer",
     L"What nearly every instrument knows. A ping without a bottom sends nothing, and nothing older than 2 s is sent.",
     nullptr, 1, 0, 1, nullptr},
    {sentences, &O::sendDpt, L"OutputDpt", L"$SDDPT, &depth and offset",
     L"In metres, with the transducer\u2019s offset and the range. Instruments that know it need no $SDDBT.",
     nullptr, 0, 0, 1, nullptr},
    {sentences, &O::transducerOffset_cm, L"OutputOffset", L"Transducer &offset",
     L"Above 0: from the transducer up to the water line. Below 0: down to the keel. Whoever reads the sentence adds it.",
     L"cm", 0, -5'000, 5'000, &O::sendDpt},
    {sentences, &O::sendMtw, L"OutputMtw", L"$SDMTW, &temperature",
     L"Of the water, where the device tells it.",
     nullptr, 0, 0, 1, nullptr},
    {sentences, &O::sendXdr, L"OutputXdr", L"$SDXDR, &pitch and roll",
     L"Where the device has a sensor for them.",
     nullptr, 0, 0, 1, nullptr},
    {sentences, &O::sendGga, L"OutputGga", L"&GGA of the receiver",
     L"Ahead of the depth that belongs to it, as long as the receiver keeps its position up.",
     nullptr, 0, 0, 1, nullptr},
    {sentences, &O::sendRmc, L"OutputRmc", L"&RMC of the receiver",
     L"Position, speed and course. The receiver must send GGA too.",
     nullptr, 0, 0, 1, nullptr},
    {sentences, &O::outputRate, L"OutputRate", L"Pi&ngs, at most",
     L"At 4800 bps about ten pings of three short sentences fit into a second.",
     L"/s", 10, 1, 50, nullptr},
    {sentences, &O::sendLowChannel, L"OutputLow", L"Of both channels the &low one",
     L"Of a device that runs with both frequencies; else the depth of the high one is sent.",
     nullptr, 0, 0, 1, nullptr},

    {display, &O::noDataOverEchogram, L"NoDataOverEchogram", L"\"&NO DATA\" over the echogram",
     L"Over the newest columns, after 3 s and three ping intervals without a ping: so nobody takes an old depth for the present one.",
     nullptr, 0, 0, 1, nullptr},
    {display, &O::colours, L"Colours", L"&Colours",
     L"Blue to yellow and violet to yellow are for all eyes: their lightness grows evenly with the echo. Black on white is for paper. Recordings are the same with all.",
     nullptr, kStandardColours, 0, kBlackOnWhite, nullptr, false, nullptr, kSchemes},
    {display, &O::contrastLower_percent, L"ContrastLower", L"Weakest sho&wn",
     L"What is weaker has the colour of the background. Raise it to clear the water of noise.",
     L"%", 0, 0, 95, nullptr, false, nullptr, {}, true},
    {display, &O::contrastUpper_percent, L"ContrastUpper", L"&Full colour at",
     L"What is as strong, or stronger, has the strongest colour. Lower it to bring out weak layers.",
     L"%", 100, 5, 100, nullptr, false, nullptr, {}, true},
    {display, &O::depthUnit, L"DepthUnit", L"Depths &in",
     L"Of all depths and ranges that the main window shows. The device, its settings, files and outputs stay metric.",
     nullptr, kMetres, 0, kFeet, nullptr, false, nullptr, kUnits},
    {display, &O::timeLabels, L"TimeLabels", L"&Times",
     L"What stands at the time grid: the age of the column, or the time of its ping.",
     nullptr, kSecondsAgo, 0, kClockLocal, nullptr, false, nullptr, kTimes},
    {display, &O::depthTrace, L"DepthTrace", L"The &depth as a line over the echogram",
     L"Shows whether the device follows the bottom or a fish; broken where a ping has no bottom.",
     nullptr, 0, 0, 1, nullptr},
    {display, &O::gapLines, L"GapLines", L"A &line where a run begins or goes on",
     L"With its clock: Start, Apply, a link that has come back.",
     nullptr, 0, 0, 1, nullptr},
    {display, &O::gapsBlack, L"GapsBlack", L"&Black where no ping came for 2 s",
     L"Else a pause is filled with the ping behind it and looks like a level bottom. Holds for pings from now on.",
     nullptr, 0, 0, 1, nullptr},
    {display, &O::readOutInShots, L"ReadOutInShots", L"The &read-out in pictures too",
     L"Depth, time and position under the cursor, in screenshots; else they show the echogram alone.",
     nullptr, 0, 0, 1, nullptr},

    {depth, &O::depthWindow, L"DepthWindow", L"Depth in &large figures",
     L"In a window that stays on top, as large as you draw it. Grey after 2 s without a ping, dashes after 5 s.",
     nullptr, 0, 0, 1, nullptr},
    {depth, &O::alarmShallow, L"AlarmShallow", L"Alarm when it is &shallow",
     L"Red over the newest columns and in the large figures, while a device runs; a recording raises none.",
     nullptr, 0, 0, 1, nullptr},
    {depth, &O::shallow_cm, L"AlarmShallowDepth", L"Less &than",
     L"Below the transducer: its own depth under the water line is not added.",
     L"cm", 200, 10, 1'000'000, &O::alarmShallow},
    {depth, &O::alarmDeep, L"AlarmDeep", L"Alarm when it is &deep",
     L"Red over the newest columns and in the large figures, while a device runs; a recording raises none.",
     nullptr, 0, 0, 1, nullptr},
    {depth, &O::deep_cm, L"AlarmDeepDepth", L"&More than",
     L"Below the transducer: its own depth under the water line is not added.",
     L"cm", 5'000, 10, 1'000'000, &O::alarmDeep},
    {depth, &O::alarmBeep, L"AlarmBeep", L"&Beep",
     L"Each second, as long as an alarm lasts.",
     nullptr, 0, 0, 1, nullptr},

    {playback, &O::playbackBar, L"PlaybackBar", L"&Playback bar",
     L"Pace, times, a jump to a time, and the whole recording in one strip, below the echogram.",
     nullptr, 0, 0, 1, nullptr},
    {playback, &O::skipGaps, L"SkipGaps", L"S&kip gaps of more than 5 s",
     L"They are not waited for when a recording is played at a pace of its own time.",
     nullptr, 0, 0, 1, &O::playbackBar},
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

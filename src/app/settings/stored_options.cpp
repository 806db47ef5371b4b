#include "app/settings/stored_options.h"

#include "platform/registry.h"

namespace tw {
namespace {

using O = Options;
using enum OptionPage;

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

    {display, &O::noDataOverEchogram, L"NoDataOverEchogram", L"\"&NO DATA\" over the echogram", nullptr, 0, 0, 1, nullptr},
};
// clang-format on

int32_t Load(const OptionRow& row) {
  uint32_t stored = 0;
  if (!ReadRegistryNumber(kOptionsKey, row.name, stored)) return row.standard;
  const auto least = static_cast<uint32_t>(row.least);
  const auto most = static_cast<uint32_t>(row.most);
  return stored >= least && stored <= most ? static_cast<int32_t>(stored) : row.standard;
}

}  // namespace

const wchar_t* NameOfPage(OptionPage page) {
  constexpr const wchar_t* kNames[kOptionPages] = {L"Link", L"Recording", L"Outputs", L"Display"};
  return kNames[static_cast<size_t>(page)];
}

std::span<const OptionRow> OptionRows() {
  return kRows;
}

Options StandardOptions() {
  Options options{};
  for (const OptionRow& row : kRows) options.*row.value = row.standard;
  return options;
}

void ResetPage(OptionPage page, Options& options) {
  for (const OptionRow& row : kRows) {
    if (row.page == page) options.*row.value = row.standard;
  }
}

Options LoadOptions() {
  Options options{};
  for (const OptionRow& row : kRows) options.*row.value = Load(row);
  return options;
}

void SaveOptions(const Options& options) {
  for (const OptionRow& row : kRows) {
    static_cast<void>(WriteRegistryNumber(kOptionsKey, row.name, static_cast<uint32_t>(options.*row.value)));
  }
}

}  // namespace tw

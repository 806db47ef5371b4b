#include "app/window/run_faults.h"

#include <algorithm>
#include <iterator>

#include "app/window/commands.h"
#include "app/window/ui.h"
#include "base/shared_value.h"
#include "base/text_format.h"
#include "platform/system_error.h"

namespace tw {
namespace {

enum class Told : uint8_t { beforeClosing, afterClosing };

// What the program has open when the fault comes.
enum class Open : uint8_t { nothingOrPorts, run };

struct Row {
  RunFault fault;
  const wchar_t* text;  // null: the system's own
  const wchar_t* caption;
  BoxIcon icon;
  Told told;
  Open open;
};

constexpr wchar_t kNotConnected[] = L"Echosounder is not connected";
constexpr wchar_t kUnreadable[] = L"Unable to read settings form the Echosounder";
constexpr wchar_t kDualOld[] = L"Sonarmite_old fortmat is not support Dual_mode";
constexpr wchar_t kNoWorker[] = L"Unable to run working thread";
constexpr wchar_t kNoGpsWorker[] = L"Unable to run GPS working thread";
constexpr wchar_t kError[] = L"Error";

using enum BoxIcon;
using enum Told;
using enum Open;

// clang-format off
constexpr Row kRows[] = {
    {RunFault::notConnected,        kNotConnected,       kError,  error,       beforeClosing, nothingOrPorts},
    {RunFault::deviceRefused,       nullptr,             nullptr, none,        beforeClosing, nothingOrPorts},
    {RunFault::noPrompt,            kNotConnected,       kError,  error,       beforeClosing, nothingOrPorts},
    {RunFault::receiverRefused,     nullptr,             nullptr, none,        afterClosing,  nothingOrPorts},
    {RunFault::unidentified,        kUnreadable,         kError,  error,       beforeClosing, nothingOrPorts},
    {RunFault::noPromptInRun,       kNotConnected,       kError,  error,       beforeClosing, run},
    {RunFault::unreadable,          kUnreadable,         kError,  error,       beforeClosing, run},
    {RunFault::speedUnheard,        kNotConnected,       kError,  error,       beforeClosing, run},
    {RunFault::speedRefused,        nullptr,             nullptr, none,        beforeClosing, run},
    {RunFault::dualOldRefused,      kDualOld,            L"",     information, beforeClosing, nothingOrPorts},
    {RunFault::noAcquisitionThread, kNoWorker,           kError,  error,       beforeClosing, run},
    {RunFault::noGpsThread,         kNoGpsWorker,        kError,  error,       beforeClosing, run},
    {RunFault::linkLost,            L"Connection lost!", kError,  error,       beforeClosing, run},
};
// clang-format on

constexpr const Row& RowOf(RunFault fault) {
  return *std::find_if(std::begin(kRows), std::end(kRows),
                       [&](const Row& row) { return row.fault == fault; });
}
static_assert(std::size(kRows) == static_cast<size_t>(RunFault::linkLost));

void Show(AppState& state, const Row& row, uint32_t systemError = 0) {
  if (row.text == nullptr) return ShowSystemError(state, systemError);
  ShowBox(state, row.text, row.caption, row.icon);
}

void Close(AppState& state, const Row& row, const ElapsedLog* log) {
  if (row.open == run) return StopRun(state);
  CloseAfter(state, row.fault, log);
}

}  // namespace

bool IsConnected(AppState& state) {
  if (LoadShared(state.devicePort) != Handle::invalid && LoadShared(state.linkAway) == 0) return true;
  Show(state, RowOf(RunFault::notConnected));
  return false;
}

void TellFault(AppState& state, RunResult result, const ElapsedLog* log) {
  if (result.fault == RunFault::noAcquisitionThread) EndWithoutWorker(state);
  const Row& row = RowOf(result.fault);
  if (row.told == afterClosing) Close(state, row, log);
  Show(state, row, result.systemError);
  if (row.told == beforeClosing) Close(state, row, log);
}

void TellFaultQuietly(AppState& state, RunResult result, const ElapsedLog* log) {
  const Row& row = RowOf(result.fault);
  wchar_t text[kStatusTextSize];
  if (row.text == nullptr) {
    SystemErrorText(result.systemError, text);
  } else {
    CopyWide(text, row.text);
  }
  Close(state, row, log);
  SetStatusText(state, StatusPart::device, text);
}

void EndWithoutWorker(AppState& state) {
  Show(state, RowOf(RunFault::noAcquisitionThread));
  EndProcess(1);
}

}  // namespace tw

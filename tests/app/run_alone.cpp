// A run without any user interface: starts on the given ports, records into a folder for some seconds, and
// stops. Ends with 0 when all of it went well; otherwise with the number of the fault.
//
// usage: run_alone DEVICE SPEED RECEIVER SPEED FOLDER SECONDS    (RECEIVER "-": none)
#include <cstdio>
#include <cstdlib>
#include <string>

#include "app/run/record_set_up.h"
#include "app/run/run_control.h"
#include "app/run/second_tick.h"
#include "app/state/posts.h"
#include "base/text_format.h"
#include "platform/clock.h"

namespace tw {

// What a user interface would show goes to the standard output, as far as it is worth a line.
void PostStatusText(AppState&, StatusPart, const wchar_t*) {}
void PostProgress(AppState&, const ProgressBlock&) {}
void PostOwnText(AppState&, StatusPart, OwnTexts&, const wchar_t*) {}
bool PostConversionEnd(AppState&, bool) {
  return true;
}
void TellRunChanged(AppState& state, RunChange change) {
  if (change == RunChange::identified) std::printf("identified %s\n", state.settings.identity);
  if (change == RunChange::running) std::printf("running\n");
  if (change == RunChange::idle) std::printf("idle\n");
}

namespace {

void Choose(PortChoice& port, const char* name, const char* speed) {
  if (std::string(name) != "-") WidenText(port.name, name);
  port.speed_bps = std::atoi(speed);
}

AppState* MakeRecord(const char* folder) {
  AppState* const state = AllocateState();
  if (state == nullptr) return nullptr;
  SetStartUpValues(*state);
  WidenText(state->workingFolder, folder);
  const bool made = MakeRunEvents(*state) && AllocateRings(*state) && MakeLocks(*state);
  return made ? state : nullptr;
}

// False when the link is lost before the time is over.
bool LetRun(AppState& state, int seconds) {
  for (int i = 0; i < seconds; ++i) {
    SleepMilliseconds(1000);
    if (TickSecond(state, MillisecondClock()).linkLost) return false;
  }
  return true;
}

RunFault RecordFor(AppState& state, const RunChoices& choices, int seconds) {
  const ElapsedLog log;
  const RunResult begun = BeginRun(state, choices, log);
  if (!begun.Succeeded()) {
    CloseAfter(state, begun.fault, &log);
    return begun.fault;
  }
  const bool lasted = LetRun(state, seconds);
  EndRun(state);
  return lasted ? RunFault::none : RunFault::linkLost;
}

}  // namespace
}  // namespace tw

int main(int argc, char** argv) {
  constexpr int kWrongUse = 64;
  if (argc != 7) return kWrongUse;
  tw::AppState* const state = tw::MakeRecord(argv[5]);
  if (state == nullptr) return kWrongUse;
  tw::RunChoices choices{};
  tw::Choose(choices.device, argv[1], argv[2]);
  tw::Choose(choices.receiver, argv[3], argv[4]);
  choices.record = true;
  const tw::RunFault fault = tw::RecordFor(*state, choices, std::atoi(argv[6]));
  std::printf("pings %u\n", static_cast<unsigned>(tw::LoadShared(tw::globals.pingCounter)));
  std::fflush(stdout);
  std::_Exit(static_cast<int>(fault));  // the receiver's worker may outlive a run, and with it the record
}

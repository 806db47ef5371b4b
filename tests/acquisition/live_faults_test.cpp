// Damaged streams of the modes without samples, on the virtual clock: two thousand messages of the virtual
// echosounder, one in twenty of them hit by a fault, all recorded. A fault costs its ping and at most the
// next one; every other message stands in the file byte for byte, and nothing else happens.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "acquisition/altimeter_worker.h"
#include "acquisition/nmea_worker.h"
#include "base/shared_value.h"
#include "platform/clock.h"
#include "platform/host/virtual_clock.h"
#include "simulator/virtual_echosounder.h"
#include "tests/acquisition/damaged_stream.h"
#include "tests/acquisition/live_program.h"
#include "tests/acquisition/pulse_watch.h"

namespace tw {
namespace {

using sim::DeviceFamily;
using sim::StreamFault;
using test::Fault;
using test::kFaults;
using test::ListeningPeer;
using test::Says;
using test::SentMessages;

constexpr size_t kMessages = 2'000;

struct Mode {
  friend void PrintTo(const Mode& mode, std::ostream* out) { *out << mode.name; }
  const char* name;
  DeviceFamily family;
  int32_t mode;
  ThreadBody worker;
  test::Says says;
};

constexpr Mode kModes[] = {
    {"FirstSimple", DeviceFamily::first, 1, ReportingSimpleWorker, Says::altitude},
    {"FirstNmea", DeviceFamily::first, 3, FirstFamilyNmeaWorker, Says::attitude},
    {"Deso25", DeviceFamily::first, 6, Deso25Worker, Says::altitude},
    {"Dual", DeviceFamily::first, 7, DualTextWorker, Says::temperature},
    {"FirstDfx", DeviceFamily::first, 8, SonarmiteDfxWorker, Says::altitude},
    {"FirstOld", DeviceFamily::first, 9, SonarmiteOldWorker, Says::altitude},
    {"SecondSimple", DeviceFamily::second, 1, SimpleWorker, Says::altitude},
    {"SecondNmea", DeviceFamily::second, 3, SecondFamilyNmeaWorker, Says::attitude},
    {"SecondPsa916", DeviceFamily::second, 7, Psa916Worker, Says::altitude},
    {"SecondAltiPlusTemp", DeviceFamily::second, 8, AltiPlusTempWorker, Says::temperature},
    {"SecondDfx", DeviceFamily::second, 9, SonarmiteDfxWorker, Says::altitude},
    {"SecondOld", DeviceFamily::second, 10, SonarmiteOldWorker, Says::altitude},
};

// The third family sends what the second does.
constexpr Mode kThirdFamilyModes[] = {
    {"ThirdSimple", DeviceFamily::third, 1, SimpleWorker, Says::altitude},
    {"ThirdNmea", DeviceFamily::third, 3, SecondFamilyNmeaWorker, Says::attitude},
    {"ThirdPsa916", DeviceFamily::third, 7, Psa916Worker, Says::altitude},
    {"ThirdAltiPlusTemp", DeviceFamily::third, 8, AltiPlusTempWorker, Says::temperature},
    {"ThirdDfx", DeviceFamily::third, 9, SonarmiteDfxWorker, Says::altitude},
    {"ThirdOld", DeviceFamily::third, 10, SonarmiteOldWorker, Says::altitude},
};

// What was recorded of each ping, without its position. NMEA records without the line in front.
std::vector<std::string> RecordsOf(std::string_view file, bool nmea) {
  std::vector<std::string> records;
  file.remove_prefix(std::string_view("INFO\r\n").size());
  for (;;) {
    const size_t end = file.find("$GPGGA,000000.00,");
    if (end == file.npos) return records;
    const size_t front = nmea ? file.find("\r\n") + 2 : 0;
    records.emplace_back(file.substr(front, end - front));
    file.remove_prefix(end);
    for (int sentence = 0; sentence < 2; ++sentence) file.remove_prefix(file.find("\r\n") + 2);
  }
}

class LiveFaults : public testing::TestWithParam<std::tuple<Mode, Fault>> {};

TEST_P(LiveFaults, CostTheirPingAndAtMostTheNext) {
  const auto& [mode, fault] = GetParam();
  const VirtualClock clock(1'700'000'000'000);
  SentMessages account;
  sim::SounderOptions options;
  options.family = mode.family;
  options.outputMode = mode.mode;
  options.baud = 921'600;
  options.pingsPerSecond = 20;
  options.streaming = true;
  if (fault.fault != StreamFault::none) options.faults.stream = {fault.fault};
  options.faults.streamRate = 0.05;
  sim::VirtualEchosounder device(options, &account);
  ListeningPeer peer(device);
  test::LiveProgram program(peer);
  globals.deviceFamily = static_cast<int32_t>(mode.family);
  program.OpenFile(RecordChannel::a, L"a.log");
  Signal(program.State().recordingEvent);
  program.StartWorker(mode.worker);
  AppState& state = program.State();
  test::PulseWatch watch(*state.ringA, state.ringIndexA, state.ringLockA);
  watch.says = mode.says;
  while (account.sent.size() < kMessages) {
    SleepMilliseconds(20);
    // A damaged message makes none or other values, so pings are compared in a clean stream.
    if (fault.fault == StreamFault::none) static_cast<void>(watch.Look(account.sent));
  }
  SleepMilliseconds(20);
  EXPECT_EQ(WaitForThread(state.acquisitionThread, 0), ThreadWait::timedOut);
  EXPECT_EQ(LoadShared(state.linkLost), 0);
  EXPECT_TRUE(IsRecordFileOpen(state, RecordChannel::a));
  program.StopWorker();

  const std::vector<std::string> records = RecordsOf(program.FileContent(L"a.log"), mode.mode == 3);
  EXPECT_EQ(LoadShared(globals.pingCounter), records.size());
  size_t damaged = 0;
  size_t record = 0;
  bool afterDamage = false;
  for (const sim::SentPing& sent : account.sent) {
    if (sent.offset + sent.size > peer.bytes.size()) break;  // not all of the last one was fetched
    const std::string message = peer.bytes.substr(sent.offset, sent.size);
    const bool owed = sent.intact && !afterDamage;
    afterDamage = sent.faulty;
    damaged += sent.faulty ? 1 : 0;
    if (!owed) continue;
    while (record < records.size() && records[record] != message) ++record;
    ASSERT_LT(record, records.size()) << "not recorded: ping " << sent.number << ' ' << message;
    ++record;
  }
  EXPECT_LE(records.size(), record + 1) << "behind the last message";
  EXPECT_LE(records.size(), account.sent.size() + damaged);
  EXPECT_GE(records.size() + 2 * damaged, account.sent.size());
  if (fault.fault == StreamFault::none) {
    EXPECT_EQ(records.size(), account.sent.size());
    EXPECT_GE(watch.Seen() + 1, kMessages);
  }
  RecordProperty("sent", static_cast<int>(account.sent.size()));
  RecordProperty("damaged", static_cast<int>(damaged));
  RecordProperty("received", static_cast<int>(records.size()));
}

std::string NameOf(const testing::TestParamInfo<std::tuple<Mode, Fault>>& each) {
  return std::string(std::get<0>(each.param).name) + std::get<1>(each.param).name;
}

INSTANTIATE_TEST_SUITE_P(Modes, LiveFaults,
                         testing::Combine(testing::ValuesIn(kModes), testing::ValuesIn(kFaults)), NameOf);
INSTANTIATE_TEST_SUITE_P(ThirdFamily, LiveFaults,
                         testing::Combine(testing::ValuesIn(kThirdFamilyModes), testing::Values(kFaults[0])),
                         NameOf);

}  // namespace
}  // namespace tw

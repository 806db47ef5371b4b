// What the log of events holds of a run, and what it does when the disk does not do its part.
#include "app/state/event_log.h"

#include <regex>

#include "acquisition/link_return.h"
#include "acquisition/ping_ring.h"
#include "app/run/second_tick.h"
#include "app/window/commands.h"
#include "app/window/event_mark.h"
#include "app/window/file_commands.h"
#include "app/window/start_up.h"
#include "platform/clock.h"
#include "platform/virtual/faults.h"
#include "tests/app/run_control_fixture.h"

namespace tw::test {
namespace {

const std::regex kTime("2025-03-14T[0-9:.]{12}Z");

class Events : public RunControlTest {
 protected:
  Events() {
    Options options = state_->options;
    options.eventLog = 1;
    TakeOptions(*state_, options);
  }

  [[nodiscard]] std::string Log() const { return Content("events.csv"); }

  // Without what is another in each run: times, and sizes of files.
  [[nodiscard]] std::string Told() const {
    const std::string untimed = std::regex_replace(Log(), kTime, "T");
    return std::regex_replace(untimed, std::regex("[1-9][0-9]* pings, [1-9][0-9]* bytes"),
                              "N pings, N bytes");
  }
};

TEST_F(Events, OfARunStandInTheirOrder) {
  ConnectGps();
  StartQuickRun(3);
  ApplySettings(*state_);
  static_cast<void>(TickSecond(*state_, MillisecondClock()));
  static_cast<void>(TickSecond(*state_, MillisecondClock() - 3'000));
  static_cast<void>(TickSecond(*state_, MillisecondClock() - 1'100));
  for (const AwayFor away : {AwayFor::silence, AwayFor::port, AwayFor::nothing}) {
    StoreShared(state_->linkAway, static_cast<int32_t>(away));
    Run(1);
  }
  HangUpLine(kGpsLine);
  Run(2);
  HangUpLine(kDeviceLine);
  Run(3);
  const std::vector<std::string> files = RecordFiles();
  ASSERT_EQ(files.size(), 3u);
  EXPECT_EQ(files[2], "events.csv");
  const std::pair<const char*, std::string> events[] = {
      {"start", "COM5 921600 bit/s, ID VIRTUAL-0001, receiver COM6 4800 bit/s"},
      {"file opened", files[0]},
      {"file closed", files[0] + ", N pings, N bytes"},
      {"settings changed", "Apply: output 2, range 30000 mm, interval 0 ms, 921600 bit/s"},
      {"file opened", files[1]},
      {"clock", "+3.0 s"},
      {"lost", "no data"},
      {"back", ""},
      {"receiver lost", "its port has failed"},
      {"file closed", files[1] + ", N pings, N bytes"},
      {"lost", "the run ends"},
      {"stop", ""}};
  std::string lines = "UTC,event,detail\r\n";
  for (const auto& [event, detail] : events) lines += "T," + (event + (",\"" + detail)) + "\"\r\n";
  EXPECT_EQ(Told(), lines);
}

TEST_F(Events, EndWithTheProgram) {
  StartQuickRun(2, QuickSounder(2, true));
  BeginShutDown(*state_);
  std::string closed;
  for (const size_t i : {1u, 0u}) {  // the first channel's, then the second's
    const std::string content = Content(RecordFiles()[i]);
    size_t pings = 0;
    for (size_t at = 0; (at = content.find("##DataStart", at)) != content.npos; ++at) ++pings;
    closed += "T,file closed,\"" + RecordFiles()[i] + ", " + std::to_string(pings) + " pings, " +
              std::to_string(content.size()) + " bytes\"\r\n";
  }
  const std::string told = std::regex_replace(Log(), kTime, "T");
  EXPECT_TRUE(told.ends_with(closed + "T,program ended,\"\"\r\n")) << told << closed;
}

// A mark stands in the log although that is off, and in a playback at its own ping, whatever else was marked.
TEST_F(Events, MarksComeBackInAPlayback) {
  Options options = state_->options;
  options.eventLog = 0;
  TakeOptions(*state_, options);
  EXPECT_FALSE(TakeMoment(*state_).has_value()) << "nothing runs";
  ConnectGps();
  StartQuickRun(4);
  auto moment = TakeMoment(*state_);
  ASSERT_TRUE(moment.has_value());
  EXPECT_TRUE(moment->mark.hasDepth && moment->mark.hasPosition);
  SetMark(*state_, *moment, L"a \"wreck\", big");
  moment->mark.time_ms -= 3'600'000;
  SetMark(*state_, *moment, L"of another recording");
  EXPECT_EQ(globals.linesA.lines[globals.linesA.newest].mark, 2u);
  Run(4);
  StopRun(*state_);
  EXPECT_TRUE(
      std::regex_search(Log(), std::regex(",mark,\"1, ping [0-9]+, [0-9.]+ m, 35\\.[0-9]+ 129\\.[0-9]+, a "
                                          "\"\"wreck\"\", big\"\r\n")))
      << Log();
  const std::vector<std::string> files = RecordFiles();
  ASSERT_FALSE(files.empty());
  Ui().chosenFiles = {(records_ / files[0]).wstring()};
  PlayFiles(*state_);
  Run(5);
  ASSERT_EQ(globals.linesA.count, 1);
  const TimeLine& line = globals.linesA.lines[globals.linesA.newest];
  EXPECT_STREQ(line.word, L"a \"wreck\", big");
  // A ping's line stands where it was published, one slot ahead of its own.
  const int64_t age = state_->ringTimeA - line.ringTime + 1;
  const auto slot = static_cast<size_t>((state_->ringIndexA - age) % kRingSlots);
  EXPECT_EQ(LoadPingHeader(state_->ringA->slots[slot]).ping, moment->mark.ping);
  EndFileWorkers(*state_);
}

TEST_F(Events, OfTenMegabytesAreRenamedOnce) {
  WriteWhole(records_ / "events.csv", "full");
  std::filesystem::resize_file(records_ / "events.csv", kEventFileLimit_bytes - 10);
  WriteWhole(records_ / "events_old.csv", "older");
  LogEvent(*state_, "a", "he said \"b\",\r\nthen c");
  EXPECT_EQ(std::filesystem::file_size(records_ / "events_old.csv"), kEventFileLimit_bytes - 10);
  EXPECT_EQ(Told(), "UTC,event,detail\r\nT,a,\"he said \"\"b\"\",  then c\"\r\n");
}

TEST_F(Events, ThatCannotBeWrittenLeaveNoTornLine) {
  LogEvent(*state_, "a", "");
  const std::string before = Log();
  InjectFault({.point = FaultPoint::writeFile, .code = 28, .taken = 7});
  LogEvent(*state_, "b", "");
  EXPECT_EQ(Log(), before);
  InjectFault({.point = FaultPoint::openFile});
  LogEvent(*state_, "c", std::string(5'000, '"'));
  LogEvent(*state_, "d", std::string(5'000, '"'));
  const std::string after = Log();
  EXPECT_TRUE(after.starts_with(before) && after.ends_with("\"\"\"\r\n")) << after;
  EXPECT_LT(after.size(), before.size() + 1'024);
  EXPECT_EQ(after.find(",c,"), after.npos);
}

}  // namespace
}  // namespace tw::test

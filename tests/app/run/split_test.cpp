// A recording that goes on in new files: which there are, and that each ping stands in one of them.
#include <fstream>

#include "app/window/commands.h"
#include "base/calendar.h"
#include "base/text_format.h"
#include "platform/clock.h"
#include "platform/virtual/virtual_clock.h"
#include "tests/app/run_control_fixture.h"
#include "tests/sent_account.h"

namespace tw::test {
namespace {

class Split : public RunControlTest {
 protected:
  void Start(bool dual) {
    ConnectSounder(QuickSounder(2, dual), &account_);
    StartRun(*state_);
    ASSERT_NE(state_->acquisitionThread, Handle::null);
  }

  // The pings of all files whose names hold the word, in the order of the names.
  std::vector<uint64_t> Recorded(const char* word) {
    std::vector<uint64_t> hashes;
    for (const std::string& name : RecordFiles()) {
      if (name.find(word) == std::string::npos) continue;
      const std::string content = Content(name);
      std::string_view file = content;
      EXPECT_TRUE(file.starts_with("INFO:")) << name;
      file.remove_prefix(file.find("\r\n") + 2);
      EXPECT_FALSE(file.empty()) << name;
      while (!file.empty()) {
        const size_t end = std::min(file.find("$GPGGA"), file.size());
        hashes.push_back(sim::HashOf({reinterpret_cast<const uint8_t*>(file.data()), end}));
        file.remove_prefix(std::min(file.find("#DeviceID", end), file.size()));
      }
    }
    return hashes;
  }
  [[nodiscard]] std::vector<uint64_t> Sent(bool low, size_t count) const {
    std::vector<uint64_t> hashes;
    for (const SentMessage& message : account_.messages) {
      if ((message.sent.txFrequency_hz == 200'000) == low) hashes.push_back(message.sent.hash);
    }
    EXPECT_LE(count, hashes.size());
    hashes.resize(std::min(count, hashes.size()));
    return hashes;
  }
  void ExpectAllIn(const char* word, bool low) {
    const std::vector<uint64_t> recorded = Recorded(word);
    EXPECT_GT(recorded.size(), 100u);
    EXPECT_EQ(recorded, Sent(low, recorded.size()));
  }

  SentAccount account_;
};

TEST_F(Split, AtEachFullPeriodOfTheClockBothFilesOfAPairAtTheSamePing) {
  state_->options.splitByTime = 1;
  state_->options.splitPeriod_min = 1;
  for (const bool dual : {false, true}) {
    account_ = {};
    for (const std::string& name : RecordFiles()) std::filesystem::remove(records_ / name);
    DetachSerialLines();
    Start(dual);
    Run(130);
    StopRun(*state_);
    ExpectIdle();
    const std::vector<std::string> files = RecordFiles();
    EXPECT_EQ(files.size(), dual ? 6u : 3u);
    size_t atFullMinutes = 0;
    for (const std::string& name : files) atFullMinutes += name.substr(13, 2) <= "01" ? 1 : 0;
    EXPECT_EQ(atFullMinutes, dual ? 4u : 2u) << "all but those of the start";
    ExpectAllIn("450kHz", false);
    if (dual) {
      ExpectAllIn("200kHz", true);
      EXPECT_LE(Recorded("450kHz").size() - Recorded("200kHz").size(), 1u) << "the last one at Stop";
    }
  }
}

TEST_F(Split, BySizeAndNeverOverAFileThatExists) {
  state_->options.splitBySize = 1;
  state_->options.splitSize_MB = 1;
  Start(false);
  for (int i = 0; i < 120; ++i) {  // each second's name but every tenth's is taken
    if (i % 10 == 0) continue;
    const CalendarTime then = CalendarFromUnixSeconds(UnixSecondsFromCalendar(LocalNow()) + 5 + i);
    char name[96];
    FormatText(name, "%04d%02d%02d_%02d%02d%02d_Dual_450kHz_id_VIRTUAL-0001_txt10.log", then.year, then.month,
               then.day, then.hour, then.minute, then.second);
    std::ofstream(records_ / name) << "INFO:\r\nours";
  }
  Run(110);
  StopRun(*state_);
  size_t ours = 0;
  for (const std::string& name : RecordFiles()) {
    if (Content(name) != "INFO:\r\nours") continue;
    ++ours;
    std::filesystem::remove(records_ / name);
  }
  EXPECT_EQ(ours, 108u);
  EXPECT_GE(RecordFiles().size(), 2u);
  ExpectAllIn("450kHz", false);
}

TEST_F(Split, WithTheOptionNoRecordingIsReplaced) {
  StartQuickRun(2);
  for (const int32_t option : {0, 1}) {
    state_->options.neverReplace = option;
    const size_t before = RecordFiles().size();
    for (int i = 0; i < 3; ++i) {
      for (const bool on : {false, true}) SetRecording(on);
    }
    EXPECT_EQ(RecordFiles().size() - before, option == 0 ? 1u : 3u) << "within a second";
    Run(2);
  }
}

}  // namespace
}  // namespace tw::test

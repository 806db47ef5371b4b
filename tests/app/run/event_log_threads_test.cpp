// The log of events under real threads.
#include <gtest/gtest.h>

#include <memory>
#include <regex>
#include <sstream>
#include <thread>
#include <vector>

#include "app/state/event_log.h"
#include "base/text_format.h"
#include "tests/app/test_files.h"
#include "tests/app/test_folder.h"

namespace tw::test {
namespace {

TEST(EventLogThreads, EachLineIsWholeWhoeverWritesIt) {
  constexpr int kThreads = 4;
  constexpr int kLines = 50;
  const TestFolder folder;
  const auto state = std::make_unique<AppState>();
  MakeLock(state->eventLog.lock);
  CopyWide(state->workingFolder, folder.Path().wstring());
  state->options.eventLog = 1;
  DirectEventLog(*state);
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&] {
      for (int line = 0; line < kLines; ++line) LogEvent(*state, "event", "detail");
    });
  }
  for (int i = 0; i < kLines; ++i) DirectEventLog(*state);
  for (std::thread& thread : threads) thread.join();
  DestroyLock(state->eventLog.lock);

  std::istringstream log(ReadWhole(folder.Path() / "events.csv"));
  const std::regex whole("[0-9-]{10}T[0-9:.]{12}Z,event,\"detail\"\r");
  std::string line;
  int lines = -1;  // the heading
  for (; std::getline(log, line); ++lines) EXPECT_TRUE(lines < 0 || std::regex_match(line, whole)) << line;
  EXPECT_EQ(lines, kThreads * kLines);
}

}  // namespace
}  // namespace tw::test

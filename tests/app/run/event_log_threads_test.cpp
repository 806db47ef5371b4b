// The log of events under real threads.
#include <gtest/gtest.h>

#include <memory>
#include <regex>
#include <thread>
#include <vector>

#include "app/state/event_log.h"
#include "base/text_format.h"
#include "tests/app/test_files.h"
#include "tests/app/test_folder.h"

namespace tw::test {
namespace {

TEST(EventLogThreads, EachLineIsWholeWhoeverWritesIt) {
  const TestFolder folder;
  const auto state = std::make_unique<AppState>();
  MakeLock(state->eventLog.lock);
  CopyWide(state->workingFolder, folder.Path().wstring());
  state->options.eventLog = 1;
  DirectEventLog(*state);
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      for (int line = 0; line < 50; ++line) LogEvent(*state, "event", "detail");
    });
  }
  for (int i = 0; i < 50; ++i) DirectEventLog(*state);
  for (std::thread& thread : threads) thread.join();
  DestroyLock(state->eventLog.lock);
  const std::string log = ReadWhole(folder.Path() / "events.csv");
  EXPECT_TRUE(
      std::regex_match(log, std::regex("UTC,event,detail\r\n([0-9T:.-]{23}Z,event,\"detail\"\r\n){200}")));
}

}  // namespace
}  // namespace tw::test

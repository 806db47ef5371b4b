// echotool: batch work on record files with the program's own code.
#include <atomic>
#include <cstdio>
#include <string>
#include <vector>

#include "platform/console.h"
#include "platform/file.h"
#include "tools/echotool/options.h"
#include "tools/echotool/work.h"

namespace tw::echotool {
namespace {

constexpr int kDone = 0;
constexpr int kFailed = 1;
constexpr int kMisused = 2;
constexpr int kInterrupted = 130;

std::atomic<bool> interrupted = false;

void Complain(const std::string& what) {
  WriteError("echotool: " + what + "\n");
}

// False when the report cannot be written.
bool Tell(const Result& result) {
  if (!result.done) {
    Complain(result.text);
    return true;
  }
  for (const std::string& note : result.notes) Complain(note);
  return std::fputs(result.text.c_str(), stdout) >= 0;
}

int Run(const std::vector<std::string>& arguments) {
  const Utf8Console console;
  Options options;
  std::string error;
  if (!ParseOptions(arguments, options, error)) {
    Complain(error + "; see echotool --help");
    return kMisused;
  }
  if (options.help || options.version) {
    std::fputs(std::string(options.help ? HelpText() : VersionText()).c_str(), stdout);
    return kDone;
  }
  WatchInterruption(interrupted);
  bool failed = false;
  Batch batch = BeginBatch(options);
  for (const std::string& file : options.files) {
    const Result result = WorkOn(file, options, interrupted, batch);
    failed = !Tell(result) || !result.done || !result.sound || failed;
    if (interrupted.load()) return kInterrupted;
    if (options.task == Task::join) break;  // has been given them all
  }
  const Result end = EndBatch(options, batch);
  failed = !Tell(end) || !end.done || failed;
  if (std::fflush(stdout) != 0) {
    Complain("standard output cannot be written");
    failed = true;
  }
  return failed ? kFailed : kDone;
}

}  // namespace
}  // namespace tw::echotool

#ifdef _WIN32
// The start-up code then expands wildcards, which the shells of Windows leave to the programs.
extern "C" {
int _dowildcard = -1;
}

int wmain(int count, wchar_t** words) {
  std::vector<std::string> arguments;
  for (int i = 1; i < count; ++i) {
    const std::wstring_view wide = words[i];
    std::string narrow(4 * wide.size() + 1, '\0');
    narrow.resize(tw::NarrowPath(narrow, wide));
    arguments.push_back(std::move(narrow));
  }
  return tw::echotool::Run(arguments);
}
#else
int main(int count, char** words) {
  return tw::echotool::Run({words + 1, words + count});
}
#endif

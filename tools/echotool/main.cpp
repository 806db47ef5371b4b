// echotool: batch work on record files with the program's own code.
#include <atomic>
#include <csignal>
#include <cstdio>
#include <string>
#include <vector>

#include "base/text_format.h"
#include "tools/echotool/options.h"
#include "tools/echotool/work.h"

namespace tw::echotool {
namespace {

constexpr int kDone = 0;
constexpr int kFailed = 1;
constexpr int kMisused = 2;
constexpr int kInterrupted = 130;

std::atomic<bool> interrupted = false;
static_assert(std::atomic<bool>::is_always_lock_free);

void Interrupt(int) {
  interrupted.store(true);
}

int Run(const std::vector<std::string>& arguments) {
  Options options;
  std::string error;
  if (!ParseOptions(arguments, options, error)) {
    std::fprintf(stderr, "echotool: %s; see echotool --help\n", error.c_str());
    return kMisused;
  }
  if (options.help) {
    std::fputs(std::string(HelpText()).c_str(), stdout);
    return kDone;
  }
  std::signal(SIGINT, Interrupt);
  std::signal(SIGTERM, Interrupt);
  bool failed = false;
  Outputs outputs;
  for (const std::string& file : options.files) {
    const Result result = WorkOn(file, options, interrupted, outputs);
    if (!result.warning.empty()) std::fprintf(stderr, "echotool: warning: %s\n", result.warning.c_str());
    if (result.done) {
      failed = std::fputs(result.text.c_str(), stdout) < 0 || failed;
    } else {
      std::fprintf(stderr, "echotool: %s\n", result.text.c_str());
      failed = true;
    }
    if (interrupted.load()) return kInterrupted;
  }
  if (std::fflush(stdout) != 0) {
    std::fputs("echotool: standard output cannot be written\n", stderr);
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
    narrow.resize(tw::NarrowText(narrow, wide));
    arguments.push_back(std::move(narrow));
  }
  return tw::echotool::Run(arguments);
}
#else
int main(int count, char** words) {
  return tw::echotool::Run({words + 1, words + count});
}
#endif

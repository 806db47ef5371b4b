// echotool: batch work on record files with the program's own code.
#include <atomic>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include "platform/console.h"
#include "platform/file.h"
#include "tools/echotool/batch.h"
#include "tools/echotool/folders.h"
#include "tools/echotool/gathering.h"
#include "tools/echotool/options.h"

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

// What the user is told of a call, and whether something has failed.
class Teller final : public Listener {
 public:
  Teller(Progress& progress, bool isQuiet) : progress_(progress), isQuiet_(isQuiet) {}

  void Hear(Result result) override {
    Tell(result);
    gathering_.Add(std::move(result));
  }
  void Tell(const Result& result) {
    const Progress::Pause pause(progress_);
    failed_ = failed_ || !result.done || !result.sound;
    if (!result.done) return Complain(result.text);
    if (!isQuiet_) {
      for (const std::string& note : result.notes) Complain(note);
    }
    if (std::fputs(result.text.c_str(), stdout) < 0) failed_ = true;
  }
  [[nodiscard]] Gathering& Gathered() { return gathering_; }
  [[nodiscard]] bool HasFailed() const { return failed_; }

 private:
  Progress& progress_;
  const bool isQuiet_;
  Gathering gathering_;
  bool failed_ = false;
};

int Work(const Options& options) {
  const Inputs inputs = FindInputs(options, interrupted);
  uint64_t bytes = 0;
  for (const Input& input : inputs.list) bytes += input.size;
  Claims claims(inputs.list);
  Progress progress(options.task == Task::join ? 1 : inputs.list.size(), bytes, options.quiet);
  const Call call{options, inputs.list, interrupted, claims, progress};
  Teller teller(progress, options.quiet);
  if (!interrupted.load()) RunBatch(call, teller);
  if (interrupted.load()) return kInterrupted;
  teller.Tell(teller.Gathered().End(call, inputs));
  if (std::fflush(stdout) == 0) return teller.HasFailed() ? kFailed : kDone;
  Complain("standard output cannot be written");
  return kFailed;
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
  return Work(options);
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

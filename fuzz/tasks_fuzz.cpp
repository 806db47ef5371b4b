// Any bytes as a record file and any words as echotool's command line: each task, as main runs it. Behind a
// line of four dashes stands a second file, which is joined and holds the tide, and behind another the words;
// without them every task has its turn.
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "platform/virtual/virtual_clock.h"
#include "tools/echotool/batch.h"
#include "tools/echotool/gathering.h"

namespace tw::echotool {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kMark = "\n----\n";

void Require(bool holds) {
  if (!holds) std::abort();
}

const fs::path& Folder() {
  static const fs::path folder = "/dev/shm/tasks_fuzz_" + std::to_string(getpid());
  return folder;
}

std::string Content(const fs::path& file) {
  std::ostringstream all;
  all << std::ifstream(file, std::ios::binary).rdbuf();
  return all.str();
}

// Outside of quotes and of pictures, which may spell anything.
std::string Bare(const std::string& text) {
  std::string bare;
  bool quoted = false;
  for (size_t i = 0; i < text.size(); ++i) {
    if (quoted && text[i] == '\\') {
      ++i;
    } else if (text[i] == '"') {
      quoted = !quoted;
    } else if (!quoted) {
      bare += text[i];
    }
  }
  Require(!quoted);
  return bare;
}

void RequireNumbers(const std::string& text) {
  Require(text.find("nan") == text.npos && text.find("inf") == text.npos);
}

void RequireSense(const fs::path& output) {
  const std::string ending = output.extension().string();
  Require(ending != ".part");
  if (ending == ".csv" || ending == ".xyz" || ending == ".nmea") RequireNumbers(Content(output));
  if (ending == ".geojson") RequireNumbers(Bare(Content(output)));
}

// What it made, whole and only where it says so.
void TakeOutputs(const Options& options, size_t done) {
  size_t outputs = 0;
  for (const auto& entry : fs::directory_iterator(Folder())) {
    if (entry.path().filename() == "a.log" || entry.path().filename() == "b.log") continue;
    RequireSense(entry.path());
    fs::remove(entry.path());
    ++outputs;
  }
  const bool writes = options.task != Task::info && options.task != Task::check && !options.dryRun;
  Require(writes ? (outputs != 0) == (done != 0) : outputs == 0);
}

class Counter final : public Listener {
 public:
  void Hear(Result result) override {
    Require(result.done || !result.text.empty());
    done += result.done ? 1 : 0;
    gathering.Add(std::move(result));
  }
  size_t done = 0;
  Gathering gathering;
};

void Run(Options options) {
  const std::string second = (Folder() / "b.log").string();
  options.files = {(Folder() / "a.log").string()};
  if (options.task == Task::join || options.form != InfoForm::lines) options.files.push_back(second);
  options.folder.clear();
  options.jobs = 1;
  if (!options.xyz.tide.empty()) options.xyz.tide = second;
  const std::atomic<bool> interrupted = false;
  const Inputs inputs = FindInputs(options, interrupted);
  Claims claims(inputs.list);
  Progress progress(inputs.list.size(), 0, true);
  const Call call{options, inputs.list, interrupted, claims, progress};
  Counter counter;
  RunBatch(call, counter);
  const Result end = counter.gathering.End(call, inputs);
  Require(end.done || counter.done == 0);
  if (options.form == InfoForm::json) RequireNumbers(Bare(end.text));
  TakeOutputs(options, counter.done);
}

void RunWords(std::string_view text) {
  std::istringstream stream{std::string(text.substr(0, 1'000))};
  std::vector<std::string> words;
  for (std::string word; stream >> word;) words.push_back(word);
  words.emplace_back("a.log");
  words.emplace_back("b.log");
  Options options;
  std::string error;
  const bool parsed = ParseOptions(words, options, error);
  Require(parsed == error.empty());
  if (parsed && !options.help && !options.version) Run(options);
}

void RunAll() {
  for (const char* const words : {"info", "info --json", "info --csv", "segy", "segy --pad --inline", "text",
                                  "csv", "kml", "netcdf", "gpx", "geojson", "xyz --median 3", "nmea", "check",
                                  "repair", "cut --pings 2-3", "join", "png", "report"})
    RunWords(words);
}

void Write(const char* name, std::string_view bytes) {
  std::ofstream(Folder() / name, std::ios::binary) << bytes;
}

void Take(std::string_view bytes) {
  const size_t first = bytes.find(kMark);
  const size_t second = first == bytes.npos ? first : bytes.find(kMark, first + kMark.size());
  Write("a.log", bytes.substr(0, first));
  if (second == bytes.npos) {
    Write("b.log", bytes);
    RunAll();
  } else {
    Write("b.log", bytes.substr(first + kMark.size(), second - first - kMark.size()));
    RunWords(bytes.substr(second + kMark.size()));
  }
}

}  // namespace
}  // namespace tw::echotool

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  tw::StartVirtualClock(1'700'000'000'000);  // a file that tells nothing is looked at again after a while
  std::filesystem::create_directory(tw::echotool::Folder());
  return std::atexit([] { std::filesystem::remove_all(tw::echotool::Folder()); });
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  tw::echotool::Take({reinterpret_cast<const char*>(bytes), size});
  return 0;
}

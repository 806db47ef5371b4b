// How far a call has come, on standard error: "37 of 200, 4 at work, 62 % line_07.log", of the bytes that are
// to be read; of a single recording its name with a bar. One line, drawn again when it changes, and nothing
// without a terminal. Any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/sync.h"

namespace tw::echotool {

class Progress {
 public:
  // Of so many recordings of so many bytes; `isQuiet` shows nothing.
  Progress(size_t files, uint64_t bytes, bool isQuiet);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  // While it lives the line is away, so that something else can be written.
  class Pause {
   public:
    explicit Pause(Progress& progress);
    ~Pause();
    Pause(const Pause&) = delete;
    Pause& operator=(const Pause&) = delete;

   private:
    Progress& progress_;
  };

 private:
  friend class FileProgress;
  struct Shown {
    std::string name;
    std::string_view work;
    int percent = 0;
  };

  void Begin();
  void Show(const Shown& shown, uint64_t newBytes);
  void End(uint64_t newBytes);
  [[nodiscard]] std::string Line(const Shown& shown) const;
  void Draw(const std::string& line);

  const size_t files_;
  const uint64_t bytes_;
  const bool isShown_;
  Lock lock_{};
  // All below: under the lock.
  size_t done_ = 0;
  size_t atWork_ = 0;
  uint64_t read_ = 0;
  std::string line_;  // that stands there; empty: none
};

// The same of one recording; one thread.
class FileProgress {
 public:
  FileProgress(Progress& all, uint64_t size);
  ~FileProgress();  // its work has ended
  FileProgress(const FileProgress&) = delete;
  FileProgress& operator=(const FileProgress&) = delete;

  // It is read from its beginning, `size` bytes. `work` says for what, if it is to be read again afterwards;
  // it outlives the pass.
  void BeginPass(std::string_view name, std::string_view work, uint64_t size);
  void Show(uint64_t position);

 private:
  [[nodiscard]] uint64_t NewBytes(uint64_t counted);

  Progress& all_;
  const uint64_t bytes_;
  uint64_t counted_ = 0;  // of them
  bool isMeasured_ = false;
  Progress::Shown shown_;
  uint64_t size_ = 0;
};

}  // namespace tw::echotool

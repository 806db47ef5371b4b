// One virtual instrument bound to one line. One thread.
//
// A pseudo terminal carries bytes whatever speeds its ends are set to. A strict binding makes it behave like
// a wire: while the program's speed is not the instrument's, each side gets noise instead of bytes.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

#include "simulator/instrument.h"
#include "tools/echosim/terminal.h"

namespace tw::echosim {

// A text file that is written line by line. Closed when it goes.
class LineFile {
 public:
  LineFile() = default;
  LineFile(const LineFile&) = delete;
  LineFile& operator=(const LineFile&) = delete;
  ~LineFile();

  // An empty path is no file, and writing to it does nothing. False when the file cannot be made.
  [[nodiscard]] bool Create(const std::string& path);
  void Write(const std::string& line);

 private:
  std::FILE* file_ = nullptr;
};

// Where a binding reports; each may be null, and outlives the binding.
struct Reports {
  LineFile* received = nullptr;  // what the program sent
  LineFile* lost = nullptr;      // what the line did not take
  LineFile* line = nullptr;      // how the program has set up the line, and the instrument's speed
};

class Binding {
 public:
  // The instrument outlives the binding, whose time begins at 0.
  Binding(sim::VirtualInstrument& instrument, std::unique_ptr<Terminal> terminal, const Reports& reports,
          bool strict = false);

  // Carries bytes both ways as they stand at `now_us`. The line is given up when the instrument hangs up.
  void Pump(int64_t now_us);

  // Null after a hang-up.
  [[nodiscard]] Terminal* Line() const { return terminal_.get(); }

  // When the next byte is due to leave; sim::kNever when none is.
  [[nodiscard]] int64_t Next_us(int64_t now_us) const;

  [[nodiscard]] uint64_t Sent() const { return sent_; }
  [[nodiscard]] uint64_t Dropped() const { return dropped_; }

 private:
  void WatchLine(int64_t now_us);
  void TakeInput(int64_t now_us);
  void GiveOutput(int64_t now_us);

  sim::VirtualInstrument& instrument_;
  std::unique_ptr<Terminal> terminal_;
  Reports reports_;
  bool strict_;
  bool noisy_ = false;
  LineSettings line_;
  int32_t instrumentSpeed_ = 0;
  uint64_t sent_ = 0;  // dropped ones included: the place in the instrument's stream
  uint64_t dropped_ = 0;
};

}  // namespace tw::echosim

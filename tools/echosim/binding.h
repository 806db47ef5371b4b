// One virtual instrument bound to one line. One thread.
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

class Binding {
 public:
  // All outlive the binding. What is received is written to `received`, what the line did not take to
  // `lost`; both may be null.
  Binding(sim::VirtualInstrument& instrument, std::unique_ptr<Terminal> terminal, LineFile* received,
          LineFile* lost);

  // Carries bytes both ways as they stand at `now_us`. The line is given up when the instrument hangs up.
  void Pump(int64_t now_us);

  // Null after a hang-up.
  [[nodiscard]] Terminal* Line() const { return terminal_.get(); }

  // When the next byte is due to leave; sim::kNever when none is.
  [[nodiscard]] int64_t Next_us(int64_t now_us) const;

  [[nodiscard]] uint64_t Sent() const { return sent_; }
  [[nodiscard]] uint64_t Dropped() const { return dropped_; }
  [[nodiscard]] uint64_t Received() const { return received_; }

 private:
  void TakeInput(int64_t now_us);
  void GiveOutput(int64_t now_us);

  sim::VirtualInstrument& instrument_;
  std::unique_ptr<Terminal> terminal_;
  LineFile* receivedFile_;
  LineFile* lostFile_;
  uint64_t sent_ = 0;  // dropped ones included: the place in the instrument's stream
  uint64_t dropped_ = 0;
  uint64_t received_ = 0;
};

}  // namespace tw::echosim

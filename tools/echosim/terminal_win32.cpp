#include <algorithm>
#include <utility>

#include "base/text_format.h"
#include "platform/clock.h"
#include "platform/serial_line.h"
#include "platform/system_error.h"
#include "tools/echosim/terminal.h"

namespace tw::echosim {
namespace {

Handle OpenLine(const std::string& name, int32_t baud) {
  wchar_t path[64];
  char mode[64];
  FormatWide(path, "\\\\.\\%s", name.c_str());
  FormatText(mode, "baud=%d parity=N data=8 stop=1", baud);
  return OpenSerialLine(path, mode, 1);
}

class SerialPort final : public Terminal {
 public:
  SerialPort(Handle line, std::string name) : line_(line), name_(std::move(name)) {}
  SerialPort(const SerialPort&) = delete;
  SerialPort& operator=(const SerialPort&) = delete;
  ~SerialPort() override { CloseSerialLine(line_); }

  [[nodiscard]] std::string Name() const override { return name_; }

  [[nodiscard]] size_t Read(std::span<uint8_t> out) override {
    const auto waiting = std::min<size_t>(BytesWaiting(line_), out.size());
    uint32_t got = 0;
    if (waiting == 0 || !ReadSerialLine(line_, out.data(), static_cast<uint32_t>(waiting), got)) return 0;
    return got;
  }

  [[nodiscard]] size_t Write(std::span<const uint8_t> bytes) override {
    return WriteSerialLine(line_, bytes.data(), static_cast<uint32_t>(bytes.size())) ? bytes.size() : 0;
  }

  void SetSpeed(int32_t baud) override {
    CloseSerialLine(line_);
    line_ = OpenLine(name_, baud);
  }

  [[nodiscard]] bool OtherEnd(LineSettings&) const override { return false; }

 private:
  Handle line_;
  std::string name_;
};

}  // namespace

std::unique_ptr<Terminal> OpenTerminal(const std::string& where, int32_t baud, std::string& error) {
  const Handle line = OpenLine(where, baud);
  if (line == Handle::invalid) {
    const uint32_t code = LastSystemError();
    error = where + " cannot be opened (" + std::to_string(code) + ")";
    return nullptr;
  }
  return std::make_unique<SerialPort>(line, where);
}

// A serial port cannot be waited for together with others here: look again every millisecond.
void WaitForInput(std::span<Terminal* const>, int64_t timeout_us) {
  SleepMilliseconds(timeout_us > 0 ? 1 : 0);
}

}  // namespace tw::echosim

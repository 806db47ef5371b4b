// The tool's end of a serial line: a pseudo terminal (terminal_posix.cpp) or a serial port
// (terminal_win32.cpp). Nothing here waits except WaitForInput. One thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace tw::echosim {

// How the program at the other end has set the line up.
struct LineSettings {
  int32_t baud = 0;  // 0: a speed that no device has
  int32_t dataBits = 0;
  char parity = '?';  // N, E or O
  int32_t stopBits = 0;
  bool hardwareFlow = false;  // RTS and CTS

  [[nodiscard]] bool operator==(const LineSettings&) const = default;
};

class Terminal {
 public:
  virtual ~Terminal() = default;

  // What a person calls this line: "/tmp/sounder -> /dev/pts/4".
  [[nodiscard]] virtual std::string Name() const = 0;

  // Takes bytes that have arrived. 0 when there are none.
  [[nodiscard]] virtual size_t Read(std::span<uint8_t> out) = 0;

  // Sends bytes; returns how many the line took. The others are lost.
  [[nodiscard]] virtual size_t Write(std::span<const uint8_t> bytes) = 0;

  // The line goes on at another speed. Of no effect where a line has none of its own.
  virtual void SetSpeed(int32_t baud) = 0;

  // False, and `settings` untouched, where this end cannot see how the other one is set up.
  [[nodiscard]] virtual bool OtherEnd(LineSettings& settings) const = 0;
};

// Opens the line: the path that becomes a link to a new pseudo terminal, or the name of a serial port. A
// pseudo terminal has this speed until a program sets another. The link and the terminal vanish with the
// object. Null when that fails; `error` then says why.
[[nodiscard]] std::unique_ptr<Terminal> OpenTerminal(const std::string& where, int32_t baud,
                                                     std::string& error);

// Waits until bytes arrive on one of the lines (null ones are passed over), or until the time has passed.
void WaitForInput(std::span<Terminal* const> terminals, int64_t timeout_us);

}  // namespace tw::echosim

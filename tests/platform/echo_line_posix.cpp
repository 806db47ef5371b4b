#include <atomic>
#include <memory>
#include <thread>

#include "tests/platform/echo_line.h"
#include "tests/platform/echo_terminal.h"

namespace tw {
namespace {

// Sends back what it gets for the object's life.
struct FarEnd {
  FarEnd() {
    if (!terminal.IsOpen()) return;
    echo = std::thread([this] {
      while (!ends && terminal.Echo(10)) {
      }
    });
  }
  ~FarEnd() {
    ends = true;
    if (echo.joinable()) echo.join();
  }

  EchoTerminal terminal;
  std::atomic<bool> ends = false;
  std::thread echo;
};

}  // namespace

EchoLine::EchoLine() {
  const auto end = std::make_shared<FarEnd>();
  if (!end->terminal.IsOpen()) return;
  const std::string& path = end->terminal.Path();
  name_ = L"\\\\.\\" + std::wstring(path.begin(), path.end());
  farEnd_ = end;
}

// A pseudo terminal has no device.
bool EchoLine::IsListed() const {
  return false;
}

}  // namespace tw

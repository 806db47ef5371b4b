#include <atomic>
#include <thread>

#include "platform/virtual/serial_peer.h"
#include "tests/platform/echo_line.h"
#include "tests/platform/echo_terminal.h"

namespace tw {
namespace {

struct FarEnd {
  ~FarEnd() {
    ends = true;
    if (echo.joinable()) echo.join();
    DetachSerialLines();
  }

  EchoTerminal terminal;
  std::atomic<bool> ends = false;
  std::thread echo;
};

}  // namespace

EchoLine::EchoLine() {
  const auto end = std::make_shared<FarEnd>();
  if (!end->terminal.IsOpen()) return;
  name_ = L"\\\\.\\COM7";
  AttachTerminal(name_.c_str(), end->terminal.Path().c_str());
  SetSerialLineList({L"COM3", ListedName()});
  end->echo = std::thread([inside = end.get()] {
    while (!inside->ends && inside->terminal.Echo(10)) {
    }
  });
  farEnd_ = end;
}

}  // namespace tw

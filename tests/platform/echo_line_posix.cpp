#include "tests/platform/echo_line.h"
#include "tests/platform/far_end.h"

namespace tw {

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

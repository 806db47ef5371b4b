#include <cstdlib>

#include "tests/platform/echo_line.h"

namespace tw {

struct EchoLine::Terminal {};

EchoLine::EchoLine() {
  const char* const name = std::getenv("TW_TEST_LINE");
  if (name != nullptr) name_.assign(name, name + std::char_traits<char>::length(name));
}

EchoLine::~EchoLine() = default;

bool EchoLine::IsExclusive() {
  return false;
}

}  // namespace tw

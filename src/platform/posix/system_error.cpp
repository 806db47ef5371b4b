#include "platform/system_error.h"

#include <cerrno>
#include <cstring>

#include "base/text_format.h"
#include "platform/posix/last_error.h"

namespace tw {
namespace {

thread_local uint32_t lastError = 0;

}  // namespace

void SetSystemError(uint32_t code) {
  lastError = code;
}

bool FailWithErrno() {
  lastError = static_cast<uint32_t>(errno);
  return false;
}

bool FailWith(int code) {
  lastError = static_cast<uint32_t>(code);
  return false;
}

uint32_t LastSystemError() {
  return lastError;
}

bool MeansFullDisk(uint32_t code) {
  return code == ENOSPC || code == EDQUOT;
}

size_t SystemErrorText(uint32_t code, std::span<wchar_t> out) {
  char buffer[256];
  // The GNU form: it has a text for unknown codes too and may answer with a constant instead of the buffer.
  return WidenText(out, strerror_r(static_cast<int>(code), buffer, sizeof(buffer)));
}

}  // namespace tw

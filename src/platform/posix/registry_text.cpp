#include "platform/posix/registry_text.h"

#include <cerrno>

#include "base/text_format.h"
#include "platform/posix/last_error.h"

namespace tw {
namespace {

// The bytes of the text as UTF-16, its terminating zero included.
[[nodiscard]] size_t Utf16Bytes(std::wstring_view text) {
  size_t units = 1;
  for (const wchar_t unit : text) units += static_cast<uint32_t>(unit) > 0xFFFF ? 2 : 1;
  return units * 2;
}

}  // namespace

bool posix::GiveRegistryText(std::wstring_view text, std::span<wchar_t> out, uint32_t size_bytes) {
  if (Utf16Bytes(text) > size_bytes || text.size() >= out.size()) return FailWith(EOVERFLOW);
  CopyWide(out, text);
  return true;
}

}  // namespace tw

#include "tools/echotool/file_sum.h"

#include <vector>

#include "platform/owned_file.h"
#include "tools/echotool/sha256.h"

namespace tw::echotool {

bool SumOfFile(const std::wstring& path, const std::atomic<bool>& interrupted, std::string& sum) {
  const OwnedFile file(OpenFileForReading(path.c_str(), WriteSharing::denied));
  if (file.Get() == Handle::invalid) return false;
  constexpr uint32_t kPiece = 128 * 1024;
  std::vector<uint8_t> bytes(kPiece);
  Sha256 sha;
  for (uint32_t count = 1; count != 0;) {
    if (interrupted.load() || !ReadFileBytes(file.Get(), bytes.data(), kPiece, count)) return false;
    sha.Add(std::span<const uint8_t>(bytes.data(), count));
  }
  sum = sha.Hex();
  return true;
}

}  // namespace tw::echotool

#include "tools/echotool/file_sum.h"

#include <vector>

#include "platform/owned_file.h"
#include "tools/echotool/sha256.h"

namespace tw::echotool {

std::optional<FileSum> SumOfFile(const std::wstring& path, const std::atomic<bool>& interrupted) {
  const OwnedFile file(OpenFileForReading(path.c_str(), WriteSharing::denied));
  if (file.Get() == Handle::invalid) return std::nullopt;
  constexpr uint32_t kPiece = 128 * 1024;
  std::vector<uint8_t> bytes(kPiece);
  Sha256 sha;
  FileSum sum;
  for (uint32_t count = 1; count != 0;) {
    if (interrupted.load() || !ReadFileBytes(file.Get(), bytes.data(), kPiece, count)) return std::nullopt;
    sum.size += count;
    sha.Add(std::span<const uint8_t>(bytes.data(), count));
  }
  sum.digits = sha.Hex();
  return sum;
}

}  // namespace tw::echotool

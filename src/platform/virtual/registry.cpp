#include "platform/registry.h"

#include <cerrno>
#include <map>
#include <mutex>
#include <utility>

#include "platform/posix/last_error.h"
#include "platform/posix/registry_text.h"
#include "platform/virtual/fault_points.h"
#include "platform/virtual/memory_registry.h"

namespace tw {
namespace {

struct Store {
  std::mutex mutex;
  std::map<std::pair<std::wstring, std::wstring>, RegistryValue> values;
  std::vector<std::wstring> writes;
};

Store& Shared() {
  static Store* const store = new Store;
  return *store;
}

[[nodiscard]] bool Read(const wchar_t* key, const wchar_t* name, RegistryType type, RegistryValue& value) {
  if (FaultAt(FaultPoint::readRegistry, name)) return false;
  if (FindRegistryValue(key, name, value) && value.type == type) return true;
  SetSystemError(ENOENT);
  return false;
}

[[nodiscard]] bool Write(const wchar_t* key, const wchar_t* name, const RegistryValue& value) {
  if (FaultAt(FaultPoint::writeRegistry, name)) return false;
  PutRegistryValue(key, name, value);
  const std::lock_guard held(Shared().mutex);
  Shared().writes.emplace_back(name);
  return true;
}

}  // namespace

void ClearRegistry() {
  const std::lock_guard held(Shared().mutex);
  Shared().values.clear();
  Shared().writes.clear();
}

bool FindRegistryValue(const wchar_t* key, const wchar_t* name, RegistryValue& value) {
  const std::lock_guard held(Shared().mutex);
  const auto found = Shared().values.find({key, name});
  if (found == Shared().values.end()) return false;
  value = found->second;
  return true;
}

void PutRegistryValue(const wchar_t* key, const wchar_t* name, const RegistryValue& value) {
  const std::lock_guard held(Shared().mutex);
  Shared().values[{key, name}] = value;
}

std::vector<std::wstring> RegistryWrites() {
  const std::lock_guard held(Shared().mutex);
  return Shared().writes;
}

bool ReadRegistryNumber(const wchar_t* key, const wchar_t* name, uint32_t& value) {
  RegistryValue stored;
  if (!Read(key, name, RegistryType::number, stored)) return false;
  value = stored.number;
  return true;
}

bool WriteRegistryNumber(const wchar_t* key, const wchar_t* name, uint32_t value) {
  return Write(key, name, {RegistryType::number, value, {}, {}});
}

bool ReadRegistryText(const wchar_t* key, const wchar_t* name, std::span<wchar_t> out, uint32_t size_bytes) {
  RegistryValue stored;
  return Read(key, name, RegistryType::text, stored) && posix::GiveRegistryText(stored.text, out, size_bytes);
}

bool WriteRegistryText(const wchar_t* key, const wchar_t* name, const wchar_t* text) {
  return Write(key, name, {RegistryType::text, 0, text, {}});
}

bool WriteRegistryBytes(const wchar_t* key, const wchar_t* name, std::span<const uint8_t> bytes) {
  return Write(key, name, {RegistryType::bytes, 0, {}, {bytes.begin(), bytes.end()}});
}

}  // namespace tw

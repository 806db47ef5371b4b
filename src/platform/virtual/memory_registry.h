// The registry that tests see: values kept in memory. Failures are put there through faults.h.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tw {

enum class RegistryType : uint8_t { number, text, bytes };

struct RegistryValue {
  RegistryType type = RegistryType::number;
  uint32_t number = 0;
  std::wstring text;
  std::vector<uint8_t> bytes;

  bool operator==(const RegistryValue&) const = default;
};

// Forgets all keys.
void ClearRegistry();

// What a key holds under the name; false when there is no such value.
[[nodiscard]] bool FindRegistryValue(const wchar_t* key, const wchar_t* name, RegistryValue& value);
void PutRegistryValue(const wchar_t* key, const wchar_t* name, const RegistryValue& value);

// "name" of each write since ClearRegistry(), in order.
[[nodiscard]] std::vector<std::wstring> RegistryWrites();

}  // namespace tw

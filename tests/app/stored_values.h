// What stands in the registry that tests see, below the program's own key.
#pragma once

#include <cstdint>
#include <string>

#include "app/settings/persistent_settings.h"
#include "platform/virtual/memory_registry.h"

namespace tw::test {

inline void PutNumber(const wchar_t* name, uint32_t number) {
  RegistryValue value;
  value.number = number;
  PutRegistryValue(kSettingsKey, name, value);
}

inline void PutText(const wchar_t* name, const std::wstring& text) {
  RegistryValue value;
  value.type = RegistryType::text;
  value.text = text;
  PutRegistryValue(kSettingsKey, name, value);
}

inline constexpr uint32_t kNoNumber = 0xDEAD;

inline uint32_t StoredNumber(const wchar_t* name) {
  RegistryValue value;
  const bool found = FindRegistryValue(kSettingsKey, name, value) && value.type == RegistryType::number;
  return found ? value.number : kNoNumber;
}

inline std::wstring StoredText(const wchar_t* name) {
  RegistryValue value;
  return FindRegistryValue(kSettingsKey, name, value) ? value.text : L"(none)";
}

}  // namespace tw::test

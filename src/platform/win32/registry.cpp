#include "platform/registry.h"

#include <windows.h>

#include <array>
#include <cwchar>

#include "base/text_format.h"

namespace tw {
namespace {

// The key, opened (or created) for one call.
class Key {
 public:
  explicit Key(const wchar_t* path) {
    result_ = RegCreateKeyExW(HKEY_CURRENT_USER, path, 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS,
                              nullptr, &key_, nullptr);
  }
  ~Key() {
    if (result_ == ERROR_SUCCESS) RegCloseKey(key_);
  }
  Key(const Key&) = delete;
  Key& operator=(const Key&) = delete;

  [[nodiscard]] bool Read(const wchar_t* name, DWORD wantedType, void* data, DWORD& size_bytes) {
    DWORD type = 0;
    if (result_ == ERROR_SUCCESS) {
      const LSTATUS result =
          RegQueryValueExW(key_, name, nullptr, &type, static_cast<BYTE*>(data), &size_bytes);
      if (result == ERROR_SUCCESS && type == wantedType) return true;
      return Fail(result != ERROR_SUCCESS ? result : ERROR_INVALID_DATA);
    }
    return Fail(result_);
  }

  [[nodiscard]] bool Write(const wchar_t* name, DWORD type, const void* data, size_t size_bytes) {
    if (result_ != ERROR_SUCCESS) return Fail(result_);
    const LSTATUS result =
        RegSetValueExW(key_, name, 0, type, static_cast<const BYTE*>(data), static_cast<DWORD>(size_bytes));
    return result == ERROR_SUCCESS || Fail(result);
  }

 private:
  // The registry returns its code instead of setting the thread's.
  static bool Fail(LSTATUS result) {
    SetLastError(static_cast<DWORD>(result));
    return false;
  }

  HKEY key_ = nullptr;
  LSTATUS result_;
};

}  // namespace

bool ReadRegistryNumber(const wchar_t* key, const wchar_t* name, uint32_t& value) {
  DWORD stored = 0;
  DWORD size_bytes = sizeof(stored);
  if (!Key(key).Read(name, REG_DWORD, &stored, size_bytes) || size_bytes != sizeof(stored)) return false;
  value = stored;
  return true;
}

bool WriteRegistryNumber(const wchar_t* key, const wchar_t* name, uint32_t value) {
  return Key(key).Write(name, REG_DWORD, &value, sizeof(value));
}

bool ReadRegistryText(const wchar_t* key, const wchar_t* name, std::span<wchar_t> out, uint32_t size_bytes) {
  std::array<wchar_t, 1024> stored{};
  DWORD got_bytes = size_bytes < sizeof(stored) ? size_bytes : sizeof(stored);
  if (!Key(key).Read(name, REG_SZ, stored.data(), got_bytes)) return false;
  // Stored text may lack its terminating zero.
  const size_t length = wcsnlen(stored.data(), got_bytes / sizeof(wchar_t));
  if (length >= out.size()) {
    SetLastError(ERROR_MORE_DATA);
    return false;
  }
  CopyWide(out, {stored.data(), length});
  return true;
}

bool WriteRegistryText(const wchar_t* key, const wchar_t* name, const wchar_t* text) {
  return Key(key).Write(name, REG_SZ, text, (wcslen(text) + 1) * sizeof(wchar_t));
}

bool WriteRegistryBytes(const wchar_t* key, const wchar_t* name, std::span<const uint8_t> bytes) {
  return Key(key).Write(name, REG_BINARY, bytes.data(), bytes.size());
}

}  // namespace tw

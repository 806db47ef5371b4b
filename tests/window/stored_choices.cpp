#include "tests/window/stored_choices.h"

#include <windows.h>

#include <filesystem>
#include <stdexcept>

namespace tw {
namespace {

constexpr wchar_t kKey[] = L"Software\\Brin Ultrasonics\\EchoSounderControlProgram\\Settings";
constexpr wchar_t kOptionsKey[] = L"Software\\Brin Ultrasonics\\EchoSounderControlProgram\\Options";

void Store(const wchar_t* name, DWORD type, const void* data, size_t size, const wchar_t* key = kKey) {
  if (RegSetKeyValueW(HKEY_CURRENT_USER, key, name, type, data, static_cast<DWORD>(size)) != ERROR_SUCCESS) {
    throw std::runtime_error("the registry takes no values");
  }
}

}  // namespace

void ForgetStoredChoices() {
  RegDeleteTreeW(HKEY_CURRENT_USER, kKey);
  RegDeleteTreeW(HKEY_CURRENT_USER, kOptionsKey);
}

void StoreChoice(const wchar_t* name, uint32_t value) {
  Store(name, REG_DWORD, &value, sizeof(value));
}

void StoreChoice(const wchar_t* name, const std::wstring& text) {
  Store(name, REG_SZ, text.c_str(), (text.size() + 1) * sizeof(wchar_t));
}

void StoreOption(const wchar_t* name, uint32_t value) {
  Store(name, REG_DWORD, &value, sizeof(value), kOptionsKey);
}

std::optional<uint32_t> StoredNumber(const wchar_t* name) {
  DWORD value = 0;
  DWORD size = sizeof(value);
  if (RegGetValueW(HKEY_CURRENT_USER, kKey, name, RRF_RT_REG_DWORD, nullptr, &value, &size) !=
      ERROR_SUCCESS) {
    return std::nullopt;
  }
  return value;
}

std::wstring StoredText(const wchar_t* name) {
  wchar_t text[1024] = L"";
  DWORD size = sizeof(text);
  RegGetValueW(HKEY_CURRENT_USER, kKey, name, RRF_RT_REG_SZ, nullptr, text, &size);
  return text;
}

std::optional<size_t> StoredSize(const wchar_t* name) {
  DWORD size = 0;
  if (RegGetValueW(HKEY_CURRENT_USER, kKey, name, RRF_RT_ANY, nullptr, nullptr, &size) != ERROR_SUCCESS) {
    return std::nullopt;
  }
  return size;
}

void StoreRunChoices(const std::wstring& workingFolder) {
  ForgetStoredChoices();
  StoreChoice(L"DeviceCOMPort", 5);
  StoreChoice(L"DeviceCOMSpeed", 921'600);
  StoreChoice(L"GPSCOMPort", 6);
  StoreChoice(L"GPSCOMSpeed", 4'800);
  StoreChoice(L"WorkingFolder", workingFolder);
  StoreChoice(L"Recording", 1);
}

OwnFolder::OwnFolder() {
  wchar_t base[MAX_PATH] = L"";
  GetTempPathW(MAX_PATH, base);
  path_ = base + (L"tw" + std::to_wstring(GetCurrentProcessId()) + L"_" + std::to_wstring(GetTickCount64()));
  std::filesystem::create_directories(path_);
}

OwnFolder::~OwnFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::vector<std::wstring> OwnFolder::Files() const {
  std::vector<std::wstring> files;
  for (const auto& entry : std::filesystem::directory_iterator(path_))
    files.push_back(entry.path().wstring());
  return files;
}

}  // namespace tw

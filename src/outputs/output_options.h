// What is sent of each ping, how often and to whom. A plain record, all outputs off as it stands; the options
// as they are stored are bounded before use. Pure; any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tw {

// Which sentences are sent, in this order.
enum Sentence : uint32_t {
  kGga = 1,
  kRmc = 2,
  kDbt = 4,
  kDpt = 8,
  kMtw = 16,
  kXdr = 32,  // pitch and roll
};
inline constexpr uint32_t kAllSentences = 63;

inline constexpr int32_t kMaxPingsPerSecond = 50;
inline constexpr float kMaxTransducerOffset_m = 50.0f;
inline constexpr int32_t kMinOutputSpeed = 1'200;
inline constexpr int32_t kMaxOutputSpeed = 3'000'000;
inline constexpr int32_t kOutputPort = 10'110;  // the port that is registered for NMEA 0183
inline constexpr size_t kLineNameSize = 64;
inline constexpr size_t kAddressSize = 16;

struct OutputOptions {
  bool serial = false;
  bool udp = false;
  bool tcp = false;
  bool lowChannel = false;  // of a dual run: whose depth is sent
  uint32_t sentences = kDbt;
  int32_t pingsPerSecond = 10;    // at most; 1 to 50
  float transducerOffset_m = 0;   // -50 to 50; above 0 from the water line, below 0 from the keel
  wchar_t line[kLineNameSize]{};  // as OpenSerialLine takes it
  int32_t speed = 4'800;          // 1,200 to 3,000,000 bit/s
  wchar_t udpAddress[kAddressSize] = L"127.0.0.1";  // who gets datagrams; a broadcast address is everybody
  int32_t udpPort = kOutputPort;                    // 1 to 65,535
  wchar_t tcpAddress[kAddressSize] = L"127.0.0.1";  // where clients are waited for; "0.0.0.0": everywhere
  int32_t tcpPort = kOutputPort;
};

// Whether every value is one that may be used: within its range, an address, a text with an end; the line's
// name and the addresses also where their output is off.
[[nodiscard]] bool IsBounded(const OutputOptions& options);

// The same options with each value that may not be used replaced by the one it starts with.
[[nodiscard]] OutputOptions Bound(const OutputOptions& options);

// Reads "192.168.1.255": four decimal numbers of one to three digits, 0 to 255, and nothing else. `ip` is
// 0x7F000001 for 127.0.0.1, and unchanged on failure.
[[nodiscard]] bool ParseAddress(std::wstring_view text, uint32_t& ip);

}  // namespace tw

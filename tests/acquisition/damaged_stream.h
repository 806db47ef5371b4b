// What tests of damaged streams need: the faults, and what the device and the line know of the messages.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "simulator/virtual_echosounder.h"
#include "tests/simulator_peer.h"

namespace tw::test {

struct Fault {
  friend void PrintTo(const Fault& fault, std::ostream* out) { *out << fault.name; }
  const char* name;
  sim::StreamFault fault;
};

inline constexpr Fault kFaults[] = {
    {"None", sim::StreamFault::none},           {"Flipped", sim::StreamFault::flippedBytes},
    {"Lost", sim::StreamFault::lostBytes},      {"Doubled", sim::StreamFault::doubledBytes},
    {"Cut", sim::StreamFault::truncated},       {"Absurd", sim::StreamFault::absurdCount},
    {"NoNumber", sim::StreamFault::notANumber}, {"TimeJump", sim::StreamFault::timeJump},
    {"OtherMode", sim::StreamFault::otherMode},
};

// The account of every message, and the amplitudes that it was made of.
class SentMessages : public sim::PingObserver {
 public:
  void PingMade(const sim::SentPing& ping, std::span<const uint16_t> amplitudes) override {
    sent.push_back(ping);
    samples.emplace_back(amplitudes.begin(), amplitudes.end());
  }
  void PingEnded(const sim::SentPing&) override {}
  std::vector<sim::SentPing> sent;
  std::vector<std::vector<uint16_t>> samples;
};

// Keeps all bytes that the line took.
class ListeningPeer final : public SimulatorPeer {
 public:
  using SimulatorPeer::SimulatorPeer;
  size_t Send(std::span<uint8_t> out, int64_t now_us) override {
    const size_t count = SimulatorPeer::Send(out, now_us);
    bytes.append(reinterpret_cast<const char*>(out.data()), count);
    return count;
  }
  std::string bytes;
};

}  // namespace tw::test

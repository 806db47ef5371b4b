// What an output has done so far. Its thread writes, any thread reads.
#pragma once

#include <atomic>
#include <cstdint>

namespace tw {

// As it is told. What is sent of one ping counts as one.
struct SinkFigures {
  uint32_t sent;
  uint32_t dropped;  // late, not taken, or not taken whole
  uint32_t clients;  // of TCP: so many are connected
  uint32_t error;    // system error of the latest failure; 0: it works
};

class SinkCount {
 public:
  void Sent() {
    ++sent_;
    error_ = 0;
  }
  void Dropped() { ++dropped_; }
  void Failed(uint32_t error) { error_ = error; }
  void HasClients(uint32_t clients) { clients_ = clients; }

  [[nodiscard]] SinkFigures Figures() const { return {sent_, dropped_, clients_, error_}; }

 private:
  std::atomic<uint32_t> sent_ = 0;
  std::atomic<uint32_t> dropped_ = 0;
  std::atomic<uint32_t> clients_ = 0;
  std::atomic<uint32_t> error_ = 0;
};

}  // namespace tw

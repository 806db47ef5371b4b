// Depth for clients that connect. What a client does not take is lost to it; what it has taken a part of is
// finished first, so that no sentence is torn; one that takes nothing for two seconds is sent away, since
// what it would get next is stale. Nothing that clients send is read. Output thread only.
#pragma once

#include <array>

#include "outputs/depth_message.h"
#include "outputs/sink_count.h"
#include "platform/network.h"

namespace tw {

inline constexpr size_t kMaxClients = 8;

class TcpOutput {
 public:
  TcpOutput(const OutputOptions& options, SinkCount& count);
  TcpOutput(const TcpOutput&) = delete;
  TcpOutput& operator=(const TcpOutput&) = delete;
  ~TcpOutput();

  // Lets in whoever waits, the ninth client not. Begins to listen where that has not worked yet.
  void Welcome(uint32_t now_ms);

  // To each client at once or not at all; each counts.
  void Send(const DepthMessage& message, uint32_t now_ms);

 private:
  struct Client {
    Handle connection = Handle::invalid;
    uint32_t taken_ms = 0;  // when it last took something
    uint32_t restSize = 0;  // of a message that it has a part of
    std::array<char, kMaxMessage> rest{};
  };

  [[nodiscard]] bool Listens(uint32_t now_ms);
  void LetIn(Handle connection, uint32_t now_ms);
  void SendTo(Client& client, const DepthMessage& message, uint32_t now_ms);
  // False when the connection has failed.
  [[nodiscard]] bool SendRest(Client& client, uint32_t now_ms);
  [[nodiscard]] bool SendWhole(Client& client, const DepthMessage& message, uint32_t now_ms);
  void SendAway(Client& client);

  NetworkAddress at_;
  SinkCount& count_;
  Handle listener_ = Handle::invalid;
  bool tried_ = false;
  uint32_t tried_ms_ = 0;
  uint32_t clientCount_ = 0;
  std::array<Client, kMaxClients> clients_;
};

}  // namespace tw

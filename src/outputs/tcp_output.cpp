#include "outputs/tcp_output.h"

#include <algorithm>

#include "platform/system_error.h"

namespace tw {
namespace {

constexpr uint32_t kTryAgain_ms = 5'000;

}  // namespace

TcpOutput::TcpOutput(const OutputOptions& options, SinkCount& count) : at_{}, count_(count) {
  static_cast<void>(ParseAddress(options.tcpAddress, at_.ip));  // bounded options have an address
  at_.port = static_cast<uint16_t>(options.tcpPort);
}

TcpOutput::~TcpOutput() {
  CloseSocket(listener_);
  for (const Client& client : clients_) CloseSocket(client.connection);
}

bool TcpOutput::Listens(uint32_t now_ms) {
  if (listener_ != Handle::invalid) return true;
  if (tried_ && now_ms - tried_ms_ < kTryAgain_ms) return false;
  tried_ = true;
  tried_ms_ = now_ms;
  listener_ = ListenForConnections(at_, kMaxClients);
  count_.Failed(listener_ == Handle::invalid ? LastSystemError() : 0);
  return listener_ != Handle::invalid;
}

void TcpOutput::Welcome(uint32_t now_ms) {
  if (!Listens(now_ms)) return;
  // No more at a time than wait at most: the rest comes with the next ping.
  for (size_t i = 0; i < kMaxClients; ++i) {
    const Handle connection = AcceptConnection(listener_);
    if (connection == Handle::invalid) return;
    LetIn(connection, now_ms);
  }
}

void TcpOutput::LetIn(Handle connection, uint32_t now_ms) {
  const auto free = std::find_if(clients_.begin(), clients_.end(),
                                 [](const Client& client) { return client.connection == Handle::invalid; });
  if (free == clients_.end()) return CloseSocket(connection);
  free->connection = connection;
  free->taken_ms = now_ms;
  free->restSize = 0;
  count_.HasClients(++clientCount_);
}

void TcpOutput::Send(const DepthMessage& message, uint32_t now_ms) {
  for (Client& client : clients_) {
    if (client.connection != Handle::invalid) SendTo(client, message, now_ms);
  }
}

void TcpOutput::SendTo(Client& client, const DepthMessage& message, uint32_t now_ms) {
  if (!SendRest(client, now_ms)) return SendAway(client);
  if (client.restSize > 0) {
    count_.Dropped();
  } else if (!SendWhole(client, message, now_ms)) {
    return SendAway(client);
  }
  if (now_ms - client.taken_ms > kStale_ms) SendAway(client);
}

bool TcpOutput::SendRest(Client& client, uint32_t now_ms) {
  if (client.restSize == 0) return true;
  uint32_t sent = 0;
  if (!SendOnConnection(client.connection, client.rest.data(), client.restSize, sent)) return false;
  std::copy(client.rest.begin() + sent, client.rest.begin() + client.restSize, client.rest.begin());
  client.restSize -= sent;
  if (sent > 0) client.taken_ms = now_ms;
  return true;
}

bool TcpOutput::SendWhole(Client& client, const DepthMessage& message, uint32_t now_ms) {
  uint32_t sent = 0;
  const bool works = SendOnConnection(client.connection, message.text.data(), message.Size(), sent);
  if (sent == 0) {
    count_.Dropped();
    return works;
  }
  count_.Sent();
  client.taken_ms = now_ms;
  client.restSize = message.Size() - sent;
  std::copy_n(message.text.begin() + sent, client.restSize, client.rest.begin());
  return true;
}

void TcpOutput::SendAway(Client& client) {
  CloseSocket(client.connection);
  client.connection = Handle::invalid;
  count_.HasClients(--clientCount_);
}

}  // namespace tw

// Sockets of the internet protocol, version 4. No call waits for anybody: what cannot be done at once is not
// done. One thread uses a socket at a time. Functions that can fail return false or Handle::invalid, and
// LastSystemError() tells why. Names are not looked up, since that can take long; addresses are numbers.
#pragma once

#include <cstdint>

#include "platform/handle.h"

namespace tw {

// 127.0.0.1 is 0x7F000001; all addresses of this computer (to listen on) are 0.
struct NetworkAddress {
  uint32_t ip;
  uint16_t port;
};

// A socket to send datagrams from. A broadcast address reaches everybody; nothing else does.
[[nodiscard]] Handle OpenDatagramSocket();

// Hands the datagram to the system; whether somebody gets it is not known. False when it was not taken.
[[nodiscard]] bool SendDatagram(Handle socket, const NetworkAddress& to, const void* bytes, uint32_t size);

// Waits for connections at one of this computer's addresses; `waiting` is how many may wait to be accepted.
// Fails while another program, or this one, listens there.
[[nodiscard]] Handle ListenForConnections(const NetworkAddress& at, int32_t waiting);

// The next connection that waits; Handle::invalid when there is none.
[[nodiscard]] Handle AcceptConnection(Handle listener);

// What is sent waits in a small buffer of the system until the other side takes it.
inline constexpr int32_t kConnectionBuffer_bytes = 8'192;

// Sends what the connection takes at once; `sent` says how much, 0 while the buffer is full. False when the
// connection has failed (then `sent` is 0).
[[nodiscard]] bool SendOnConnection(Handle connection, const void* bytes, uint32_t size, uint32_t& sent);

// Closes any of the three; Handle::null and Handle::invalid are ignored.
void CloseSocket(Handle socket);

}  // namespace tw

#include "platform/network.h"

#include <winsock2.h>

#include <mswsock.h>

#include "platform/win32/handle_win32.h"

namespace tw {
namespace {

// Once for the life of the process. Without it each call fails and says so.
void BeginSockets() {
  static const bool begun = [] {
    WSADATA unused;
    return WSAStartup(MAKEWORD(2, 2), &unused) == 0;
  }();
  static_cast<void>(begun);
}

[[nodiscard]] SOCKET ToSocket(Handle handle) {
  return static_cast<SOCKET>(handle);
}

// A socket that is closed again unless it is taken; the error of the call before stays.
class NewSocket {
 public:
  explicit NewSocket(SOCKET socket) : socket_(socket) {}
  NewSocket(const NewSocket&) = delete;
  NewSocket& operator=(const NewSocket&) = delete;
  ~NewSocket() {
    if (socket_ == INVALID_SOCKET) return;
    const int error = WSAGetLastError();
    closesocket(socket_);
    WSASetLastError(error);
  }

  [[nodiscard]] SOCKET Get() const { return socket_; }
  [[nodiscard]] Handle Take() {
    const Handle handle{socket_};
    socket_ = INVALID_SOCKET;
    return handle;
  }

 private:
  SOCKET socket_;
};
static_assert(INVALID_SOCKET == static_cast<SOCKET>(Handle::invalid));

[[nodiscard]] SOCKET MakeSocket(int type) {
  BeginSockets();
  return WSASocketW(AF_INET, type, 0, nullptr, 0, WSA_FLAG_NO_HANDLE_INHERIT | WSA_FLAG_OVERLAPPED);
}

[[nodiscard]] sockaddr_in SystemAddress(const NetworkAddress& address) {
  sockaddr_in system{};
  system.sin_family = AF_INET;
  system.sin_addr.s_addr = htonl(address.ip);
  system.sin_port = htons(address.port);
  return system;
}

[[nodiscard]] bool Set(SOCKET socket, int level, int option, int value) {
  return setsockopt(socket, level, option, reinterpret_cast<const char*>(&value), sizeof(value)) == 0;
}

[[nodiscard]] bool NeverWaits(SOCKET socket) {
  u_long on = 1;
  return ioctlsocket(socket, static_cast<long>(FIONBIO), &on) == 0;
}

// That nobody was there for a datagram must not fail the next one. Unchecked: where the system
// does not know it, one datagram is lost at most.
void ForgetUnreached(SOCKET socket) {
  BOOL tell = FALSE;
  DWORD unused = 0;
  WSAIoctl(socket, SIO_UDP_CONNRESET, &tell, sizeof(tell), nullptr, 0, &unused, nullptr, nullptr);
}

// Here others could listen on the same port unless it is asked for alone.
[[nodiscard]] bool Listen(SOCKET socket, const sockaddr_in& at, int waiting) {
  return NeverWaits(socket) && Set(socket, SOL_SOCKET, SO_EXCLUSIVEADDRUSE, 1) &&
         bind(socket, reinterpret_cast<const sockaddr*>(&at), sizeof(at)) == 0 &&
         listen(socket, waiting) == 0;
}

}  // namespace

Handle OpenDatagramSocket() {
  NewSocket socket(MakeSocket(SOCK_DGRAM));
  const bool made = socket.Get() != INVALID_SOCKET && NeverWaits(socket.Get()) &&
                    Set(socket.Get(), SOL_SOCKET, SO_BROADCAST, 1);
  if (!made) return Handle::invalid;
  ForgetUnreached(socket.Get());
  return socket.Take();
}

bool SendDatagram(Handle handle, const NetworkAddress& to, const void* bytes, uint32_t size) {
  const sockaddr_in address = SystemAddress(to);
  return sendto(ToSocket(handle), static_cast<const char*>(bytes), static_cast<int>(size), 0,
                reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != SOCKET_ERROR;
}

Handle ListenForConnections(const NetworkAddress& at, int32_t waiting) {
  NewSocket socket(MakeSocket(SOCK_STREAM));
  const bool listens = socket.Get() != INVALID_SOCKET && Listen(socket.Get(), SystemAddress(at), waiting);
  return listens ? socket.Take() : Handle::invalid;
}

Handle AcceptConnection(Handle listener) {
  NewSocket socket(accept(ToSocket(listener), nullptr, nullptr));
  const bool accepted = socket.Get() != INVALID_SOCKET && NeverWaits(socket.Get()) &&
                        Set(socket.Get(), IPPROTO_TCP, TCP_NODELAY, 1) &&
                        Set(socket.Get(), SOL_SOCKET, SO_SNDBUF, kConnectionBuffer_bytes);
  return accepted ? socket.Take() : Handle::invalid;
}

bool SendOnConnection(Handle connection, const void* bytes, uint32_t size, uint32_t& sent) {
  const int count = send(ToSocket(connection), static_cast<const char*>(bytes), static_cast<int>(size), 0);
  sent = count > 0 ? static_cast<uint32_t>(count) : 0;
  return count != SOCKET_ERROR || WSAGetLastError() == WSAEWOULDBLOCK;
}

void CloseSocket(Handle socket) {
  if (socket != Handle::null && socket != Handle::invalid) closesocket(ToSocket(socket));
}

}  // namespace tw

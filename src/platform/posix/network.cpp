#include "platform/network.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>

#include "platform/posix/handle_table.h"
#include "platform/posix/last_error.h"

namespace tw {
namespace {

class Socket {
 public:
  explicit Socket(int descriptor) : descriptor_(descriptor) {}
  Socket(const Socket&) = delete;
  Socket& operator=(const Socket&) = delete;
  ~Socket() { close(descriptor_); }

  [[nodiscard]] int Get() const { return descriptor_; }

 private:
  const int descriptor_;
};

HandleTable<Socket>& Sockets() {
  static auto* const table = new HandleTable<Socket>(HandleKind::socket);
  return *table;
}

[[nodiscard]] std::shared_ptr<Socket> FindSocket(Handle handle) {
  std::shared_ptr<Socket> socket = Sockets().Find(handle);
  if (socket == nullptr) SetSystemError(EBADF);
  return socket;
}

[[nodiscard]] std::shared_ptr<Socket> MakeSocket(int type) {
  const int descriptor = ::socket(AF_INET, type | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
  if (descriptor >= 0) return std::make_shared<Socket>(descriptor);
  FailWithErrno();
  return nullptr;
}

[[nodiscard]] sockaddr_in SystemAddress(const NetworkAddress& address) {
  sockaddr_in system{};
  system.sin_family = AF_INET;
  system.sin_addr.s_addr = htonl(address.ip);
  system.sin_port = htons(address.port);
  return system;
}

[[nodiscard]] bool Set(int descriptor, int level, int option, int value) {
  return setsockopt(descriptor, level, option, &value, sizeof(value)) == 0 || FailWithErrno();
}

// A port whose last connections have not died away yet can be listened on again.
[[nodiscard]] bool Listen(int descriptor, const sockaddr_in& at, int waiting) {
  if (!Set(descriptor, SOL_SOCKET, SO_REUSEADDR, 1)) return false;
  if (bind(descriptor, reinterpret_cast<const sockaddr*>(&at), sizeof(at)) != 0) return FailWithErrno();
  return listen(descriptor, waiting) == 0 || FailWithErrno();
}

}  // namespace

Handle OpenDatagramSocket() {
  std::shared_ptr<Socket> socket = MakeSocket(SOCK_DGRAM);
  if (socket == nullptr || !Set(socket->Get(), SOL_SOCKET, SO_BROADCAST, 1)) return Handle::invalid;
  return Sockets().Add(std::move(socket));
}

bool SendDatagram(Handle handle, const NetworkAddress& to, const void* bytes, uint32_t size) {
  const std::shared_ptr<Socket> socket = FindSocket(handle);
  if (socket == nullptr) return false;
  const sockaddr_in address = SystemAddress(to);
  return sendto(socket->Get(), bytes, size, MSG_NOSIGNAL, reinterpret_cast<const sockaddr*>(&address),
                sizeof(address)) >= 0 ||
         FailWithErrno();
}

Handle ListenForConnections(const NetworkAddress& at, int32_t waiting) {
  std::shared_ptr<Socket> socket = MakeSocket(SOCK_STREAM);
  if (socket == nullptr || !Listen(socket->Get(), SystemAddress(at), waiting)) return Handle::invalid;
  return Sockets().Add(std::move(socket));
}

Handle AcceptConnection(Handle handle) {
  const std::shared_ptr<Socket> listener = FindSocket(handle);
  if (listener == nullptr) return Handle::invalid;
  const int descriptor = accept4(listener->Get(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
  if (descriptor < 0) {
    FailWithErrno();
    return Handle::invalid;
  }
  auto socket = std::make_shared<Socket>(descriptor);
  if (!Set(descriptor, IPPROTO_TCP, TCP_NODELAY, 1) ||
      !Set(descriptor, SOL_SOCKET, SO_SNDBUF, kConnectionBuffer_bytes)) {
    return Handle::invalid;
  }
  return Sockets().Add(std::move(socket));
}

bool SendOnConnection(Handle handle, const void* bytes, uint32_t size, uint32_t& sent) {
  sent = 0;
  const std::shared_ptr<Socket> socket = FindSocket(handle);
  if (socket == nullptr) return false;
  const ssize_t count = send(socket->Get(), bytes, size, MSG_NOSIGNAL);
  if (count < 0) return errno == EAGAIN || errno == EINTR || FailWithErrno();
  sent = static_cast<uint32_t>(count);
  return true;
}

void CloseSocket(Handle socket) {
  Sockets().Remove(socket);
}

}  // namespace tw

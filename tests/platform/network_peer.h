// The other side of the sockets, for tests: plain sockets of the system at 127.0.0.1, whose waits end after
// 20 s.
#pragma once

#ifdef _WIN32
#include <winsock2.h>
#else
#include <arpa/inet.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>
#endif

#include <string>
#include <utility>

#include "platform/network.h"

namespace tw {

class NetworkPeer {
 public:
#ifdef _WIN32
  using Native = SOCKET;
  using Length = int;
#else
  using Native = int;
  using Length = socklen_t;
  static int closesocket(int socket) {
    return close(socket);
  }
#endif
  static constexpr Native kNone = static_cast<Native>(-1);

  // A receiver of datagrams at a free port.
  static NetworkPeer Receiver() {
    return NetworkPeer(SOCK_DGRAM, 0, bind);
  }
  // A client of the port, for which little can wait.
  static NetworkPeer Client(uint16_t port) {
    return NetworkPeer(SOCK_STREAM, port, connect);
  }

  NetworkPeer(NetworkPeer&& other) noexcept
      : socket_(std::exchange(other.socket_, kNone)), port_(other.port_) {}
  NetworkPeer& operator=(NetworkPeer&&) = delete;
  ~NetworkPeer() {
    if (socket_ != kNone) closesocket(socket_);
  }

  [[nodiscard]] NetworkAddress Address() const {
    return {0x7F00'0001, port_};
  }

  // A datagram, or what has come on the connection; empty at its end and when nothing comes.
  [[nodiscard]] std::string Receive() const {
    char bytes[2'048];
    const auto got = recv(socket_, bytes, sizeof(bytes), 0);
    return got > 0 ? std::string(bytes, static_cast<size_t>(got)) : "";
  }
  // Waits for the end of the connection, with nothing before it.
  [[nodiscard]] bool HasEnded() const {
    char byte = 0;
    return recv(socket_, &byte, 1, 0) == 0;
  }
  // Receives until so much has come, or no more comes.
  [[nodiscard]] std::string Receive(size_t wanted) const {
    std::string text;
    for (std::string more; text.size() < wanted && !(more = Receive()).empty();) text += more;
    return text;
  }

 private:
  template <typename Attach>
  NetworkPeer(int type, uint16_t port, const Attach& attach) {
#ifdef _WIN32
    WSADATA unused;
    static_cast<void>(WSAStartup(MAKEWORD(2, 2), &unused));
    const DWORD patience = 20'000;
#else
    const timeval patience{20, 0};
#endif
    socket_ = socket(AF_INET, type, 0);
    const int room = type == SOCK_STREAM ? 2'048 : 65'536;
    setsockopt(socket_, SOL_SOCKET, SO_RCVBUF, reinterpret_cast<const char*>(&room), sizeof(room));
    setsockopt(socket_, SOL_SOCKET, SO_RCVTIMEO, reinterpret_cast<const char*>(&patience), sizeof(patience));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(0x7F00'0001);
    address.sin_port = htons(port);
    Length length = sizeof(address);
    if (attach(socket_, reinterpret_cast<sockaddr*>(&address), length) != 0) return;
    getsockname(socket_, reinterpret_cast<sockaddr*>(&address), &length);
    port_ = ntohs(address.sin_port);
  }

  Native socket_ = kNone;
  uint16_t port_ = 0;
};

}  // namespace tw

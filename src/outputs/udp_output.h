// Depth by datagrams, one sentence each. Output thread only.
#pragma once

#include "outputs/depth_message.h"
#include "outputs/sink_count.h"
#include "platform/network.h"

namespace tw {

class UdpOutput {
 public:
  UdpOutput(const OutputOptions& options, SinkCount& count);
  UdpOutput(const UdpOutput&) = delete;
  UdpOutput& operator=(const UdpOutput&) = delete;
  ~UdpOutput() { CloseSocket(socket_); }

  // At once or not at all.
  void Send(const DepthMessage& message);

 private:
  [[nodiscard]] bool SendAll(const DepthMessage& message);

  NetworkAddress to_;
  SinkCount& count_;
  Handle socket_ = Handle::invalid;
};

}  // namespace tw

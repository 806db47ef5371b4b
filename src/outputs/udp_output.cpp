#include "outputs/udp_output.h"

#include "platform/system_error.h"

namespace tw {

UdpOutput::UdpOutput(const OutputOptions& options, SinkCount& count) : to_{}, count_(count) {
  static_cast<void>(ParseAddress(options.udpAddress, to_.ip));  // bounded options have an address
  to_.port = static_cast<uint16_t>(options.udpPort);
}

void UdpOutput::Send(const DepthMessage& message) {
  if (SendAll(message)) return count_.Sent();
  count_.Failed(LastSystemError());
  count_.Dropped();
}

bool UdpOutput::SendAll(const DepthMessage& message) {
  if (socket_ == Handle::invalid) socket_ = OpenDatagramSocket();
  if (socket_ == Handle::invalid) return false;
  for (size_t i = 0; i < message.count; ++i) {
    const std::string_view sentence = message.Sentence(i);
    if (!SendDatagram(socket_, to_, sentence.data(), static_cast<uint32_t>(sentence.size()))) return false;
  }
  return true;
}

}  // namespace tw

#include "app/window/depth_outputs.h"

#include <cinttypes>
#include <new>

#include "base/shared_value.h"
#include "base/text_format.h"
#include "outputs/depth_output.h"

namespace tw {
namespace {

// For the life of the process, since workers may offer pings to the end. Null without memory.
DepthOutput* Outputs() {
  static DepthOutput* const outputs = new (std::nothrow) DepthOutput;
  return outputs;
}

uint32_t SentencesOf(const Options& o) {
  uint32_t sentences = 0;
  const struct {
    int32_t wanted;
    Sentence sentence;
  } rows[] = {{o.sendGga, kGga}, {o.sendRmc, kRmc}, {o.sendDbt, kDbt},
              {o.sendDpt, kDpt}, {o.sendMtw, kMtw}, {o.sendXdr, kXdr}};
  for (const auto& [wanted, sentence] : rows) sentences |= wanted != 0 ? sentence : 0u;
  return sentences;
}

}  // namespace

OutputOptions OutputsOf(const Options& o) {
  OutputOptions outputs{.serial = o.sendSerial != 0,
                        .udp = o.sendUdp != 0,
                        .tcp = o.sendTcp != 0,
                        .lowChannel = o.sendLowChannel != 0,
                        .sentences = SentencesOf(o),
                        .pingsPerSecond = o.outputRate,
                        .transducerOffset_m = static_cast<float>(o.transducerOffset_cm) / 100.0f,
                        .speed = o.serialSpeed_bps,
                        .udpPort = o.udpPort,
                        .tcpPort = o.tcpPort};
  FormatWide(outputs.line, "\\\\.\\COM%" PRId32, o.serialPort);
  CopyWide(outputs.udpAddress, o.udpAddress.text);
  CopyWide(outputs.tcpAddress, o.tcpAddress.text);
  return Bound(outputs);
}

void RestartOutputs(AppState& state) {
  const OutputOptions options = OutputsOf(state.options);
  DepthOutput* const outputs = Outputs();
  if (outputs == nullptr) return;
  const bool any = options.serial || options.udp || options.tcp;
  StoreShared(state.outputs, static_cast<PingSink*>(nullptr));
  const bool runs = outputs->Start(options);  // with all off it only stops
  if (any && runs) StoreShared(state.outputs, static_cast<PingSink*>(outputs));
}

void StopOutputs(AppState& state) {
  if (LoadShared(state.outputs) == nullptr) return;
  StoreShared(state.outputs, static_cast<PingSink*>(nullptr));
  Outputs()->Stop();
}

}  // namespace tw

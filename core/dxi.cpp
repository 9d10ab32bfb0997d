#include "core/dxi.h"

#include <algorithm>
#include <cstring>

#include "interfaces/graph_interfaces.h"
#include "platform/com_ptr.h"

namespace {

HRESULT FloatOnly(const WaveFormat& format) {
  return format.wFormatTag == WAVE_FORMAT_IEEE_FLOAT_TAG ? S_OK : VFW_E_TYPE_NOT_ACCEPTED;
}

}  // namespace

HRESULT CExternalHardwareProxyDXi::IsValidInputFormat(const WaveFormat& format) {
  return FloatOnly(format);
}

HRESULT CExternalHardwareProxyDXi::IsValidOutputFormat(const WaveFormat& format) {
  return FloatOnly(format);
}

HRESULT CExternalHardwareProxyDXi::IsValidTransform(const WaveFormat& input,
                                                    const WaveFormat& output) {
  return SUCCEEDED(FloatOnly(input)) && SUCCEEDED(FloatOnly(output)) ? S_OK
                                                                     : VFW_E_TYPE_NOT_ACCEPTED;
}

namespace {

constexpr std::int64_t kBytesPerChannelSample = 4;

// Bytes from `buffer`'s position to the end of its sample.
std::int64_t RoomIn(const AudioBuffer& buffer) {
  return std::int64_t{buffer.sample->GetSize()} - buffer.byteOffset;
}

}  // namespace

std::uint8_t* DataAt(const AudioBuffer& buffer) {
  std::uint8_t* data = nullptr;
  buffer.sample->GetPointer(&data);
  return data + buffer.byteOffset;
}

std::uint8_t* WritePosition(AudioBuffer& buffer) {
  buffer.silent = 0;
  return DataAt(buffer);
}

void MarkSilent(AudioBuffer& buffer) {
  buffer.silent = 1;
  ComPtr<ISampleSilence> silence;
  if (SUCCEEDED(silence.QueryFrom(buffer.sample, IID_ISampleSilence))) silence->SetSilent(1);
}

void SettleSilence(AudioBuffer& buffer, std::int32_t bytes) {
  // A sample that can say it is silent keeps its own flag: only Process marks one.
  ComPtr<ISampleSilence> silence;
  if (SUCCEEDED(silence.QueryFrom(buffer.sample, IID_ISampleSilence))) return;
  const auto n = std::clamp<std::int64_t>(bytes, 0, RoomIn(buffer));
  std::memset(DataAt(buffer), 0, static_cast<std::size_t>(n));
}

// The copy never reaches past the end of either sample, whatever the formats claim.
HRESULT CExternalHardwareProxyDXi::Process(std::int64_t, AudioBuffer* input, AudioBuffer* outputs,
                                           std::int32_t outputCount, std::int64_t, VoiceQueue&) {
  if (!input) return S_FALSE;
  if (outputCount < 1) return S_OK;
  AudioBuffer& output = outputs[0];
  if (input->silent) {
    MarkSilent(output);
    return S_OK;
  }
  const std::int64_t bytes = std::int64_t{input->frames} * m_inputFormat.nChannels *
                             kBytesPerChannelSample;
  const auto n = std::clamp<std::int64_t>(bytes, 0, std::min(RoomIn(*input), RoomIn(output)));
  std::memcpy(WritePosition(output), DataAt(*input), static_cast<std::size_t>(n));
  return S_OK;
}

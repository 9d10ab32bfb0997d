#include "core/dxi.h"

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

// Passing audio through arrives with the audio path.
HRESULT CExternalHardwareProxyDXi::Process(std::int64_t, AudioBuffer*, AudioBuffer*, std::int32_t,
                                           std::int64_t, VoiceQueue&) {
  return E_NOTIMPL;
}

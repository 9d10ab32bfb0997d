// Operations whose behaviour arrives with later subsystems (the host event line and the saved
// configuration). Until then they answer E_NOTIMPL.
#include "core/soft_synth.h"

HRESULT CSoftSynth::OnStart(std::int32_t) { return E_NOTIMPL; }
HRESULT CSoftSynth::OnLoop(std::int32_t, std::int32_t) { return E_NOTIMPL; }
HRESULT CSoftSynth::OnStop(std::uint32_t) { return E_NOTIMPL; }
HRESULT CSoftSynth::OnEvents(std::uint32_t, std::uint32_t, std::int32_t, IHostEventList*) {
  return E_NOTIMPL;
}
HRESULT CSoftSynth::OnNotify(const void*) { return E_NOTIMPL; }
HRESULT CSoftSynth::SetConfigXml(const wchar_t*) { return E_NOTIMPL; }
HRESULT CSoftSynth::GetConfigXmlSize(std::uint32_t*, std::int32_t) { return E_NOTIMPL; }
HRESULT CSoftSynth::GetConfigXml(wchar_t*, std::uint32_t, std::int32_t) { return E_NOTIMPL; }

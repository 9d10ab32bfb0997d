// Operations whose behaviour arrives with later subsystems (the device store, the saved
// configuration). Until then they answer E_NOTIMPL.
#include "core/soft_synth.h"

HRESULT CSoftSynth::GetBanks(std::int32_t**, std::int32_t*) { return E_NOTIMPL; }
HRESULT CSoftSynth::QueryPatchFalse(std::int32_t, std::int32_t) { return E_NOTIMPL; }
HRESULT CSoftSynth::QueryPatchTrue(std::int32_t, std::int32_t) { return E_NOTIMPL; }
HRESULT CSoftSynth::GetPatchNames(std::int32_t, IMfxNameList**) { return E_NOTIMPL; }
HRESULT CSoftSynth::ReservedQuery(std::int32_t, std::int32_t, void*) { return E_NOTIMPL; }
HRESULT CSoftSynth::GetControllerNames(IMfxNameList**) { return E_NOTIMPL; }
HRESULT CSoftSynth::ReservedListA(void*) { return E_NOTIMPL; }
HRESULT CSoftSynth::ReservedListB(void*) { return E_NOTIMPL; }
HRESULT CSoftSynth::GetInstrumentInterface(std::uint32_t, IMfxInstrument**) { return E_NOTIMPL; }

HRESULT CSoftSynth::ConsumeInstrumentChanged(std::int32_t*) { return E_NOTIMPL; }
HRESULT CSoftSynth::GetDeviceSummary(wchar_t*, std::int32_t, wchar_t*, std::int32_t,
                                     std::uint32_t*) {
  return E_NOTIMPL;
}
HRESULT CSoftSynth::SetConfigXml(const wchar_t*) { return E_NOTIMPL; }
HRESULT CSoftSynth::GetConfigXmlSize(std::uint32_t*, std::int32_t) { return E_NOTIMPL; }
HRESULT CSoftSynth::GetConfigXml(wchar_t*, std::uint32_t, std::int32_t) { return E_NOTIMPL; }

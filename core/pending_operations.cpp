// Operations whose behaviour arrives with the saved configuration. Until then they answer
// E_NOTIMPL.
#include "core/soft_synth.h"

HRESULT CSoftSynth::SetConfigXml(const wchar_t*) { return E_NOTIMPL; }
HRESULT CSoftSynth::GetConfigXmlSize(std::uint32_t*, std::int32_t) { return E_NOTIMPL; }
HRESULT CSoftSynth::GetConfigXml(wchar_t*, std::uint32_t, std::int32_t) { return E_NOTIMPL; }

// Choosing the host's ports by name: an exact, case-sensitive scan of the host's list, the
// announcement of the chosen port's id, and the warning when the name is not there.
#include <cwchar>

#include "core/soft_synth.h"
#include "platform/message_box.h"

namespace {

enum class Direction { Input, Output };

std::wstring UnavailablePortWarning(Direction direction, const std::wstring& name) {
  return direction == Direction::Input
             ? L"Warning:  Tarn configured to use unavailable MIDI input port \"" + name +
                   L"\".  Disabling input."
             : L"Warning:  Tarn configured to use unavailable MIDI output port \"" + name +
                   L"\".  Disabling output.";
}

// The index of the first port named exactly `name`, or -1. The count is asked anew each round,
// as the host's list may change while we walk it.
std::int32_t FindPort(IHostMidiPorts& ports, Direction direction, const std::wstring& name) {
  wchar_t buffer[kPortNameCapacity];
  for (std::int32_t i = 0; i < (direction == Direction::Input ? ports.GetInputPortCount()
                                                              : ports.GetOutputPortCount());
       ++i) {
    buffer[0] = L'\0';
    if (direction == Direction::Input)
      ports.GetInputPortName(i, buffer, kPortNameCapacity);
    else
      ports.GetOutputPortName(i, buffer, kPortNameCapacity);
    buffer[kPortNameCapacity - 1] = L'\0';  // a host that fills the buffer whole still ends here
    if (name == buffer) return i;
  }
  return -1;
}

// Tells a host that offers stable ids which port we took; skipped when it offers none.
void AnnouncePort(IHostMidiPorts& ports, Direction direction, std::int32_t index) {
  ComPtr<IHostMidiPorts2> ports2;
  if (FAILED(ports2.QueryFrom(&ports, IID_IHostMidiPorts2))) return;
  std::int32_t id = 0;
  if (direction == Direction::Input) {
    ports2->GetInputPortId(index, &id);
    ports2->UseInputPort(id);
  } else {
    ports2->GetOutputPortId(index, &id);
    ports2->UseOutputPort(id);
  }
}

}  // namespace

HRESULT CSoftSynth::SelectPort(bool input, std::wstring name) {
  const Direction direction = input ? Direction::Input : Direction::Output;
  ComPtr<IHostMidiPorts> ports;
  GetPorts(ports.Receive());
  const std::int32_t index = ports ? FindPort(*ports, direction, name) : -1;
  if (index >= 0) {
    if (input) {
      m_inputPortName = name;
      m_inputPortIndex = index;
    } else {
      m_outputPortName = name;
      m_outputPortIndex = index;
    }
    AnnouncePort(*ports, direction, index);
    return S_OK;
  }
  // The words say "Disabling", but the choice stands as it was: the loader decides.
  if (!name.empty()) ShowMessageBox(UnavailablePortWarning(direction, name), L"Tarn", MB_ICONWARNING_FLAG);
  return E_FAIL;
}

HRESULT CSoftSynth::SelectInputPort(std::wstring name) { return SelectPort(true, std::move(name)); }
HRESULT CSoftSynth::SelectOutputPort(std::wstring name) { return SelectPort(false, std::move(name)); }

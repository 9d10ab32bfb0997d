// Ports are chosen by exact, case-sensitive name from the host's list, asking for the count again
// each round, as the list may change while it is walked.
#include "ports/port_choice.h"

#include "platform/com_ptr.h"
#include "platform/message_box.h"

namespace {

using Direction = CPortChoice::Direction;

std::wstring UnavailablePortWarning(Direction direction, const std::wstring& name) {
  return direction == Direction::Input
             ? L"Warning:  Tarn configured to use unavailable MIDI input port \"" + name +
                   L"\".  Disabling input."
             : L"Warning:  Tarn configured to use unavailable MIDI output port \"" + name +
                   L"\".  Disabling output.";
}

// The index of the first port named exactly `name`, or -1. After a failed name call the buffer
// is compared as it stands, holding whatever the last call left.
std::int32_t FindPort(IHostMidiPorts& ports, Direction direction, const std::wstring& name) {
  wchar_t buffer[kPortNameCapacity] = {};
  for (std::int32_t i = 0; i < (direction == Direction::Input ? ports.GetInputPortCount()
                                                              : ports.GetOutputPortCount());
       ++i) {
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

HRESULT CPortChoice::Select(IHostMidiPorts* ports, Direction direction,
                            const std::wstring& name) {
  const std::int32_t index = ports ? FindPort(*ports, direction, name) : -1;
  if (index < 0) {
    // The words say "Disabling", but the choice stands as it was: the loader decides.
    if (!name.empty())
      ShowMessageBox(UnavailablePortWarning(direction, name), L"Tarn", MB_ICONWARNING_FLAG);
    return E_FAIL;
  }
  {
    std::lock_guard lock(m_namesLock);
    (direction == Direction::Input ? m_inputName : m_outputName) = name;
    (direction == Direction::Input ? m_inputIndex : m_outputIndex) = index;
  }
  AnnouncePort(*ports, direction, index);
  return S_OK;
}

void CPortChoice::SetOutputEnabled(bool enabled) {
  m_outputEnabled = enabled;
  if (enabled) return;
  std::lock_guard lock(m_namesLock);
  m_outputName.clear();
  m_outputIndex = -1;
}

std::wstring CPortChoice::OutputName() const {
  std::lock_guard lock(m_namesLock);
  return m_outputName;
}

std::wstring CPortChoice::InputName() const {
  std::lock_guard lock(m_namesLock);
  return m_inputName;
}

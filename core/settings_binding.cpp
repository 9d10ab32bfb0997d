// The instance as the saved state sees it, and the text route of IExternalDeviceProxy3, which
// hands the same document to a host as wide text.
#include "core/soft_synth.h"
#include "documents/settings_stream.h"

ComPtr<IHostMidiPorts> CSoftSynth::SettingsPorts() { return m_connection.Ports(); }

ISettingsSubject::PortChoice CSoftSynth::SavedPort(PortDirection direction) {
  if (direction == PortDirection::Input) return {m_ports.InputName(), m_ports.InputIndex()};
  return {m_ports.OutputName(), m_ports.OutputIndex()};
}

std::uint32_t CSoftSynth::SavedRechannel() { return m_worker.Rechannel(); }
bool CSoftSynth::SavedMidiSync() { return m_midiSync; }

std::vector<std::uint8_t> CSoftSynth::SavedSysexPrefix() {
  const auto prefix = m_worker.Prefix();
  return prefix ? *prefix : std::vector<std::uint8_t>();
}

void CSoftSynth::ForEachSavedEvent(const std::function<void(const CStoredEvent&)>& visit) {
  m_events.ForEach(visit);
}

void CSoftSynth::WriteCurrentDevice(TiXmlNode& parent) {
  if (m_instrument) m_instrument->WriteCurrentDevice(parent);
}

void CSoftSynth::ReadDevices(const TiXmlNode& parent, std::vector<std::wstring>& names) {
  if (m_instrument) m_instrument->ReadDevices(parent, names);
}

HRESULT CSoftSynth::SelectDevice(const std::wstring& name) {
  return m_instrument ? m_instrument->SelectDevice(name) : E_FAIL;
}

HRESULT CSoftSynth::RestorePort(PortDirection direction, std::wstring name) {
  return direction == PortDirection::Input ? SelectInputPort(std::move(name))
                                           : SelectOutputPort(std::move(name));
}

void CSoftSynth::RestoreOutputEnabled(bool enabled) { SetOutputEnabled(enabled ? 1 : 0); }
void CSoftSynth::RestoreRechannel(std::uint32_t channel) { m_worker.SetRechannel(channel); }
void CSoftSynth::RestoreSysexPrefix(std::vector<std::uint8_t> bytes) {
  m_worker.SetPrefix(std::move(bytes));
}
void CSoftSynth::RestoreMidiSync(bool enabled) { m_midiSync = enabled; }
void CSoftSynth::RestoreEvents(std::vector<CStoredEvent> events) {
  m_events.Replace(std::move(events));
}

void CSoftSynth::ReloadEditorLists() {
  if (IEditorWindow* editor = m_editor.load()) editor->ReloadLists();
}

HRESULT CSoftSynth::SendEventsAfterLoad() { return SendEnabledEvents(); }

// --- IExternalDeviceProxy3: the text route ------------------------------------------------------

HRESULT CSoftSynth::SetConfigXml(const wchar_t* text) { return ::SetConfigXml(*this, text); }

HRESULT CSoftSynth::GetConfigXmlSize(std::uint32_t* size, std::int32_t includePorts) {
  return ::GetConfigXmlSize(*this, size, includePorts != 0);
}

HRESULT CSoftSynth::GetConfigXml(wchar_t* buffer, std::uint32_t capacity,
                                 std::int32_t includePorts) {
  return ::GetConfigXml(*this, buffer, capacity, includePorts != 0);
}

#include "editor/page_dialog.h"

#include <cwchar>
#include <iterator>

#include "core/activity.h"
#include "documents/stored_event.h"
#include "editor/about_dialog.h"
#include "editor/closed_loop_dialog.h"
#include "editor/editor_messages.h"
#include "editor/modal_view.h"
#include "editor/prefix_editor_dialog.h"
#include "instruments/instrument.h"
#include "interfaces/media_params.h"
#include "platform/codepage.h"
#include "platform/file_dialog.h"
#include "platform/message_box.h"

namespace {

constexpr const wchar_t* kGenericDevice = L"Generic Device";
constexpr const wchar_t* kClearQuestion =
    L"Are you sure you want to remove all device definitions?";

std::wstring ChannelText(std::uint32_t channel) {
  return channel == 0 ? L"Bypass" : std::to_wstring(channel);
}

}  // namespace

CPageDialog::CPageDialog() = default;

CPageDialog::~CPageDialog() {
  if (m_editorSet) m_filter->SetEditorWindow(nullptr);
  Destroy();
  m_filter.Reset();
  m_paramInfo.Reset();
  m_mediaParams.Reset();
  if (m_handle) UnregisterNotifyTarget(m_handle);
}

// --- binding ----------------------------------------------------------------------------------

void CPageDialog::OnObjectsChanged(std::span<IUnknown* const> objects) {
  // An instance that is let go must not keep posting to this page.
  if (m_editorSet) m_filter->SetEditorWindow(nullptr);
  m_editorSet = false;
  m_mediaParams.Reset();
  m_paramInfo.Reset();
  m_filter.Reset();
  for (IUnknown* object : objects) {
    if (FAILED(m_mediaParams.QueryFrom(object, IID_IMediaParams))) continue;
    if (FAILED(m_paramInfo.QueryFrom(object, IID_IMediaParamInfo))) continue;
    m_filter.QueryFrom(object, IID_IMyFilter);
    break;
  }
  if (m_eventList) {
    m_eventList = std::make_unique<CEventList>(m_filter.Get(), m_view->EventList(),
                                               m_view->Window(), m_handle);
    SetEditorWindowOnFilter();
  }
}

void CPageDialog::SetEditorWindowOnFilter() {
  if (!m_filter) return;
  m_filter->SetEditorWindow(this);
  m_editorSet = true;
}

// --- life of the window -------------------------------------------------------------------------

HRESULT CPageDialog::Create(ParentWindow parent) {
  if (m_view) return E_UNEXPECTED;
  CEditorViewFactory* views = EditorViews();
  m_view = views ? views->CreatePageView(parent) : nullptr;
  if (!m_view) return E_FAIL;
  m_closedView.reset();
  m_view->SetEvents(this);
  OnInitDialog();
  return S_OK;
}

void CPageDialog::OnInitDialog() {
  if (!m_handle) m_handle = RegisterNotifyTarget(*this);
  StartTimer(*this, kMeterTimer, kMeterPeriodMs);
  PlaceControls();
  m_eventList = std::make_unique<CEventList>(m_filter.Get(), m_view->EventList(),
                                             m_view->Window(), m_handle);
  m_eventList->SetUp();
  BuildDeviceMenu();
  SetText(kDeviceText, DeviceName());
  BuildChannelMenu();
  BuildAddMenu();
  SetUpMeters();
  BuildOutputPortMenu();
  RefreshPage();
  // Activity can arrive from here on.
  SetEditorWindowOnFilter();
}

void CPageDialog::PlaceControls() {
  for (const PageControlPlace& place : PageControlPlaces()) {
    if (place.normalFace != 0)
      m_view->SetButtonFaces(place.id, place.normalFace, place.pressedFace, place.hoverFace);
  }
  m_view->EnableControl(kSpareButton, false);
  m_view->ShowControl(kSpareButton, false);
}

void CPageDialog::SetUpMeters() {
  const UIImage back{kMeterBackBitmap, kMeterWidth, kMeterHeight};
  const UIImage lit{kMeterLitBitmap, kMeterWidth, kMeterHeight};
  m_inputMeter.Create({kInputMeterX, kInputMeterY, kInputMeterX + kMeterWidth,
                       kInputMeterY + kMeterHeight},
                      nullptr, this, back, lit);
  m_outputMeter.Create({kOutputMeterX, kOutputMeterY, kOutputMeterX + kMeterWidth,
                        kOutputMeterY + kMeterHeight},
                       nullptr, this, back, lit);
  m_controls.Append(m_inputMeter);
  m_controls.Append(m_outputMeter);
}

void CPageDialog::Destroy() {
  StopTimer(*this, kMeterTimer);
  m_eventList.reset();
  m_view.reset();
  m_closedView.reset();
}

// The view reports its window's end from inside itself, so it is let go only later.
void CPageDialog::OnDestroy() {
  if (!m_view) return;
  StopTimer(*this, kMeterTimer);
  m_eventList.reset();
  m_view->SetEvents(nullptr);
  m_closedView = std::move(m_view);
}

// --- showing the model --------------------------------------------------------------------------

void CPageDialog::SetText(std::uint32_t control, const std::wstring& text) {
  m_view->SetText(control, text);
}

void CPageDialog::EnableSending(bool enabled) {
  for (std::uint32_t id : {kSendButton, kSendAllButton, kTestButton})
    m_view->EnableControl(id, enabled);
}

CInstrument* CPageDialog::Instrument() const {
  CInstrument* instrument = nullptr;
  if (m_filter) m_filter->GetInstrumentObject(&instrument);
  return instrument;
}

std::wstring CPageDialog::DeviceName() const {
  CInstrument* instrument = Instrument();
  char name[260] = {};
  if (!instrument || FAILED(instrument->GetInstrumentName(name, sizeof name))) return L"";
  return NarrowToWide(name);
}

void CPageDialog::RefreshPage() {
  if (!m_view) return;
  SetText(kDeviceText, DeviceName());
  std::wstring port = L"none";
  std::int32_t index = -1;
  if (!m_filter || FAILED(m_filter->GetOutputPortIndex(&index))) {
    // The buttons are not enabled for a port that is set: they stay as they are.
    EnableSending(false);
    if (m_filter) m_filter->SetOutputEnabled(0);
  } else {
    port = m_portMenu->TextAt(static_cast<std::size_t>(index) + 1).value_or(L"");
  }
  SetText(kPortText, port);
  ShowSysexPrefix();
  ShowChannel();
  m_eventList->Fill();
  std::int32_t sync = 0;
  if (m_filter) m_filter->GetMIDISync(&sync);
  m_view->SetCheck(kSyncCheck, sync != 0);
}

void CPageDialog::ShowSysexPrefix() {
  if (!m_view) return;
  std::wstring text;
  std::uint32_t length = 0;
  if (m_filter) m_filter->GetSysexPrefixLength(&length);
  for (std::uint32_t i = 0; i < length; ++i) {
    std::uint8_t value = 0;
    m_filter->GetSysexPrefixByte(&value, static_cast<std::int32_t>(i));
    wchar_t hex[8];
    std::swprintf(hex, std::size(hex), L"%02X ", value);
    text += hex;
  }
  SetText(kPrefixText, text);
}

void CPageDialog::ShowChannel() {
  std::uint32_t channel = 0;
  if (m_filter) m_filter->GetOutputRechannel(&channel);
  SetText(kChannelText, ChannelText(channel));
}

// --- menus --------------------------------------------------------------------------------------

// "Generic Device" always leads the devices, wherever it stands in the list; the others keep
// the id of their place, so the gap stays: the handler reads the text back, not the index.
void CPageDialog::BuildDeviceMenu() {
  m_deviceMenu = std::make_shared<CPopupMenu>();
  m_deviceMenu->Append(kDeviceImport, L"Import Patch Names...");
  m_deviceMenu->Append(kDeviceClear, L"Clear this List...");
  CInstrument* instrument = Instrument();
  const std::vector<std::wstring> names =
      instrument ? instrument->GetDeviceNames() : std::vector<std::wstring>{};
  if (!names.empty()) m_deviceMenu->Append(kDeviceGeneric, kGenericDevice);
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (names[i] != kGenericDevice)
      m_deviceMenu->Append(kDeviceGeneric + 1 + static_cast<std::uint32_t>(i), names[i]);
  }
  if (m_view) m_view->SetButtonMenu(kDeviceButton, m_deviceMenu);
}

void CPageDialog::BuildOutputPortMenu() {
  m_portMenu = std::make_shared<CPopupMenu>();
  m_portMenu->Append(kPortNone, L"none");
  ComPtr<IHostMidiPorts> ports;
  if (m_filter && SUCCEEDED(m_filter->GetPorts(ports.Receive())) && ports) {
    // The count is asked again in each round, as the host's list may change meanwhile.
    for (std::int32_t i = 0; i < ports->GetOutputPortCount(); ++i) {
      wchar_t name[kPortNameCapacity] = {};
      ports->GetOutputPortName(i, name, kPortNameCapacity);
      name[kPortNameCapacity - 1] = L'\0';
      m_portMenu->Append(kPortNone + 1 + static_cast<std::uint32_t>(i), name);
    }
  }
  if (m_view) m_view->SetButtonMenu(kPortButton, m_portMenu);
}

void CPageDialog::BuildChannelMenu() {
  m_channelMenu = std::make_shared<CPopupMenu>();
  m_channelMenu->Append(kChannelBypass, L"Bypass");
  for (std::uint32_t channel = 1; channel <= 16; ++channel)
    m_channelMenu->Append(kChannelBypass + channel, std::to_wstring(channel));
  m_view->SetButtonMenu(kChannelButton, m_channelMenu);
}

void CPageDialog::BuildAddMenu() {
  m_addMenu = std::make_shared<CPopupMenu>();
  m_addMenu->Append(kAddController, L"Controller");
  m_addMenu->Append(kAddMidi, L"MIDI");
  m_addMenu->Append(kAddBankProgram, L"Bank/Program Change");
  m_addMenu->Append(kAddSysex, L"System Exclusive");
  m_addMenu->Append(kAddWait, L"Wait");
  m_view->SetButtonMenu(kAddButton, m_addMenu);
}

// --- commands -----------------------------------------------------------------------------------

void CPageDialog::OnCommand(std::uint32_t id) {
  if (!m_view) return;
  if (id >= kPortNone && id <= kPortLast) return OnPortCommand(id);
  if (id >= kDeviceImport && id <= kDeviceLast) return OnDeviceCommand(id);
  if (id >= kChannelBypass && id <= kChannelLast) return OnChannelCommand(id);
  if (id >= kAddFirst && id <= kAddLast) return m_eventList->OnAdd(id);
  switch (id) {
    case kPrefixButton: return EditPrefix();
    case kSendButton: return SendSelected();
    case kSendAllButton: return SendAllEnabled();
    case kSyncCheck:
      if (m_filter) m_filter->SetMIDISync(m_view->IsChecked(kSyncCheck) ? 1 : 0);
      return;
    case kTestButton: return OpenClosedLoopTest();
    case kRemoveButton: return m_eventList->OnRemove();
    case kEditButton: return m_eventList->OnEdit();
    default: return;  // the spare button among them
  }
}

// "none" goes through SelectOutputPort too: no port bears that name, so the instance warns
// that it is unavailable, and the user who picks "none" sees that message.
void CPageDialog::OnPortCommand(std::uint32_t id) {
  const std::optional<std::wstring> text = m_portMenu->TextOf(id);
  if (!text || !m_filter) return;
  if (FAILED(m_filter->SelectOutputPort(*text))) {
    EnableSending(false);
    m_filter->SetOutputEnabled(0);
  } else {
    EnableSending(true);
    m_filter->SetOutputEnabled(1);
  }
  SetText(kPortText, *text);
}

void CPageDialog::OnChannelCommand(std::uint32_t id) {
  if (!m_filter) return;
  m_filter->SetOutputRechannel(id - kChannelBypass);
  ShowChannel();
}

void CPageDialog::OnDeviceCommand(std::uint32_t id) {
  if (id == kDeviceImport) return ImportDevices();
  if (id == kDeviceClear) return ClearDevices();
  const std::optional<std::wstring> text = m_deviceMenu->TextOf(id);
  CInstrument* instrument = Instrument();
  if (!text || !instrument) return;
  instrument->SelectDevice(*text);
  SetText(kDeviceText, *text);
}

// A failed import changes nothing on the page and shows nothing of the page's own.
void CPageDialog::ImportDevices() {
  CInstrument* instrument = Instrument();
  if (!instrument) return;
  const std::optional<std::wstring> path = ChooseFile(
      {FileDialogMode::Open, L"INS", L"Instrument Definition Files (*.INS)|*.INS||"});
  if (!path || FAILED(instrument->ImportDefinitions(*path))) return;
  BuildDeviceMenu();
  const std::vector<std::wstring> names = instrument->GetDeviceNames();
  if (names.empty()) return;
  instrument->SelectDevice(names.front());
  SetText(kDeviceText, names.front());
}

// The device's text stays as it was: it is not rewritten here.
void CPageDialog::ClearDevices() {
  CInstrument* instrument = Instrument();
  if (!instrument) return;
  if (ShowMessageBox(kClearQuestion, L"Tarn", MB_OKCANCEL_FLAG) != ID_OK_ANSWER) return;
  instrument->RemoveAllDevices();
  instrument->ResetToGenericDevice();
  BuildDeviceMenu();
}

void CPageDialog::EditPrefix() {
  if (!m_filter) return;
  std::uint32_t length = 0;
  m_filter->GetSysexPrefixLength(&length);
  std::vector<std::uint8_t> bytes(length);
  for (std::uint32_t i = 0; i < length; ++i)
    m_filter->GetSysexPrefixByte(&bytes[i], static_cast<std::int32_t>(i));
  if (CPrefixEditorDlg(m_view->Window()).Run(&bytes) != kDialogOk) return;
  m_filter->SetSysexPrefix(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
  ShowSysexPrefix();
}

bool CPageDialog::CanSend() const {
  ComPtr<IHostMidiPorts> ports;
  std::int32_t index = -1;
  MidiPortHandle handle = 0;
  return m_eventList && m_filter && SUCCEEDED(m_filter->GetPorts(ports.Receive())) && ports &&
         SUCCEEDED(m_filter->GetOutputPortIndex(&index)) &&
         SUCCEEDED(ports->GetOutputPortHandle(index, &handle));
}

// Selected rows go out whether they are checked or not.
void CPageDialog::SendSelected() {
  if (!CanSend()) return;
  for (int row : m_view->EventList().SelectedRows()) {
    CStoredEvent* event = nullptr;
    if (SUCCEEDED(m_filter->GetEvent(static_cast<std::uint32_t>(row), &event)))
      m_filter->SendEvent(event);
  }
}

// Pauses are sent like the rest: the worker sleeps through them.
void CPageDialog::SendAllEnabled() {
  if (!CanSend()) return;
  const int rows = m_view->EventList().RowCount();
  for (int row = 0; row < rows; ++row) {
    CStoredEvent* event = nullptr;
    if (SUCCEEDED(m_filter->GetEvent(static_cast<std::uint32_t>(row), &event)) &&
        event->IsEnabled())
      m_filter->SendEvent(event);
  }
}

void CPageDialog::OpenClosedLoopTest() {
  CMidiClosedLoopTestDlg(m_filter.Get(), m_view->Window()).DoModal();
}

void CPageDialog::OnLButtonDown(int x, int y) {
  if (x >= kLogoLeft && x <= kLogoRight && y >= kLogoTop && y <= kLogoBottom)
    CAboutDlg(m_view->Window()).Run();
}

// --- the list -----------------------------------------------------------------------------------

void CPageDialog::OnListDoubleClick(int row) {
  if (m_eventList) m_eventList->OnDoubleClick(row);
}

void CPageDialog::OnListItemChanged(int row, std::uint32_t oldState, std::uint32_t newState) {
  if (m_eventList) m_eventList->OnItemChanged(row, oldState, newState);
}

void CPageDialog::OnListBeginDrag(int row) {
  if (m_eventList) m_eventList->OnBeginDrag(row);
}

void CPageDialog::OnListDragMove(bool overList, int row) {
  if (m_eventList) m_eventList->OnDragMove(overList, row);
}

void CPageDialog::OnListDrop(bool overList) {
  if (m_eventList) m_eventList->OnDrop(overList);
}

// --- meters and messages ------------------------------------------------------------------------

void CPageDialog::OnPaint() {
  if (m_view) m_controls.DrawAll();
}

// Each message first knocks 10 off, then lifts the meter to its level: a stream of weak
// messages pulls a tall reading down quickly.
void CPageDialog::OnPosted(MessageId message, WPARAM_T wParam, LPARAM_T) {
  const float level = static_cast<float>(wParam);
  if (message == InputActivityMessage()) m_inputMeter.SetValues(level, level, 10.0f);
  if (message == OutputActivityMessage()) m_outputMeter.SetValues(level, level, 10.0f);
}

// A meter falls 100 units a second, and never below 0.
void CPageDialog::OnTimer(std::uint32_t) {
  m_inputMeter.SetValues(0.0f, 0.0f, 1.0f);
  m_outputMeter.SetValues(0.0f, 0.0f, 1.0f);
  if (m_view) m_controls.DrawAll();
}

void CPageDialog::DrawMeter(const CUIMeter& meter, int lit) {
  if (!m_view) return;
  m_view->DrawMeter(&meter == &m_inputMeter ? PageMeter::Input : PageMeter::Output, lit);
}

void CPageDialog::ReloadLists() { PostNotify(m_handle, RefreshMessage(), 0, 0); }

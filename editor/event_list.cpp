#include "editor/event_list.h"

#include <optional>

#include "documents/stored_event.h"
#include "editor/editor_messages.h"
#include "editor/event_bytes.h"
#include "editor/hex_edit_dialog.h"
#include "editor/modal_view.h"

namespace {

std::optional<NewEventKind> KindOfCommand(std::uint32_t command) {
  switch (command) {
    case kAddSysex: return NewEventKind::SystemExclusive;
    case kAddWait: return NewEventKind::Wait;
    case kAddBankProgram: return NewEventKind::BankProgramChange;
    case kAddController: return NewEventKind::ControllerChange;
    case kAddMidi: return NewEventKind::MidiData;
    default: return std::nullopt;
  }
}

// The check box's state image in bits 12 to 15, counted from 0 for unchecked.
int CheckImage(std::uint32_t state) {
  const int image = static_cast<int>((state >> 12) & 0xF) - 1;
  return image < 0 ? 0 : image;
}

}  // namespace

CEventList::CEventList(IMyFilter* filter, IEventListView& view, ParentWindow parent,
                       NotifyHandle page)
    : m_filter(filter), m_view(view), m_parent(parent), m_page(page) {}

void CEventList::SetUp() { m_view.SetColumns(EventListColumns()); }

void CEventList::Fill() {
  m_view.DeleteAllRows();
  std::uint32_t count = 0;
  if (!m_filter || FAILED(m_filter->GetEventCount(&count))) return;
  for (std::uint32_t i = 0; i < count; ++i) AddRow(static_cast<int>(i));
}

void CEventList::AddRow(int index) {
  CStoredEvent* event = nullptr;
  if (!m_filter || FAILED(m_filter->GetEvent(static_cast<std::uint32_t>(index), &event))) return;
  EventRowTexts texts{event->GetName(), event->GetDescription(), event->GetTypeText(),
                      event->GetInfoText()};
  m_view.InsertRow(index, event->IsEnabled(), texts);
}

void CEventList::UpdateRow(int row, CStoredEvent& event) {
  m_view.UpdateRow(row, event.GetName(), event.GetDescription(), event.GetInfoText());
}

EventEditHost CEventList::EditHost() {
  return {m_filter, m_parent, m_page, [this] { Fill(); }};
}

int CEventList::EditEvent(int row, CStoredEvent& event) {
  const std::wstring type = event.GetTypeText();
  if (event.IsWait()) {
    EditWaitEvent(event, EditHost());
  } else if (type == L"Bank/Program Change") {
    EditProgramEvent(event, EditHost());
  } else if (type == L"Control") {
    EditControllerEvent(event, EditHost());
  } else {
    EditBytesEvent(event);  // sysex, empty, or any other messages
  }
  UpdateRow(row, event);
  return 0;
}

void CEventList::EditBytesEvent(CStoredEvent& event) {
  std::vector<std::uint8_t> bytes = EventToBytes(event);
  std::wstring name = event.GetName();
  std::wstring description = event.GetDescription();
  const int result = CHexEditDlgDlg(m_parent).Run(&bytes, &name, &description);
  PostNotify(m_page, RefreshMessage(), 0, 0);
  if (result != kDialogOk) return;
  BytesToEvent(bytes, event);
  event.SetName(std::move(name));
  event.SetDescription(std::move(description));
  Fill();
}

void CEventList::OnAdd(std::uint32_t command) {
  const std::optional<NewEventKind> kind = KindOfCommand(command);
  std::uint32_t count = 0;
  if (!kind || !m_filter || FAILED(m_filter->GetEventCount(&count))) return;
  const CStoredEvent event = CStoredEvent::MakeNew(*kind);
  if (FAILED(m_filter->InsertEvent(count, &event))) return;
  AddRow(static_cast<int>(count));
  EditRow(static_cast<int>(count));
}

void CEventList::OnEdit() {
  const std::vector<int> selected = m_view.SelectedRows();
  if (!selected.empty()) EditRow(selected.front());
}

void CEventList::OnDoubleClick(int row) {
  if (row != -1) EditRow(row);
}

// The row is written once more after the dialog's own update; both are harmless.
void CEventList::EditRow(int row) {
  CStoredEvent* event = nullptr;
  if (!m_filter || FAILED(m_filter->GetEvent(static_cast<std::uint32_t>(row), &event))) return;
  EditEvent(row, *event);
  UpdateRow(row, *event);
}

// From the last to the first, so that the indices still to come stay valid.
void CEventList::OnRemove() {
  const std::vector<int> selected = m_view.SelectedRows();
  for (auto it = selected.rbegin(); it != selected.rend(); ++it) {
    m_view.DeleteRow(*it);
    if (m_filter) m_filter->RemoveEvent(static_cast<std::uint32_t>(*it));
  }
}

void CEventList::OnItemChanged(int row, std::uint32_t oldState, std::uint32_t newState) {
  if (m_dragging || (oldState == 0 && newState == 0)) return;
  const int oldImage = CheckImage(oldState), newImage = CheckImage(newState);
  if (oldImage == newImage) return;
  CStoredEvent* event = nullptr;
  if (!m_filter || FAILED(m_filter->GetEvent(static_cast<std::uint32_t>(row), &event))) return;
  event->SetEnabled(newImage != 0);
}

void CEventList::OnBeginDrag(int row) {
  m_dragIndex = row;
  m_view.BeginDrag(row);
  m_dragging = true;
  m_dropIndex = -1;
  m_dropOverList = true;
}

void CEventList::OnDragMove(bool overList, int row) {
  if (!m_dragging) return;
  if (overList != m_dropOverList) {
    // Leaving the list takes its mark away: from the row under the cursor, or from all.
    if (m_dropOverList) ClearDropHighlight();
    m_dropIndex = -1;
  }
  m_dropOverList = overList;
  if (!overList) return;
  ClearDropHighlight();
  m_dropIndex = row;
  if (row != -1) m_view.SetDropHighlight(row, true);
}

// Row -1 clears the mark on every row.
void CEventList::ClearDropHighlight() { m_view.SetDropHighlight(m_dropIndex, false); }

void CEventList::OnDrop(bool overList) {
  if (!m_dragging) return;
  m_view.EndDrag();
  CStoredEvent* event = nullptr;
  if (overList && m_view.SelectedRows().size() == 1 && m_filter &&
      SUCCEEDED(m_filter->GetEvent(static_cast<std::uint32_t>(m_dragIndex), &event))) {
    ClearDropHighlight();
    const bool checked = m_view.RowChecked(m_dragIndex);
    const EventRowTexts texts = m_view.RowTexts(m_dragIndex);
    const CStoredEvent moved = *event;
    m_view.DeleteRow(m_dragIndex);
    m_filter->RemoveEvent(static_cast<std::uint32_t>(m_dragIndex));
    // Measured before the removal, and not corrected: the intended asymmetry.
    const int target = m_dropIndex == -1 ? m_view.RowCount() : m_dropIndex;
    m_view.InsertRow(target, checked, texts);
    m_filter->InsertEvent(static_cast<std::uint32_t>(target), &moved);
    m_view.SelectOnly(target);
  }
  m_dragging = false;
}

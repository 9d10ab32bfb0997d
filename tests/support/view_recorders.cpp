#include "tests/support/view_recorders.h"

// --- PageViewRecorder ---------------------------------------------------------------------------

PageViewRecorder::PageViewRecorder(ParentWindow parent) : m_parent(parent) {}

void PageViewRecorder::Move(int, int, int, int) {}

void PageViewRecorder::SetText(std::uint32_t control, const std::wstring& text) {
  m_texts[control] = text;
}

void PageViewRecorder::EnableControl(std::uint32_t control, bool enabled) {
  m_enabled[control] = enabled;
  ButtonFor(control).Enable(enabled);
}

void PageViewRecorder::ShowControl(std::uint32_t control, bool shown) { m_shown[control] = shown; }

bool PageViewRecorder::IsChecked(std::uint32_t control) const {
  const auto found = m_checks.find(control);
  return found != m_checks.end() && found->second;
}

void PageViewRecorder::SetButtonFaces(std::uint32_t control, std::uint32_t normal,
                                      std::uint32_t pressed, std::uint32_t hover) {
  ButtonFor(control).SetFaces(normal, pressed, hover);
}

void PageViewRecorder::SetButtonMenu(std::uint32_t control,
                                     std::shared_ptr<const CPopupMenu> menu) {
  ButtonFor(control).SetMenu(std::move(menu));
}

void PageViewRecorder::DrawMeter(PageMeter meter, int litPixels) {
  m_meters[meter] = litPixels;
  ++m_meterDraws;
}

void PageViewRecorder::DeleteAllRows() {
  m_rows.clear();
  m_selected.clear();
  m_dropHighlights.clear();
}

// A new row starts unchecked; setting its check is a change the list reports.
void PageViewRecorder::InsertRow(int row, bool checked, const EventRowTexts& texts) {
  m_rows.insert(m_rows.begin() + row, Row{checked, texts});
  std::set<int> moved;
  for (int selected : m_selected) moved.insert(selected >= row ? selected + 1 : selected);
  m_selected = moved;
  if (checked && m_events) m_events->OnListItemChanged(row, kRowUncheckedState, kRowCheckedState);
}

void PageViewRecorder::DeleteRow(int row) {
  m_rows.erase(m_rows.begin() + row);
  std::set<int> moved;
  for (int selected : m_selected)
    if (selected != row) moved.insert(selected > row ? selected - 1 : selected);
  m_selected = moved;
}

void PageViewRecorder::UpdateRow(int row, const std::wstring& name,
                                 const std::wstring& description, const std::wstring& info) {
  Row& target = m_rows.at(Index(row));
  target.texts.name = name;
  target.texts.description = description;
  target.texts.info = info;
}

std::vector<int> PageViewRecorder::SelectedRows() const {
  return {m_selected.begin(), m_selected.end()};
}

void PageViewRecorder::SelectOnly(int row) { m_selected = {row}; }

void PageViewRecorder::SetDropHighlight(int row, bool on) {
  if (row == -1) {
    if (!on) m_dropHighlights.clear();
    return;
  }
  if (on)
    m_dropHighlights.insert(row);
  else
    m_dropHighlights.erase(row);
}

std::wstring PageViewRecorder::Text(std::uint32_t control) const {
  const auto found = m_texts.find(control);
  return found == m_texts.end() ? L"" : found->second;
}

bool PageViewRecorder::Enabled(std::uint32_t control) const {
  const auto found = m_enabled.find(control);
  return found == m_enabled.end() || found->second;
}

bool PageViewRecorder::Shown(std::uint32_t control) const {
  const auto found = m_shown.find(control);
  return found == m_shown.end() || found->second;
}

std::shared_ptr<const CPopupMenu> PageViewRecorder::Menu(std::uint32_t control) const {
  const auto found = m_buttons.find(control);
  return found == m_buttons.end() ? nullptr : found->second->Menu();
}

const CDspButton* PageViewRecorder::Button(std::uint32_t control) const {
  const auto found = m_buttons.find(control);
  return found == m_buttons.end() ? nullptr : found->second.get();
}

std::optional<int> PageViewRecorder::MeterLit(PageMeter meter) const {
  const auto found = m_meters.find(meter);
  if (found == m_meters.end()) return std::nullopt;
  return found->second;
}

CDspButton& PageViewRecorder::ButtonFor(std::uint32_t control) {
  std::unique_ptr<CDspButton>& button = m_buttons[control];
  if (!button) button = std::make_unique<CDspButton>(control, static_cast<IDspButtonParent&>(*this));
  return *button;
}

void PageViewRecorder::OnButtonCommand(std::uint32_t command) {
  if (m_events) m_events->OnCommand(command);
}

void PageViewRecorder::Click(std::uint32_t control) {
  CDspButton& button = ButtonFor(control);
  button.OnMouseEnter();
  button.OnLButtonDown(0, 0);
  button.OnLButtonUp(true);
  button.OnMouseLeave();
}

void PageViewRecorder::PressAt(int x, int y) {
  if (m_events) m_events->OnLButtonDown(x, y);
}

void PageViewRecorder::Paint() {
  if (m_events) m_events->OnPaint();
}

void PageViewRecorder::Select(std::vector<int> rows) { m_selected = {rows.begin(), rows.end()}; }

void PageViewRecorder::ToggleRowCheck(int row) {
  Row& target = m_rows.at(Index(row));
  const std::uint32_t before = target.checked ? kRowCheckedState : kRowUncheckedState;
  target.checked = !target.checked;
  const std::uint32_t after = target.checked ? kRowCheckedState : kRowUncheckedState;
  if (m_events) m_events->OnListItemChanged(row, before, after);
}

void PageViewRecorder::DoubleClick(int row) {
  if (m_events) m_events->OnListDoubleClick(row);
}

void PageViewRecorder::Drag(int from, int onto, bool keepSelection) {
  if (!keepSelection) SelectOnly(from);
  if (!m_events) return;
  m_events->OnListBeginDrag(from);
  m_events->OnListDragMove(true, from);
  m_events->OnListDragMove(true, onto);
  m_events->OnListDrop(true);
}

void PageViewRecorder::DragOutside(int from) {
  SelectOnly(from);
  if (!m_events) return;
  m_events->OnListBeginDrag(from);
  m_events->OnListDragMove(true, from);
  m_events->OnListDragMove(false, -1);
  m_events->OnListDrop(false);
}

void PageViewRecorder::Close() {
  if (m_events) m_events->OnDestroy();
}

// --- ClosedLoopDialogRecorder -------------------------------------------------------------------

ClosedLoopDialogRecorder::ClosedLoopDialogRecorder(Script whileOpen)
    : m_whileOpen(std::move(whileOpen)) {}

int ClosedLoopDialogRecorder::RunModal() {
  if (m_whileOpen) m_whileOpen(*this);
  if (!m_result) Press(kClosedLoopClose);
  return m_result.value_or(0);
}

void ClosedLoopDialogRecorder::SetText(std::uint32_t control, const std::wstring& text) {
  m_texts[control] = text;
}

void ClosedLoopDialogRecorder::EnableControl(std::uint32_t control, bool enabled) {
  m_enabled[control] = enabled;
}

void ClosedLoopDialogRecorder::SetProgress(std::uint32_t control, std::uint16_t range,
                                           std::int32_t position) {
  m_bars[control] = {range, position};
}

void ClosedLoopDialogRecorder::Press(std::uint32_t id) {
  if (Enabled(id) && m_events) m_events->OnButton(id);
}

std::wstring ClosedLoopDialogRecorder::Text(std::uint32_t control) const {
  const auto found = m_texts.find(control);
  return found == m_texts.end() ? L"" : found->second;
}

bool ClosedLoopDialogRecorder::Enabled(std::uint32_t control) const {
  const auto found = m_enabled.find(control);
  return found == m_enabled.end() || found->second;
}

ClosedLoopDialogRecorder::Bar ClosedLoopDialogRecorder::Progress(std::uint32_t control) const {
  const auto found = m_bars.find(control);
  return found == m_bars.end() ? Bar{} : found->second;
}

// --- ViewFactoryRecorder ------------------------------------------------------------------------

ViewFactoryRecorder::ViewFactoryRecorder() : m_previous(SetEditorViewFactory(this)) {
  page.make = [this](ParentWindow parent) {
    auto view = std::make_unique<PageViewRecorder>(parent);
    lastPage = view.get();
    return std::unique_ptr<IPageView>(std::move(view));
  };
  closedLoop.make = [this](ParentWindow) {
    return std::make_unique<ClosedLoopDialogRecorder>(closedLoopScript);
  };
  hexEdit.make = [this](ParentWindow) { return dialogs.CreateHexEditDialog(); };
  prefixEditor.make = [this](ParentWindow) { return dialogs.CreatePrefixEditor(); };
  program.make = [this](ParentWindow) { return dialogs.CreateProgramDialog(); };
  controller.make = [this](ParentWindow) { return dialogs.CreateControllerDialog(); };
  wait.make = [this](ParentWindow) { return dialogs.CreateWaitDialog(); };
  about.make = [this](ParentWindow) { return dialogs.CreateAboutDialog(); };
}

ViewFactoryRecorder::~ViewFactoryRecorder() { SetEditorViewFactory(m_previous); }

// --- FakePageSite -------------------------------------------------------------------------------

HRESULT FakePageSite::OnStatusChange(DWORD) { return S_OK; }

HRESULT FakePageSite::GetLocaleID(LCID* locale) {
  if (!locale) return E_POINTER;
  *locale = 0x0409;
  return S_OK;
}

HRESULT FakePageSite::GetPageContainer(IUnknown** container) {
  if (container) *container = nullptr;
  return E_NOTIMPL;
}

HRESULT FakePageSite::TranslateAccelerator(MSG*) { return S_FALSE; }

// --- FakePageObject -----------------------------------------------------------------------------

HRESULT FakePageObject::QueryInterface(REFIID iid, void** object) {
  if (!object) return E_POINTER;
  for (const IID& answer : m_answers) {
    if (iid == answer) {
      *object = static_cast<IUnknown*>(this);
      AddRef();
      return S_OK;
    }
  }
  return FakeUnknown<IUnknown>::QueryInterface(iid, object);
}

// --- ControlHostRecorder ------------------------------------------------------------------------

std::intptr_t ControlHostRecorder::SendToWindow(MessageId message, WPARAM_T wParam,
                                                LPARAM_T lParam) {
  sent.push_back({message, wParam, lParam});
  return answer;
}

void ControlHostRecorder::PostToWindow(MessageId message, WPARAM_T wParam, LPARAM_T lParam) {
  posted.push_back({message, wParam, lParam});
}

// The window's origin stands at 1000, 500 on the screen.
void ControlHostRecorder::ToScreen(int& x, int& y) {
  x += 1000;
  y += 500;
}

void ControlHostRecorder::DrawMeter(const CUIMeter&, int lit) { meterDraws.push_back(lit); }

void ControlHostRecorder::DrawFader(const CUIFader&, const std::vector<UIRect>& uncovered,
                                    const UIRect&) {
  faderUncovered = uncovered;
}

void ControlHostRecorder::OpenTextBox(const UIRect&, const std::wstring& text) { textBox = text; }

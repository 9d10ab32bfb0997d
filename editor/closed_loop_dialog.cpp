#include "editor/closed_loop_dialog.h"

#include "interfaces/my_filter.h"

namespace {

constexpr int kClosed = 1;
constexpr int kNoView = 2;

}  // namespace

CMidiClosedLoopTestDlg::CMidiClosedLoopTestDlg(IMyFilter* filter, ParentWindow parent)
    : m_filter(filter), m_parent(parent) {}

CMidiClosedLoopTestDlg::~CMidiClosedLoopTestDlg() = default;

int CMidiClosedLoopTestDlg::DoModal() {
  CEditorViewFactory* views = EditorViews();
  m_view = views ? views->CreateClosedLoopDialog(m_parent) : nullptr;
  if (!m_view) return kNoView;
  m_view->SetEvents(this);
  m_view->SetText(kClosedLoopStatus, L"");
  EnableButtons(true, false);
  m_test = std::make_unique<ClosedLoopTest>(static_cast<IClosedLoopTestOwner&>(*this), m_filter);
  Refresh(m_test->Numbers());
  const int result = m_view->RunModal();
  // No tick may reach the test once it is gone; its end clears every instance's test flag.
  for (std::uint32_t id : {QuiesceTimer, SendTimer, DrainTimer, EndTimer}) StopTimer(id);
  m_test.reset();
  m_view->SetEvents(nullptr);
  return result;
}

void CMidiClosedLoopTestDlg::WalkInstances(const std::function<void(IMyFilter*)>& visit) {
  WalkRegisteredInstances(visit);
}

void CMidiClosedLoopTestDlg::StartTimer(std::uint32_t id, std::uint32_t periodMs) {
  ::StartTimer(*this, id, periodMs);
}

void CMidiClosedLoopTestDlg::StopTimer(std::uint32_t id) { ::StopTimer(*this, id); }

void CMidiClosedLoopTestDlg::ShowStatus(const std::wstring& text) {
  m_view->SetText(kClosedLoopStatus, text);
}

void CMidiClosedLoopTestDlg::EnableButtons(bool start, bool stop) {
  m_view->EnableControl(kClosedLoopStart, start);
  m_view->EnableControl(kClosedLoopStop, stop);
}

// The bars' ranges are 16-bit and wrap for very many instances; the outcome does not use them.
void CMidiClosedLoopTestDlg::Refresh(const ClosedLoopNumbers& numbers) {
  m_view->SetText(kClosedLoopInstances, std::to_wstring(numbers.instanceCount));
  m_view->SetText(kClosedLoopDifference, std::to_wstring(numbers.difference));
  m_view->SetText(kClosedLoopSent, std::to_wstring(numbers.sent));
  m_view->SetText(kClosedLoopReceived, std::to_wstring(numbers.received));
  m_view->SetProgress(kClosedLoopOutputBar, numbers.outputRange,
                      static_cast<std::int32_t>(numbers.sent));
  m_view->SetProgress(kClosedLoopInputBar, numbers.inputRange,
                      static_cast<std::int32_t>(numbers.received));
}

void CMidiClosedLoopTestDlg::OnButton(std::uint32_t id) {
  switch (id) {
    case kClosedLoopStart: m_test->OnStart(); break;
    case kClosedLoopStop: m_test->OnStop(); break;
    case kClosedLoopClose: m_view->EndDialog(kClosed); break;
    default: break;
  }
}

void CMidiClosedLoopTestDlg::OnTimer(std::uint32_t id) {
  if (m_test) m_test->OnTimer(id);
}

#include "host/window/edit_session.h"

#include "interfaces/ole_interfaces.h"

namespace {

// The monitor keeps this many lines for a window that has not come to take them.
constexpr std::size_t kMonitorLimit = 2000;

}  // namespace

std::unique_ptr<CEditSession> CEditSession::Open(const std::filesystem::path& file,
                                                 CLiveRack::ErrorSink errors, std::string& error,
                                                 const BackEndOptions& backEnds) {
  auto rack = LoadRackFile(file, error);
  if (!rack) return nullptr;
  std::unique_ptr<CEditSession> session(new CEditSession(file, std::move(*rack)));
  MidiSessionOptions options;
  options.backEnd = backEnds.midi.value_or(session->m_rack.settings.midi);
  options.clientName = backEnds.clientName;
  options.ports = session->m_rack.settings.midiPorts;
  options.monitorSink = [raw = session.get()](const std::string& line) {
    raw->OnMonitorLine(line);
  };
  session->m_midi = CMidiSession::Open(options, error);
  if (!session->m_midi) return nullptr;
  session->Start(std::move(errors));
  return session;
}

CEditSession::CEditSession(std::filesystem::path file, Rack rack)
    : m_file(std::move(file)), m_rack(std::move(rack)) {}

// Paused, each instance's worker runs and its state's events go out as it loads; nothing
// streams audio, as the window plays none.
void CEditSession::Start(CLiveRack::ErrorSink errors) {
  m_live = std::make_unique<CLiveRack>(m_file, m_rack.settings, &m_midi->Ports(),
                                       std::move(errors));
  m_live->Create(m_rack.instances);
  m_live->Pause(nullptr, nullptr);
  m_live->LoadStates();
  m_midi->OpenTo(*m_live);
}

// What was sent is shown and delivered first; then the instances go, and the ports last.
CEditSession::~CEditSession() {
  if (m_midi) m_midi->Close();
  m_live.reset();
  m_midi.reset();
}

void CEditSession::OnMonitorLine(const std::string& line) {
  std::lock_guard lock(m_monitorMutex);
  m_monitor.push_back(line);
  if (m_monitor.size() > kMonitorLimit) m_monitor.pop_front();
}

std::vector<std::string> CEditSession::TakeMonitorLines() {
  std::lock_guard lock(m_monitorMutex);
  std::vector<std::string> lines(m_monitor.begin(), m_monitor.end());
  m_monitor.clear();
  return lines;
}

ComPtr<IPropertyPage> CEditSession::CreatePage(LiveInstance& instance, std::string& error) {
  ComPtr<ISpecifyPropertyPages> specify;
  CAUUID pages{0, nullptr};
  if (FAILED(specify.QueryFrom(instance.object.Get(), IID_ISpecifyPropertyPages)) ||
      FAILED(specify->GetPages(&pages)) || pages.cElems == 0) {
    CoTaskMemFree(pages.pElems);
    error = m_live->Where(instance) + "it has no property page";
    return nullptr;
  }
  const CLSID pageClass = pages.pElems[0];
  CoTaskMemFree(pages.pElems);
  ComPtr<IUnknown> object =
      ComPtr<IUnknown>::Attach(m_live->Catalog().CreateServed(pageClass, error));
  ComPtr<IPropertyPage> page;
  if (object && FAILED(page.QueryFrom(object.Get(), IID_IPropertyPage)))
    error = m_live->Where(instance) + "its page offers no IPropertyPage";
  if (!object) error = m_live->Where(instance) + error;
  return page;
}

bool CEditSession::Changed() {
  std::vector<RackInstance> now = m_rack.instances;
  m_live->Snapshot(now);
  for (std::size_t i = 0; i < now.size(); ++i)
    if (now[i].state != m_rack.instances[i].state) return true;
  return false;
}

bool CEditSession::Save(std::string& error) {
  Rack saved = m_rack;
  if (!m_live->Snapshot(saved.instances)) {
    error = m_file.string() + ": a state cannot be saved";
    return false;
  }
  if (!SaveRackFile(m_file, saved, error)) return false;
  m_rack = std::move(saved);
  return true;
}

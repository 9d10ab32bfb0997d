#include "host/midi/rtmidi_ports.h"

#include <RtMidi.h>
#include <jack/jack.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>

#include "host/midi/message_ring.h"
#include "platform/codepage.h"

namespace {

const char* ServerName(MidiServer server) { return server == MidiServer::Jack ? "JACK" : "ALSA"; }

RtMidi::Api ApiOf(MidiServer server) {
  return server == MidiServer::Jack ? RtMidi::UNIX_JACK : RtMidi::LINUX_ALSA;
}

// RtMidi reports through this once it is set, instead of printing or throwing: errors are kept
// for the caller to look at, warnings (a port that went while the list was read) dropped.
void KeepError(RtMidiError::Type type, const std::string& text, void* error) {
  if (type != RtMidiError::WARNING && type != RtMidiError::DEBUG_WARNING)
    *static_cast<std::string*>(error) = text;
}

// The client part of a port's name: "client:port" on JACK, "client:port 128:0" on ALSA.
std::string ClientOf(const std::string& portName) {
  return portName.substr(0, portName.find(':'));
}

std::int64_t NowNs() {
  return std::chrono::duration_cast<std::chrono::nanoseconds>(
             std::chrono::steady_clock::now().time_since_epoch())
      .count();
}

void Quiet(const char*) {}

}  // namespace

// RtMidi objects with no port, for reading the server's lists: an RtMidiIn lists the ports it
// can hear (the server's outputs), an RtMidiOut those it can reach (the server's inputs).
struct CRtMidiPorts::Listers {
  std::string error;
  std::unique_ptr<RtMidiIn> hearable;
  std::unique_ptr<RtMidiOut> reachable;

  std::vector<std::string> Names(RtMidi& lister) {
    std::vector<std::string> names;
    const unsigned count = lister.getPortCount();
    for (unsigned i = 0; i < count; ++i) {
      std::string name = lister.getPortName(i);
      if (!name.empty()) names.push_back(std::move(name));  // empty: it went while we read
    }
    return names;
  }
};

struct CRtMidiPorts::Output {
  std::string target;  // the port's name in the output list
  std::int32_t id;
  bool own;
  std::string error;
  std::unique_ptr<RtMidiOut> port;
  std::uint64_t refused = 0;  // sends refused because the port had gone
  std::uint64_t failed = 0;   // sends the server did not take
};

struct CRtMidiPorts::Input {
  Input(std::string name, std::int32_t portId, bool ownPort, std::size_t ringBytes, sem_t& woken)
      : source(std::move(name)), id(portId), own(ownPort), ring(ringBytes), wake(woken) {}
  // Fixed before the delivering thread starts (an own port's once the server has named it).
  std::string source;  // the port's name in the input list
  std::int32_t id;
  const bool own;
  CMessageRing ring;
  sem_t& wake;
  std::string error;
  std::unique_ptr<RtMidiIn> port;  // last, so it closes before the ring goes

  // [the server's real-time thread, or RtMidi's ALSA thread] Copies the message and wakes the
  // host thread; nothing else.
  static void OnMessage(double, std::vector<unsigned char>* message, void* self) {
    Input& input = *static_cast<Input*>(self);
    input.ring.Push({message->data(), message->size()}, NowNs());
    sem_post(&input.wake);
  }
};

CRtMidiPorts::CRtMidiPorts(const RtMidiPortsOptions& options, CMidiPortListener& sends,
                           ArrivalHandler arrivals)
    : m_options(options), m_sends(sends), m_arrivals(std::move(arrivals)) {
  sem_init(&m_wake, 0, 0);
}

CRtMidiPorts::~CRtMidiPorts() {
  if (m_delivery.joinable()) {
    m_stopping = true;
    sem_post(&m_wake);
    m_delivery.join();
  }
  for (auto& input : m_inputs) input.reset();
  m_outputs.clear();
  m_listers.reset();
  if (m_anchor) jack_client_close(static_cast<jack_client_t*>(m_anchor));
  sem_destroy(&m_wake);
}

std::string CRtMidiPorts::ClientName(const char* role, std::size_t number) const {
  return m_options.clientName + "-" + role + "-" + std::to_string(number);
}

std::unique_ptr<CRtMidiPorts> CRtMidiPorts::Open(const RtMidiPortsOptions& options,
                                                 CMidiPortListener& sends,
                                                 ArrivalHandler arrivals, std::string& error) {
  std::vector<RtMidi::Api> apis;
  RtMidi::getCompiledApi(apis);
  if (std::find(apis.begin(), apis.end(), ApiOf(options.server)) == apis.end()) {
    error = std::string("this RtMidi was built without ") + ServerName(options.server);
    return nullptr;
  }
  std::unique_ptr<CRtMidiPorts> ports(new CRtMidiPorts(options, sends, std::move(arrivals)));
  if (options.server == MidiServer::Jack) {
    // RtMidi only warns when there is no server; a client of our own finds out, and holds the
    // host's name so that a second host of that name is told at once.
    jack_set_error_function(Quiet);
    jack_set_info_function(Quiet);
    jack_status_t status{};
    const std::string anchor = options.clientName + "-midi";
    ports->m_anchor = jack_client_open(anchor.c_str(),
                                       static_cast<jack_options_t>(JackNoStartServer |
                                                                   JackUseExactName),
                                       &status);
    if (!ports->m_anchor) {
      error = (status & JackNameNotUnique)
                  ? "a JACK client named " + anchor + " is already there: give this host " +
                        "another --client-name"
                  : std::string("no JACK server is running (server \"") +
                        (std::getenv("JACK_DEFAULT_SERVER") ? std::getenv("JACK_DEFAULT_SERVER")
                                                            : "default") +
                        "\")";
      return nullptr;
    }
  } else if (access("/dev/snd/seq", R_OK | W_OK) != 0) {
    error = "there is no ALSA sequencer on this machine (/dev/snd/seq cannot be opened; is the "
            "snd-seq module loaded?)";
    return nullptr;
  }
  if (!ports->OpenOwnPorts(error)) return nullptr;
  ports->m_delivery = std::thread([raw = ports.get()] { raw->DeliverArrivals(); });
  return ports;
}

bool CRtMidiPorts::OpenOwnPorts(std::string& error) {
  const RtMidi::Api api = ApiOf(m_options.server);
  try {
    m_listers = std::make_unique<Listers>();
    m_listers->hearable = std::make_unique<RtMidiIn>(api, m_options.clientName + "-list-1");
    m_listers->reachable = std::make_unique<RtMidiOut>(api, m_options.clientName + "-list-2");
    m_listers->hearable->setErrorCallback(KeepError, &m_listers->error);
    m_listers->reachable->setErrorCallback(KeepError, &m_listers->error);
    std::lock_guard lock(m_mutex);
    for (std::int32_t i = 0; i < m_options.ownPorts; ++i) {
      auto output = std::make_unique<Output>();
      output->own = true;
      const auto number = static_cast<std::size_t>(i) + 1;
      output->port = std::make_unique<RtMidiOut>(api, ClientName("out", number));
      output->port->setErrorCallback(KeepError, &output->error);
      output->port->openVirtualPort("out");
      auto input = std::make_unique<Input>("", 0, true, m_options.ringBytes, m_wake);
      input->port = std::make_unique<RtMidiIn>(api, ClientName("in", number));
      input->port->setErrorCallback(KeepError, &input->error);
      input->port->ignoreTypes(true, false, true);
      input->port->setCallback(Input::OnMessage, input.get());
      input->port->openVirtualPort("in");
      if (!output->error.empty() || !input->error.empty()) {
        error = output->error.empty() ? input->error : output->error;
        return false;
      }
      m_outputs.push_back(std::move(output));
      m_inputs[static_cast<std::size_t>(i)] = std::move(input);
    }
    m_inputCount = static_cast<std::size_t>(m_options.ownPorts);
    // Own ports are known by the names the server gave them.
    for (const Entry& entry : ReadOutputs())
      if (entry.own >= 0) {
        m_outputs[static_cast<std::size_t>(entry.own)]->target = entry.name;
        m_outputs[static_cast<std::size_t>(entry.own)]->id = entry.id;
      }
    for (const Entry& entry : ReadInputs())
      if (entry.own >= 0) {
        m_inputs[static_cast<std::size_t>(entry.own)]->source = entry.name;
        m_inputs[static_cast<std::size_t>(entry.own)]->id = entry.id;
      }
  } catch (const RtMidiError& e) {
    error = std::string(ServerName(m_options.server)) + ": " + e.getMessage();
    return false;
  }
  return true;
}

std::int32_t CRtMidiPorts::PortId(const std::string& name, MidiServer server) {
  // ALSA ends a name with the client and port numbers, which change from boot to boot.
  std::string stable = name;
  if (server == MidiServer::Alsa) {
    const std::size_t numbers = stable.rfind(' ');
    if (numbers != std::string::npos && stable.find(':', numbers) != std::string::npos)
      stable.resize(numbers);
  }
  std::uint32_t hash = 2166136261u;  // FNV-1a
  for (const char c : stable) hash = (hash ^ static_cast<std::uint8_t>(c)) * 16777619u;
  return static_cast<std::int32_t>(hash & 0x7FFFFFFF);
}

bool CRtMidiPorts::IsOwnClient(const std::string& portName) const {
  const std::string client = ClientOf(portName);
  for (const char* role : {"out", "in", "send", "receive"}) {
    const std::string prefix = m_options.clientName + "-" + role + "-";
    if (client.size() > prefix.size() && client.rfind(prefix, 0) == 0 &&
        client.find_first_not_of("0123456789", prefix.size()) == std::string::npos)
      return true;
  }
  return false;
}

std::vector<CRtMidiPorts::Entry> CRtMidiPorts::ReadOutputs() {
  std::vector<Entry> entries;
  for (const std::string& name : m_listers->Names(*m_listers->hearable))
    for (std::int32_t i = 0; i < m_options.ownPorts; ++i)
      if (ClientOf(name) == ClientName("out", static_cast<std::size_t>(i) + 1))
        entries.push_back({name, PortId(name, m_options.server), i});
  std::sort(entries.begin(), entries.end(), [](auto& a, auto& b) { return a.own < b.own; });
  for (const std::string& name : m_listers->Names(*m_listers->reachable))
    if (!IsOwnClient(name)) entries.push_back({name, PortId(name, m_options.server), -1});
  return entries;
}

std::vector<CRtMidiPorts::Entry> CRtMidiPorts::ReadInputs() {
  std::vector<Entry> entries;
  for (const std::string& name : m_listers->Names(*m_listers->reachable))
    for (std::int32_t i = 0; i < m_options.ownPorts; ++i)
      if (ClientOf(name) == ClientName("in", static_cast<std::size_t>(i) + 1))
        entries.push_back({name, PortId(name, m_options.server), i});
  std::sort(entries.begin(), entries.end(), [](auto& a, auto& b) { return a.own < b.own; });
  for (const std::string& name : m_listers->Names(*m_listers->hearable))
    if (!IsOwnClient(name)) entries.push_back({name, PortId(name, m_options.server), -1});
  return entries;
}

bool CRtMidiPorts::Present(const std::string& outputTarget) {
  const auto names = m_listers->Names(*m_listers->reachable);
  return std::find(names.begin(), names.end(), outputTarget) != names.end();
}

// --- the lists -----------------------------------------------------------------------------

std::int32_t CRtMidiPorts::GetOutputPortCount() {
  std::lock_guard lock(m_mutex);
  m_outputList = ReadOutputs();
  return static_cast<std::int32_t>(m_outputList.size());
}

std::int32_t CRtMidiPorts::GetInputPortCount() {
  std::lock_guard lock(m_mutex);
  m_inputList = ReadInputs();
  return static_cast<std::int32_t>(m_inputList.size());
}

HRESULT CRtMidiPorts::GetOutputPortName(std::int32_t index, wchar_t* name,
                                        std::uint32_t capacity) {
  std::lock_guard lock(m_mutex);
  if (index < 0 || static_cast<std::size_t>(index) >= m_outputList.size()) return E_INVALIDARG;
  return CopyPortName(NarrowToWide(m_outputList[static_cast<std::size_t>(index)].name), name,
                      capacity);
}

HRESULT CRtMidiPorts::GetInputPortName(std::int32_t index, wchar_t* name,
                                       std::uint32_t capacity) {
  std::lock_guard lock(m_mutex);
  if (index < 0 || static_cast<std::size_t>(index) >= m_inputList.size()) return E_INVALIDARG;
  return CopyPortName(NarrowToWide(m_inputList[static_cast<std::size_t>(index)].name), name,
                      capacity);
}

HRESULT CRtMidiPorts::GetOutputPortId(std::int32_t index, std::int32_t* id) {
  if (!id) return E_POINTER;
  std::lock_guard lock(m_mutex);
  if (index < 0 || static_cast<std::size_t>(index) >= m_outputList.size()) return E_INVALIDARG;
  *id = m_outputList[static_cast<std::size_t>(index)].id;
  return S_OK;
}

HRESULT CRtMidiPorts::GetInputPortId(std::int32_t index, std::int32_t* id) {
  if (!id) return E_POINTER;
  std::lock_guard lock(m_mutex);
  if (index < 0 || static_cast<std::size_t>(index) >= m_inputList.size()) return E_INVALIDARG;
  *id = m_inputList[static_cast<std::size_t>(index)].id;
  return S_OK;
}

// --- sending -------------------------------------------------------------------------------

CRtMidiPorts::Output* CRtMidiPorts::OutputFor(const Entry& entry) {
  if (entry.own >= 0) return m_outputs[static_cast<std::size_t>(entry.own)].get();
  for (auto& output : m_outputs)
    if (output->id == entry.id && output->target == entry.name) return output.get();
  auto output = std::make_unique<Output>();
  output->target = entry.name;
  output->id = entry.id;
  output->own = false;
  try {
    output->port =
        std::make_unique<RtMidiOut>(ApiOf(m_options.server), ClientName("send", ++m_clients));
    output->port->setErrorCallback(KeepError, &output->error);
    // The new client's own list, in which the target may stand elsewhere than in ours.
    const unsigned count = output->port->getPortCount();
    for (unsigned i = 0; i < count && !output->port->isPortOpen(); ++i)
      if (output->port->getPortName(i) == entry.name) output->port->openPort(i, "out");
  } catch (const RtMidiError&) {
    return nullptr;
  }
  if (!output->port->isPortOpen()) return nullptr;
  m_outputs.push_back(std::move(output));
  return m_outputs.back().get();
}

HRESULT CRtMidiPorts::OutputHandle(std::int32_t index, std::optional<std::int32_t> id,
                                   MidiPortHandle* handle) {
  if (!handle) return E_POINTER;
  *handle = 0;
  std::lock_guard lock(m_mutex);
  const Entry* entry = nullptr;
  if (id) {
    // A port the instance sent to before is found even after it went, so that sends to it
    // fail rather than reach nothing unnoticed.
    for (std::size_t i = 0; i < m_outputs.size(); ++i)
      if (m_outputs[i]->id == *id) {
        *handle = i + 1;
        return S_OK;
      }
    m_outputList = ReadOutputs();
    for (const Entry& candidate : m_outputList)
      if (candidate.id == *id) entry = &candidate;
  } else if (index >= 0 && static_cast<std::size_t>(index) < m_outputList.size()) {
    entry = &m_outputList[static_cast<std::size_t>(index)];
  }
  Output* output = entry ? OutputFor(*entry) : nullptr;
  if (!output) return E_FAIL;
  const auto found = std::find_if(m_outputs.begin(), m_outputs.end(),
                                  [output](auto& o) { return o.get() == output; });
  *handle = static_cast<MidiPortHandle>(found - m_outputs.begin()) + 1;
  return S_OK;
}

HRESULT CRtMidiPorts::GetOutputPortHandle(std::int32_t index, MidiPortHandle* handle) {
  return OutputHandle(index, std::nullopt, handle);
}

HRESULT CRtMidiPorts::UseOutputPort(std::int32_t id) {
  MidiPortHandle handle = 0;
  return OutputHandle(-1, id, &handle);  // opened now, so the first send finds it ready
}

HRESULT CRtMidiPorts::Send(MidiPortHandle handle, std::span<const std::uint8_t> bytes) {
  std::lock_guard lock(m_mutex);
  if (handle == 0 || handle > m_outputs.size() || bytes.empty()) return E_INVALIDARG;
  Output& output = *m_outputs[handle - 1];
  if (!output.own && !Present(output.target)) {
    ++output.refused;
    return E_FAIL;
  }
  // Told before the server's client has it, so that whoever watches knows of the message
  // before it can come back; a send the server then refuses is among the faults.
  m_sends.OnPortSend(static_cast<std::int32_t>(handle - 1), bytes);
  output.error.clear();
  output.port->sendMessage(bytes.data(), bytes.size());
  if (!output.error.empty()) {
    ++output.failed;
    return E_FAIL;
  }
  return S_OK;
}

HRESULT CRtMidiPorts::SendShortMsg(MidiPortHandle handle, std::uint32_t message) {
  const std::uint8_t bytes[3] = {static_cast<std::uint8_t>(message),
                                 static_cast<std::uint8_t>(message >> 8),
                                 static_cast<std::uint8_t>(message >> 16)};
  return Send(handle, std::span(bytes, ShortMessageLength(bytes[0])));
}

HRESULT CRtMidiPorts::SendSysexMsg(MidiPortHandle handle, const std::uint8_t* bytes,
                                   std::uint32_t length) {
  if (!bytes) return E_POINTER;
  return Send(handle, std::span(bytes, length));
}

std::wstring CRtMidiPorts::SentPortName(std::int32_t port) {
  std::lock_guard lock(m_mutex);
  if (port < 0 || static_cast<std::size_t>(port) >= m_outputs.size()) return L"?";
  return NarrowToWide(m_outputs[static_cast<std::size_t>(port)]->target);
}

// --- listening -----------------------------------------------------------------------------

CRtMidiPorts::Input* CRtMidiPorts::InputFor(const Entry& entry) {
  const std::size_t count = m_inputCount.load();
  for (std::size_t i = 0; i < count; ++i)
    if (m_inputs[i]->id == entry.id) return m_inputs[i].get();
  if (count == kMaxInputs) return nullptr;
  auto input =
      std::make_unique<Input>(entry.name, entry.id, false, m_options.ringBytes, m_wake);
  try {
    input->port =
        std::make_unique<RtMidiIn>(ApiOf(m_options.server), ClientName("receive", ++m_clients));
    input->port->setErrorCallback(KeepError, &input->error);
    input->port->ignoreTypes(true, false, true);
    input->port->setCallback(Input::OnMessage, input.get());
    const unsigned ports = input->port->getPortCount();
    for (unsigned i = 0; i < ports && !input->port->isPortOpen(); ++i)
      if (input->port->getPortName(i) == entry.name) input->port->openPort(i, "in");
  } catch (const RtMidiError&) {
    return nullptr;
  }
  if (!input->port->isPortOpen()) return nullptr;
  m_inputs[count] = std::move(input);
  m_inputCount.store(count + 1, std::memory_order_release);
  return m_inputs[count].get();
}

HRESULT CRtMidiPorts::UseInputPort(std::int32_t id) {
  std::lock_guard lock(m_mutex);
  for (const Entry& entry : ReadInputs())
    if (entry.id == id) return InputFor(entry) ? S_OK : E_FAIL;
  return E_INVALIDARG;
}

std::wstring CRtMidiPorts::InputPortName(std::int32_t id) {
  const std::size_t count = m_inputCount.load(std::memory_order_acquire);
  for (std::size_t i = 0; i < count; ++i)
    if (m_inputs[i]->id == id) return NarrowToWide(m_inputs[i]->source);
  return L"?";
}

void CRtMidiPorts::DeliverArrivals() {
  std::vector<std::uint8_t> bytes;
  std::int64_t timeNs = 0;
  while (!m_stopping) {
    while (sem_wait(&m_wake) != 0 && errno == EINTR) {
    }
    const std::size_t count = m_inputCount.load(std::memory_order_acquire);
    for (std::size_t i = 0; i < count; ++i) {
      Input& input = *m_inputs[i];
      while (input.ring.Pop(bytes, timeNs)) {
        // Short messages only: an instance's live input carries nothing else.
        if (bytes.empty() || bytes.size() > 3 || bytes[0] < 0x80 || bytes[0] == 0xF0) continue;
        std::uint32_t packed = 0;
        for (std::size_t b = 0; b < bytes.size(); ++b)
          packed |= static_cast<std::uint32_t>(bytes[b]) << (8 * b);
        const std::chrono::steady_clock::time_point at{std::chrono::nanoseconds(timeNs)};
        m_arrivals({input.id, packed, at});
      }
    }
  }
}

// --- the end of a run ----------------------------------------------------------------------

std::vector<std::string> CRtMidiPorts::Faults() {
  std::lock_guard lock(m_mutex);
  std::vector<std::string> faults;
  const auto reachable = m_listers->Names(*m_listers->reachable);
  const auto hearable = m_listers->Names(*m_listers->hearable);
  const auto there = [](const std::vector<std::string>& names, const std::string& name) {
    return std::find(names.begin(), names.end(), name) != names.end();
  };
  for (const auto& output : m_outputs) {
    if (!output->own && !there(reachable, output->target))
      faults.push_back("MIDI port " + output->target + " went away during the run; " +
                       std::to_string(output->refused) + " sends to it failed");
    if (output->failed)
      faults.push_back("MIDI port " + output->target + ": the server refused " +
                       std::to_string(output->failed) + " sends");
  }
  const std::size_t count = m_inputCount.load();
  for (std::size_t i = 0; i < count; ++i) {
    const Input& input = *m_inputs[i];
    if (!input.own && !there(hearable, input.source))
      faults.push_back("MIDI port " + input.source + " went away during the run");
    if (input.ring.Dropped())
      faults.push_back("MIDI port " + input.source + ": " +
                       std::to_string(input.ring.Dropped()) +
                       " messages arrived faster than the host took them and were dropped");
  }
  return faults;
}

#include "tests/host/jack_clients.h"

#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <thread>

CBackground::CBackground(const std::string& command, const std::filesystem::path& output) {
  const std::string line = "exec " + command + " >'" + output.string() + "' 2>&1";
  m_pid = fork();
  if (m_pid == 0) {
    setpgid(0, 0);                     // a group of its own, so that a pipeline ends whole
    prctl(PR_SET_PDEATHSIG, SIGTERM);  // never outlives the test
    execl("/bin/sh", "sh", "-c", line.c_str(), static_cast<char*>(nullptr));
    _exit(127);
  }
}

void CBackground::Stop() {
  if (m_pid <= 0) return;
  kill(-m_pid, SIGTERM);
  int status = 0;
  for (int i = 0; i < 100; ++i) {
    if (waitpid(m_pid, &status, WNOHANG) == m_pid) {
      m_pid = -1;
      return;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  kill(-m_pid, SIGKILL);
  waitpid(m_pid, &status, 0);
  m_pid = -1;
}

CJackServer::CJackServer(const std::string& name, int rate, int period,
                         const std::filesystem::path& log)
    : m_log(log),
      m_server("jackd --no-realtime -n " + name + " -d dummy -r " + std::to_string(rate) +
                   " -p " + std::to_string(period),
               log) {
  m_up = std::system(("jack_wait -s " + name + " -w -t 10 >/dev/null 2>&1").c_str()) == 0;
}

std::string CJackServer::Log() const {
  std::ifstream in(m_log);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

bool JackInstalled() { return std::system("command -v jackd >/dev/null 2>&1") == 0; }

std::vector<std::string> JackPorts() {
  std::vector<std::string> ports;
  FILE* pipe = popen("jack_lsp 2>/dev/null", "r");
  if (!pipe) return ports;
  char line[512];
  while (std::fgets(line, sizeof line, pipe)) {
    std::string port = line;
    while (!port.empty() && (port.back() == '\n' || port.back() == '\r')) port.pop_back();
    ports.push_back(port);
  }
  pclose(pipe);
  return ports;
}

bool WaitForJackPort(const std::string& port, std::chrono::milliseconds timeout) {
  const auto deadline = std::chrono::steady_clock::now() + timeout;
  while (std::chrono::steady_clock::now() < deadline) {
    for (const std::string& listed : JackPorts())
      if (listed == port) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
  return false;
}

std::size_t ServerXruns() {
  const char* log = std::getenv("TARN_JACK_SERVER_LOG");
  if (!log) return 0;
  std::ifstream in(log);
  std::size_t xruns = 0;
  for (std::string line; std::getline(in, line);)
    xruns += line.find("XRun") != std::string::npos;
  return xruns;
}

bool JackConnect(const std::string& from, const std::string& to) {
  return std::system(("jack_connect '" + from + "' '" + to + "' >/dev/null 2>&1").c_str()) == 0;
}

std::vector<DumpedMessage> ReadDump(const std::filesystem::path& file) {
  std::vector<DumpedMessage> messages;
  std::ifstream in(file);
  for (std::string line; std::getline(in, line);) {
    const std::size_t colon = line.find(':');
    if (colon == std::string::npos) continue;
    std::istringstream frame(line.substr(0, colon));
    DumpedMessage message{};
    if (!(frame >> message.frame)) continue;
    // The bytes are pairs of hex digits up to the description.
    std::istringstream rest(line.substr(colon + 1));
    for (std::string word; rest >> word;) {
      if (word.size() != 2 || !std::isxdigit(static_cast<unsigned char>(word[0])) ||
          !std::isxdigit(static_cast<unsigned char>(word[1])))
        break;
      message.bytes += (message.bytes.empty() ? "" : " ") + word;
    }
    if (!message.bytes.empty()) messages.push_back(message);
  }
  return messages;
}

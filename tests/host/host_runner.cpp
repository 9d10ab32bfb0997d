#include "tests/host/host_runner.h"

#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <cctype>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <thread>

namespace fs = std::filesystem;

HostRunner::HostRunner() {
  std::string pattern = (fs::temp_directory_path() / "tarn-host-e2e-XXXXXX").string();
  if (!mkdtemp(pattern.data())) throw std::runtime_error("no temporary folder");
  m_folder = pattern;
  fs::copy_file(TARN_MODULE_FILE, m_folder / "libtarn.so");
  const HostResult registered = Run("register libtarn.so");
  if (registered.code != 0) throw std::runtime_error("register failed: " + registered.err);
}

HostRunner::~HostRunner() {
  if (m_started > 0) Wait();
  std::error_code ignored;
  fs::remove_all(m_folder, ignored);
}

std::string HostRunner::Command(const std::string& arguments) const {
  return "cd '" + m_folder.string() + "' && exec '" TARN_HOST_FILE "' --registry registry " +
         arguments + " >stdout.txt 2>stderr.txt";
}

HostResult HostRunner::Run(const std::string& arguments) const {
  const int status = std::system(Command(arguments).c_str());
  const int code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return {code, Read("stdout.txt"), Read("stderr.txt")};
}

void HostRunner::Start(const std::string& arguments) {
  const std::string command = Command(arguments);
  int input[2];
  if (pipe(input) != 0) throw std::runtime_error("no pipe");
  m_started = fork();
  if (m_started == 0) {
    dup2(input[0], STDIN_FILENO);
    close(input[0]);
    close(input[1]);
    execl("/bin/sh", "sh", "-c", command.c_str(), static_cast<char*>(nullptr));
    _exit(127);
  }
  close(input[0]);
  m_input = input[1];
}

bool HostRunner::WaitForOutput(const std::string& text,
                               std::chrono::milliseconds timeout) const {
  const auto deadline = std::chrono::steady_clock::now() + timeout;
  while (Read("stdout.txt").find(text) == std::string::npos) {
    if (std::chrono::steady_clock::now() >= deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  return true;
}

void HostRunner::Enter() {
  std::signal(SIGPIPE, SIG_IGN);  // a host that has already ended must fail the test, not end it
  if (m_input >= 0 && write(m_input, "\n", 1) != 1) ADD_FAILURE() << "the host took no input";
}

HostResult HostRunner::Wait() {
  if (m_input >= 0) close(m_input);
  m_input = -1;
  int status = 0;
  if (m_started <= 0 || waitpid(m_started, &status, 0) != m_started) return {-1, "", ""};
  m_started = -1;
  const int code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return {code, Read("stdout.txt"), Read("stderr.txt")};
}

void HostRunner::Write(const std::string& name, const std::string& text) const {
  std::ofstream(m_folder / name, std::ios::binary) << text;
}

std::string HostRunner::Read(const std::string& name) const {
  std::ifstream file(m_folder / name, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

namespace {

// "B0 07 64": pairs of upper-case hex digits with single blanks between.
bool IsHexBytes(const std::string& text) {
  if (text.size() % 3 != 2) return false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    const bool ok = i % 3 == 2 ? c == ' ' : (std::isdigit(static_cast<unsigned char>(c)) ||
                                             (c >= 'A' && c <= 'F'));
    if (!ok) return false;
  }
  return true;
}

}  // namespace

std::vector<MonitorEntry> Monitor(const std::string& out) {
  std::vector<MonitorEntry> entries;
  std::istringstream lines(out);
  for (std::string text; std::getline(lines, text);) {
    const std::size_t unit = text.find(" ms  ");
    const std::size_t gap = text.rfind("  ");
    if (unit == std::string::npos || gap == std::string::npos || gap <= unit + 4) continue;
    const std::string bytes = text.substr(gap + 2);
    if (!IsHexBytes(bytes)) continue;
    entries.push_back({std::stod(text.substr(0, unit)), text.substr(unit + 5, gap - unit - 5),
                       bytes});
  }
  return entries;
}

std::vector<std::string> BytesAt(const std::string& out, const std::string& port,
                                 bool withClock) {
  std::vector<std::string> bytes;
  for (const MonitorEntry& entry : Monitor(out))
    if (entry.port == port && (withClock || entry.bytes != "F8")) bytes.push_back(entry.bytes);
  return bytes;
}

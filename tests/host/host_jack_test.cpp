// tarn-host on a JACK server against programs no one here wrote: JACK's example clients play
// notes into it (jack_midiseq, jack_metro), record what it sends (jack_midi_dump, jack_rec) and
// wire it (jack_connect). The server is the one JACK_DEFAULT_SERVER names, which
// scripts/test-jack.sh starts with the dummy back end at 48000 Hz and 250 frames a period; the
// restart case runs a server of its own.
#include <gtest/gtest.h>
#include <sndfile.h>

#include <cstdlib>
#include <thread>

#include "tests/host/host_runner.h"
#include "tests/host/jack_clients.h"

namespace {

using namespace std::chrono_literals;
using Bytes = std::vector<std::string>;

std::string Config(const std::string& input, const std::string& output, const std::string& more) {
  std::string config = "<Config Schema=\"1\">";
  if (!input.empty()) config += "<MIDIInputPort Name=\"" + input + "\" />";
  if (!output.empty()) config += "<MIDIOutputPort Name=\"" + output + "\" />";
  return config + more + "</Config>";
}
const char* kNoClock = "<MIDISync Enabled=\"0\" />";

Bytes BytesOf(const std::vector<DumpedMessage>& messages) {
  Bytes bytes;
  for (const DumpedMessage& message : messages) bytes.push_back(message.bytes);
  return bytes;
}

// The monitor's bytes ("92 3C 40") as jack_midi_dump writes them ("92 3c 40").
Bytes Lower(Bytes bytes) {
  for (std::string& b : bytes)
    for (char& c : b) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return bytes;
}

// Points the clients started while it lives at the server `name`, and then back.
class CServerName {
 public:
  explicit CServerName(const std::string& name) : m_earlier(std::getenv("JACK_DEFAULT_SERVER")) {
    setenv("JACK_DEFAULT_SERVER", name.c_str(), 1);
  }
  ~CServerName() { setenv("JACK_DEFAULT_SERVER", m_earlier.c_str(), 1); }
  CServerName(const CServerName&) = delete;
  CServerName& operator=(const CServerName&) = delete;

 private:
  std::string m_earlier;
};

class JackTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() { setenv("JACK_NO_START_SERVER", "1", 1); }

  void SetUp() override {
    if (!JackInstalled()) GTEST_SKIP() << "jackd is not installed: the JACK tests are skipped";
    ASSERT_TRUE(std::getenv("JACK_DEFAULT_SERVER") && !JackPorts().empty())
        << "no JACK server: run these tests through scripts/test-jack.sh, which starts one";
  }

  // A rack of one instance per configuration, each applied with the JACK back end, so that the
  // ports it names must be there.
  void MakeRack(const std::vector<std::string>& configs) {
    ASSERT_EQ(m_host.Run("new rack.json --count " + std::to_string(configs.size())).code, 0);
    for (std::size_t i = 0; i < configs.size(); ++i) {
      m_host.Write("config.xml", configs[i]);
      const HostResult set = m_host.Run("config rack.json " + std::to_string(i + 1) +
                                        " --set config.xml --midi jack");
      ASSERT_EQ(set.code, 0) << set.err;
      ASSERT_EQ(set.err, "");  // every port found
    }
  }
  // jack_midi_dump as client `name`, recording its port "<name>:input".
  std::unique_ptr<CBackground> Dump(const std::string& name) {
    auto dump = std::make_unique<CBackground>("stdbuf -oL jack_midi_dump -a " + name,
                                              m_host.File(name + ".txt"));
    EXPECT_TRUE(WaitForJackPort(name + ":input"));
    return dump;
  }
  // jack_midiseq as client `name`: C4 and D#4 in a half-second loop, on port "<name>:out".
  std::unique_ptr<CBackground> Sequencer(const std::string& name) {
    auto seq = std::make_unique<CBackground>(
        "jack_midiseq " + name + " 24000 0 60 8000 12000 63 8000", m_host.File(name + ".log"));
    EXPECT_TRUE(WaitForJackPort(name + ":out"));
    return seq;
  }
  // A rack whose instance sends MIDI clock to a dump, run on JACK audio at --bpm 120. The clock
  // comes from the audio periods the chain streams, so audio it fell behind with on a busy
  // machine (reported, and exit code 1) does not change it.
  void ClockRun(int seconds) {
    m_clockDump = Dump("clock-dump");
    MakeRack({Config("", "clock-dump:input", "<MIDISync Enabled=\"1\" />")});
    const HostResult run = m_host.Run("run rack.json --midi jack --audio jack --bpm 120 --quiet "
                                      "--seconds " + std::to_string(seconds));
    m_clockDump.reset();
    EXPECT_NE(run.out.find("instance 1 \"Synth 1\": "), std::string::npos) << run.err;
    EXPECT_EQ(run.err.find("MIDI port"), std::string::npos) << run.err;
  }
  // The clocks the dump recorded in `seconds` from the first second on, by the server's own
  // frame count.
  long long ClocksInWindow(int seconds) {
    std::vector<long long> clocks;
    for (const DumpedMessage& message : ReadDump(m_host.File("clock-dump.txt")))
      if (message.bytes == "f8") clocks.push_back(message.frame);
    if (clocks.empty()) return 0;
    const long long from = clocks.front() + 48000;
    return std::count_if(clocks.begin(), clocks.end(), [&](long long frame) {
      return frame >= from && frame < from + 48000LL * seconds;
    });
  }
  // Runs the closed-loop test over the rack, wiring the host's own ports with jack_connect as
  // soon as they are there.
  HostResult LoopTest(const std::vector<std::pair<std::string, std::string>>& wires) {
    m_host.Start("test rack.json --midi jack --timeout 20 --report --wait");
    // The host's prompt, not jack_lsp: listing clients while the host opens its own slows the
    // server down by seconds.
    EXPECT_TRUE(m_host.WaitForOutput("ports open"));
    for (const auto& [from, to] : wires) EXPECT_TRUE(JackConnect(from, to));
    m_host.Enter();
    return m_host.Wait();
  }

  HostRunner m_host;
  std::unique_ptr<CBackground> m_clockDump;
};

TEST_F(JackTest, NotesFromASequencerArriveOnTheForcedChannelInOrderWithNothingLostOrAdded) {
  auto seq = Sequencer("notes-seq");
  auto reference = Dump("notes-ref");  // what the sequencer plays
  ASSERT_TRUE(JackConnect("notes-seq:out", "notes-ref:input"));
  auto dump = Dump("notes-dump");
  MakeRack({Config("notes-seq:out", "notes-dump:input",
                   "<MIDIOutputRechannel Channel=\"3\" />" + std::string(kNoClock))});
  const HostResult run = m_host.Run("run rack.json --midi jack --seconds 3");
  ASSERT_EQ(run.code, 0) << run.err;
  std::this_thread::sleep_for(200ms);
  seq.reset();
  dump.reset();
  reference.reset();

  const Bytes received = BytesOf(ReadDump(m_host.File("notes-dump.txt")));
  ASSERT_GE(received.size(), 10u);  // four events every half second
  EXPECT_EQ(received, Lower(BytesAt(run.out, "notes-dump:input")));  // as the host sent them
  // A run of what the sequencer played, channel 1 forced to channel 3.
  Bytes played = BytesOf(ReadDump(m_host.File("notes-ref.txt")));
  for (std::string& bytes : played) bytes[1] = '2';
  const auto at = std::search(played.begin(), played.end(), received.begin(), received.end());
  EXPECT_NE(at, played.end()) << "not one run of what was played";
}

TEST_F(JackTest, LoadingARackSendsTheStoredListWithTheSysexPrefixAndThePause) {
  auto dump = Dump("load-dump");
  MakeRack({Config("", "load-dump:input",
                   "<SysexPrefix>8EEQ</SysexPrefix>" + std::string(kNoClock) +
                       "<MIDIMsg Name=\"Bank\" Description=\"\" Enabled=\"1\">"
                       "<Msg Status=\"176\" Data1=\"0\" Data2=\"1\" />"
                       "<Msg Status=\"192\" Data1=\"5\" Data2=\"0\" /></MIDIMsg>"
                       "<MIDIMsg Name=\"Reset\" Description=\"\" Enabled=\"1\">"
                       "8AAAQhJAAH8AQfc=</MIDIMsg>"
                       "<MIDIMsg Name=\"Pause\" Description=\"\" Enabled=\"1\" Wait=\"300\" />"
                       "<MIDIMsg Name=\"Volume\" Description=\"\" Enabled=\"1\">"
                       "<Msg Status=\"176\" Data1=\"7\" Data2=\"100\" /></MIDIMsg>")});
  const HostResult run = m_host.Run("run rack.json --midi jack --seconds 1");
  ASSERT_EQ(run.code, 0) << run.err;
  std::this_thread::sleep_for(200ms);
  dump.reset();
  EXPECT_EQ(BytesOf(ReadDump(m_host.File("load-dump.txt"))),
            (Bytes{"b0 00 01", "c0 05", "f0 41 10 42 12 40 00 7f 00 41 f7", "b0 07 64"}));
  // The pause in real time, as the host sent; the dummy server's frames keep no wall clock.
  const auto sent = Monitor(run.out);
  ASSERT_EQ(sent.size(), 4u);
  EXPECT_GE(sent[3].ms - sent[2].ms, 300.0);
}

TEST_F(JackTest, MidiClockAt120BeatsAMinuteComes48ASecond) {
  ClockRun(12);
  EXPECT_NEAR(static_cast<double>(ClocksInWindow(10)), 480.0, 10.0);
}

TEST_F(JackTest, ATimebaseMastersTempoRulesTheMidiClock) {
  // jack_transport as timebase master at 90 beats a minute; the command line says 120.
  CBackground transport(
      "sh -c \"(printf 'master\\ntempo 90\\nplay\\n'; sleep 60) | jack_transport\"",
      m_host.File("transport.log"));
  std::this_thread::sleep_for(500ms);
  ClockRun(7);
  transport.Stop();
  // 36 a second at 90; with 250 frames a period a clock goes every sixth period at the most.
  const double perSecond = static_cast<double>(ClocksInWindow(5)) / 5.0;
  EXPECT_GE(perSecond, 31.0);
  EXPECT_LE(perSecond, 37.0);
}

// The metronome, as a JACK client records it beside the host's two outputs through which it
// plays: three channels, frame by frame (none where a step failed), and whether the host said
// that its chain fell behind, as it may on a busy machine.
struct Recording {
  std::vector<int> frames;
  bool hostFellBehind = false;
};

Recording RecordMetronomeThroughHost(HostRunner& host) {
  host.Start("run rack.json --midi jack --audio jack --seconds 6 --quiet");
  EXPECT_TRUE(WaitForJackPort("tarn-host:in_1"));
  CBackground metro("jack_metro -n audio-metro -b 300 -f 700", host.File("metro.log"));
  const bool wired = WaitForJackPort("audio-metro:300_bpm") &&
                     JackConnect("audio-metro:300_bpm", "tarn-host:in_1") &&
                     JackConnect("audio-metro:300_bpm", "tarn-host:in_2");
  const std::string rec = host.File("rec.wav").string();
  const bool recorded =
      wired && std::system(("jack_rec -f '" + rec + "' -d 2 -b 32 audio-metro:300_bpm "
                            "tarn-host:out_1 tarn-host:out_2 >/dev/null 2>&1").c_str()) == 0;
  metro.Stop();
  const HostResult run = host.Wait();
  Recording recording;
  recording.hostFellBehind = run.code == 1 && run.err.find("fell behind") != std::string::npos;
  EXPECT_TRUE(run.code == 0 || recording.hostFellBehind) << run.err;
  EXPECT_TRUE(recorded);
  SF_INFO info{};
  SNDFILE* file = recorded ? sf_open(rec.c_str(), SFM_READ, &info) : nullptr;
  if (!file) return recording;
  if (info.channels == 3) {
    recording.frames.resize(static_cast<std::size_t>(info.frames) * 3);
    sf_readf_int(file, recording.frames.data(), info.frames);
  }
  sf_close(file);
  return recording;
}

// Whether each output is the metronome a whole number of periods later (the host's lead),
// exactly, and the clicks were there to compare.
bool OutputsCopyTheMetronome(const std::vector<int>& frames) {
  const std::size_t count = frames.size() / 3;
  const auto delayedBy = [&](std::size_t lag, std::size_t channel) {
    for (std::size_t f = 0; f + lag < count; ++f)
      if (frames[(f + lag) * 3 + channel] != frames[f * 3]) return false;
    return true;
  };
  std::size_t lag = 0;
  while (lag < 20 * 250 && !delayedBy(lag, 1)) lag += 250;
  std::size_t heard = 0;
  for (std::size_t f = 0; f < count; ++f) heard += frames[f * 3] != 0;
  return lag < 20 * 250 && delayedBy(lag, 2) && heard > 1000;
}

TEST_F(JackTest, AudioPlayedIntoTheHostComesOutUnchanged) {
  MakeRack({Config("", "", kNoClock), Config("", "", kNoClock)});
  // A cycle that the server cut short on a busy machine (an xrun) leaves stale buffers in every
  // client, the recorder's included, and a host that fell behind plays silence and says so: a
  // recording across either proves nothing, and is made again, up to three times.
  for (int attempt = 1;; ++attempt) {
    const std::size_t xrunsBefore = ServerXruns();
    const Recording recording = RecordMetronomeThroughHost(m_host);
    ASSERT_FALSE(recording.frames.empty());
    const bool copied = OutputsCopyTheMetronome(recording.frames);
    const bool disturbed = recording.hostFellBehind || ServerXruns() != xrunsBefore;
    if (copied || !disturbed || attempt == 3) {
      EXPECT_TRUE(copied) << "the outputs are no delayed copies of the metronome"
                          << (disturbed ? ", and something fell behind each time" : "");
      break;
    }
  }
}

TEST_F(JackTest, APortRemovedWhileTheHostRunsIsReportedAndTheRunGoesOn) {
  auto seq = Sequencer("gone-seq");
  auto dump = Dump("gone-dump");
  MakeRack({Config("gone-seq:out", "gone-dump:input", kNoClock)});
  m_host.Start("run rack.json --midi jack --seconds 3");
  std::this_thread::sleep_for(1500ms);
  dump.reset();
  const HostResult run = m_host.Wait();
  EXPECT_EQ(run.code, 1);
  EXPECT_NE(run.err.find("tarn-host: MIDI port gone-dump:input went away during the run; "),
            std::string::npos)
      << run.err;
  EXPECT_EQ(run.err.find("; 0 sends to it failed"), std::string::npos) << run.err;
  EXPECT_GE(BytesAt(run.out, "gone-dump:input").size(), 4u);  // what went out before
  // The run went on to its end, and what the port refused was not counted as sent.
  unsigned sent = 0, received = 0;
  const auto summary = run.out.find("instance 1 \"Synth 1\": ");
  ASSERT_NE(summary, std::string::npos) << run.out;
  ASSERT_EQ(std::sscanf(run.out.c_str() + summary, "instance 1 \"Synth 1\": %u sent, %u received",
                        &sent, &received),
            2);
  EXPECT_LT(sent, received);
}

TEST_F(JackTest, ARackSavedWithJackPortIdsLoadsAgainAfterTheServerRestarts) {
  // A fixed name, so that JACK reuses its registry entry if a run was killed.
  const std::string own = std::string(std::getenv("JACK_DEFAULT_SERVER")) + "-restart";
  const CServerName serverName(own);
  {
    CJackServer server(own, 48000, 256, m_host.File("restart-1.log"));
    ASSERT_TRUE(server.Up()) << server.Log();
    auto dump = Dump("keep-dump");
    MakeRack({Config("", "keep-dump:input",
                     std::string(kNoClock) + "<MIDIMsg Name=\"Program\" Description=\"\" "
                                             "Enabled=\"1\"><Msg Status=\"192\" Data1=\"9\" "
                                             "Data2=\"0\" /></MIDIMsg>")});
  }
  {
    // A new server, where another client's port now stands first in the list.
    CJackServer server(own, 48000, 256, m_host.File("restart-2.log"));
    ASSERT_TRUE(server.Up()) << server.Log();
    auto first = Dump("aaa-dump");
    auto dump = Dump("keep-dump");
    const HostResult run = m_host.Run("run rack.json --midi jack --seconds 0.5");
    EXPECT_EQ(run.code, 0) << run.err;
    std::this_thread::sleep_for(200ms);
    dump.reset();
    first.reset();
    EXPECT_EQ(BytesOf(ReadDump(m_host.File("keep-dump.txt"))), Bytes{"c0 09"});
    EXPECT_TRUE(ReadDump(m_host.File("aaa-dump.txt")).empty());
  }
}

TEST_F(JackTest, ClosedLoopTestPassesForOneInstanceWiredToItself) {
  MakeRack({Config("tarn-host-in-1:in", "tarn-host-out-1:out", kNoClock)});
  const HostResult result = LoopTest({{"tarn-host-out-1:out", "tarn-host-in-1:in"}});
  std::cout << result.out;
  EXPECT_EQ(result.code, 0) << result.out << result.err;
  EXPECT_NE(result.out.find("instances 1  sent 640  received 640  difference 0\n"),
            std::string::npos);
  EXPECT_NE(result.out.find("round trip tarn-host-out-1:out -> tarn-host-in-1:in: 640 test "
                            "messages\n"),
            std::string::npos)
      << result.out;
}

TEST_F(JackTest, ClosedLoopTestPassesForTwoInstancesThatEachHearBoth) {
  MakeRack({Config("tarn-host-in-1:in", "tarn-host-out-1:out", kNoClock),
            Config("tarn-host-in-1:in", "tarn-host-out-2:out", kNoClock)});
  const HostResult result = LoopTest({{"tarn-host-out-1:out", "tarn-host-in-1:in"},
                                      {"tarn-host-out-2:out", "tarn-host-in-1:in"}});
  EXPECT_EQ(result.code, 0) << result.out << result.err;
  EXPECT_NE(result.out.find("instances 2  sent 1280  received 2560  difference 0\n"),
            std::string::npos)
      << result.out;
}

}  // namespace

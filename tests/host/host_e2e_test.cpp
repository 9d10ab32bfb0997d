// tarn-host as a user meets it: registration, racks made and configured through the commands,
// the traffic at each virtual port byte for byte, audio through the chain, saving, and every
// kind of bad input with its message and with files left as they were.
#include <gtest/gtest.h>
#include <sndfile.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>

#include "tests/host/host_runner.h"

namespace {

using Bytes = std::vector<std::string>;

// A configuration sending, on "Virtual Out 1" under the prefix F0 41 10: bank 1 program
// `program`, a sysex block, a pause of `pauseMs`, then volume 100.
std::string SenderConfig(int program, int pauseMs) {
  return "<Config Schema=\"1\"><MIDIOutputPort Name=\"Virtual Out 1\" ID=\"2000\" />"
         "<SysexPrefix>8EEQ</SysexPrefix><MIDISync Enabled=\"0\" />"
         "<MIDIMsg Name=\"Bank\" Description=\"\" Enabled=\"1\">"
         "<Msg Status=\"176\" Data1=\"0\" Data2=\"1\" /><Msg Status=\"176\" Data1=\"32\" Data2=\"0\" />"
         "<Msg Status=\"192\" Data1=\"" + std::to_string(program) + "\" Data2=\"0\" /></MIDIMsg>"
         "<MIDIMsg Name=\"Reset\" Description=\"\" Enabled=\"1\">8AAAQhJAAH8AQfc=</MIDIMsg>"
         "<MIDIMsg Name=\"Disabled\" Description=\"\" Enabled=\"0\">"
         "<Msg Status=\"176\" Data1=\"1\" Data2=\"1\" /></MIDIMsg>"
         "<MIDIMsg Name=\"Pause\" Description=\"\" Enabled=\"1\" Wait=\"" + std::to_string(pauseMs) +
         "\" />"
         "<MIDIMsg Name=\"Volume\" Description=\"\" Enabled=\"1\">"
         "<Msg Status=\"176\" Data1=\"7\" Data2=\"100\" /></MIDIMsg></Config>";
}

Bytes SenderBytes(const std::string& program) {
  return {"B0 00 01", "B0 20 00", "C0 " + program, "F0 41 10 42 12 40 00 7F 00 41 F7",
          "B0 07 64"};
}

// Listens on "Virtual In 1" and sends on "Virtual Out 2", forcing channel 3.
const char* kListenerConfig =
    "<Config Schema=\"1\"><MIDIInputPort Name=\"Virtual In 1\" ID=\"1000\" />"
    "<MIDIOutputPort Name=\"Virtual Out 2\" ID=\"2001\" /><MIDIOutputRechannel Channel=\"3\" />"
    "<MIDISync Enabled=\"0\" /></Config>";

class HostTest : public ::testing::Test {
 protected:
  // A rack of fresh instances with the given names, configured from the given documents.
  void MakeRack(const std::string& rack, const std::vector<std::pair<std::string, std::string>>&
                                             instances) {
    std::string names;
    for (const auto& [name, config] : instances) names += " --name '" + name + "'";
    ASSERT_EQ(m_host.Run("new " + rack + names).code, 0);
    for (std::size_t i = 0; i < instances.size(); ++i) {
      if (instances[i].second.empty()) continue;
      const std::string file = "config" + std::to_string(i + 1) + ".xml";
      m_host.Write(file, instances[i].second);
      const HostResult set = m_host.Run("config " + rack + " " + std::to_string(i + 1) +
                                        " --set " + file);
      ASSERT_EQ(set.code, 0) << set.err;
    }
  }

  HostRunner m_host;
};

TEST_F(HostTest, RegistrationIsListedAndUndone) {
  HostResult listed = m_host.Run("list");
  EXPECT_EQ(listed.out, "{D8DF3849-A01D-4254-A57D-5515BF9E3886}  marrowgate Tarn MIDI Output  " +
                            m_host.File("libtarn.so").string() + "\n");
  EXPECT_EQ(m_host.Run("unregister libtarn.so").code, 0);
  listed = m_host.Run("list");
  EXPECT_EQ(listed.out, "no soft synths are registered\n");

  // With nothing registered, a rack's instances cannot be made.
  m_host.Write("one.json", R"({"format":"tarn-rack","version":1,"instances":[
      {"name":"Lead","class":"{D8DF3849-A01D-4254-A57D-5515BF9E3886}"}]})");
  const HostResult run = m_host.Run("run one.json --seconds 0");
  EXPECT_EQ(run.code, 1);
  EXPECT_EQ(run.err, "tarn-host: one.json: instance 1 \"Lead\": class "
                     "{D8DF3849-A01D-4254-A57D-5515BF9E3886} is not a registered soft synth\n");
}

TEST_F(HostTest, ModulesThatCannotServeAreRefusedByName) {
  // A registered module that has gone: the instance that needs it says which file.
  std::filesystem::remove(m_host.File("libtarn.so"));
  m_host.Write("one.json", R"({"format":"tarn-rack","version":1,"instances":[
      {"name":"Lead","class":"{D8DF3849-A01D-4254-A57D-5515BF9E3886}"}]})");
  const HostResult run = m_host.Run("run one.json --seconds 0");
  EXPECT_EQ(run.code, 1);
  EXPECT_EQ(run.err.rfind("tarn-host: one.json: instance 1 \"Lead\": module " +
                              m_host.File("libtarn.so").string() + " cannot be loaded: ", 0),
            0u) << run.err;

  HostResult missing = m_host.Run("register nowhere.so");
  EXPECT_EQ(missing.code, 1);
  EXPECT_EQ(missing.err.rfind("tarn-host: module nowhere.so cannot be loaded: ", 0), 0u)
      << missing.err;
  HostResult bare = m_host.Run(std::string("register '") + TARN_NO_EXPORTS_FILE + "'");
  EXPECT_EQ(bare.code, 1);
  EXPECT_EQ(bare.err, std::string("tarn-host: module ") + TARN_NO_EXPORTS_FILE +
                          " lacks the export DllGetClassObject\n");
}

TEST_F(HostTest, StoredEventsReachThePortInOrderWithThePauseHonoured) {
  MakeRack("rack.json", {{"Lead", SenderConfig(48, 200)}});
  const HostResult run = m_host.Run("run rack.json --seconds 0.5");
  ASSERT_EQ(run.code, 0) << run.err;
  EXPECT_EQ(BytesAt(run.out, "Virtual Out 1"), SenderBytes("30"));
  const auto monitor = Monitor(run.out);
  ASSERT_EQ(monitor.size(), 5u);
  EXPECT_GE(monitor[4].ms - monitor[3].ms, 200.0);
  EXPECT_LT(monitor[3].ms - monitor[0].ms, 100.0);
  // The sysex block goes to the port only; the four short messages reach the host's sink too.
  EXPECT_NE(run.out.find("instance 1 \"Lead\": 5 sent, 0 received, 4 handed to the host\n"),
            std::string::npos);

  // The transport's start and loops touch only the timed line, never the stored list.
  const HostResult looping = m_host.Run("run rack.json --seconds 0.5 --start 960 --loop 0.05");
  ASSERT_EQ(looping.code, 0) << looping.err;
  EXPECT_EQ(BytesAt(looping.out, "Virtual Out 1"), SenderBytes("30"));
}

TEST_F(HostTest, OutputIsWiredBackToTheInputWhereTheListenerForwardsIt) {
  MakeRack("rack.json", {{"Lead", SenderConfig(5, 50)}, {"Echo", kListenerConfig}});
  const HostResult run = m_host.Run("run rack.json --seconds 0.4");
  ASSERT_EQ(run.code, 0) << run.err;
  EXPECT_EQ(BytesAt(run.out, "Virtual Out 1"), SenderBytes("05"));
  // Short messages only cross as live input, each forced to channel 3.
  EXPECT_EQ(BytesAt(run.out, "Virtual Out 2"),
            (Bytes{"B2 00 01", "B2 20 00", "C2 05", "B2 07 64"}));
}

// The soak's feed in small: live input played into "Virtual In 1" reaches both listeners and
// goes out of each, every message accounted for.
TEST_F(HostTest, FedLiveInputComesInAtEveryListenerAndGoesOutOnce) {
  MakeRack("rack.json", {{"One", kListenerConfig}, {"Two", kListenerConfig}, {"Deaf", ""}});
  const HostResult run = m_host.Run("run rack.json --seconds 0.5 --quiet --feed 200");
  ASSERT_EQ(run.code, 0) << run.err;
  long long fed = 0, in = 0, received = 0, out = 0, lost = -1;
  const auto feedLine = run.out.find("live input: ");
  ASSERT_NE(feedLine, std::string::npos) << run.out;
  ASSERT_EQ(std::sscanf(run.out.c_str() + feedLine,
                        "live input: %lld messages fed to input 1 at 200 a second, 2 instances "
                        "listening\nlive input: %lld in, %lld received, %lld out, %lld lost",
                        &fed, &in, &received, &out, &lost), 5)
      << run.out;
  EXPECT_GT(fed, 50);
  EXPECT_EQ(in, 2 * fed);
  EXPECT_EQ(received, in);
  EXPECT_EQ(out, in);
  EXPECT_EQ(lost, 0);
  EXPECT_NE(run.out.find("memory: "), std::string::npos);
}

TEST_F(HostTest, ConfigurationSetIsWhatTheNextLoadSends) {
  MakeRack("rack.json", {{"Lead", SenderConfig(10, 10)}});
  EXPECT_EQ(BytesAt(m_host.Run("run rack.json --seconds 0.2").out, "Virtual Out 1"),
            SenderBytes("0A"));
  m_host.Write("next.xml", SenderConfig(11, 10));
  const HostResult set = m_host.Run("config rack.json Lead --set next.xml");
  ASSERT_EQ(set.code, 0) << set.err;
  EXPECT_NE(set.out.find("<Msg Status=\"192\" Data1=\"11\" Data2=\"0\" />"), std::string::npos);
  EXPECT_EQ(BytesAt(m_host.Run("run rack.json --seconds 0.2").out, "Virtual Out 1"),
            SenderBytes("0B"));
}

TEST_F(HostTest, ShippedRackSendsItsListsAndSavesToTheSameBytes) {
  const HostResult run =
      m_host.Run(std::string("run '") + TARN_DEMO_RACK + "' --seconds 0.6 --save saved.json");
  ASSERT_EQ(run.code, 0) << run.err;
  EXPECT_EQ(BytesAt(run.out, "Virtual Out 1"),
            (Bytes{"B0 00 01", "B0 20 00", "C0 30", "F0 41 10 42 12 40 00 7F 00 41 F7",
                   "B0 07 64"}));
  // The GM module's own list, then the GS synth's short messages, held through its pause.
  EXPECT_EQ(BytesAt(run.out, "Virtual Out 2"),
            (Bytes{"B1 00 00", "B1 20 00", "C1 00", "F0 7E 7F 09 01 F7", "B1 0A 20", "B1 00 01",
                   "B1 20 00", "C1 30", "B1 07 64"}));
  EXPECT_GT(BytesAt(run.out, "Virtual Out 2", true).size(), 9u) << "MIDI clock is missing";

  std::ifstream shipped(TARN_DEMO_RACK, std::ios::binary);
  std::ostringstream text;
  text << shipped.rdbuf();
  EXPECT_EQ(m_host.Read("saved.json"), text.str());
  ASSERT_EQ(m_host.Run("run saved.json --seconds 0 --save again.json").code, 0);
  EXPECT_EQ(m_host.Read("again.json"), text.str());
}

TEST_F(HostTest, TempoFromTheCommandLineSetsTheMidiClock) {
  // Silence is streamed at real time, so a second of it carries 24 clocks per beat.
  const auto clocks = [&](int bpm) {
    const HostResult run = m_host.Run(std::string("run '") + TARN_DEMO_RACK +
                                      "' --seconds 1 --bpm " + std::to_string(bpm));
    EXPECT_EQ(run.code, 0) << run.err;
    const Bytes all = BytesAt(run.out, "Virtual Out 2", true);
    return std::count(all.begin(), all.end(), "F8");
  };
  const auto slow = clocks(60);
  EXPECT_GE(slow, 22);
  EXPECT_LE(slow, 24);
  EXPECT_EQ(clocks(120), 2 * slow);
}

// ---- audio ----

template <class Sample>
std::vector<Sample> WriteWave(const std::filesystem::path& path, int format, int channels,
                              int rate, sf_count_t frames) {
  std::mt19937 random(7);
  std::vector<Sample> samples(static_cast<std::size_t>(frames * channels));
  for (Sample& s : samples) {
    if constexpr (std::is_same_v<Sample, short>)
      s = static_cast<short>(static_cast<int>(random() % 65536) - 32768);
    else
      s = std::uniform_real_distribution<float>(-1.0f, 1.0f)(random);
  }
  SF_INFO info{0, rate, channels, SF_FORMAT_WAV | format, 0, 0};
  SNDFILE* file = sf_open(path.c_str(), SFM_WRITE, &info);
  if constexpr (std::is_same_v<Sample, short>)
    sf_writef_short(file, samples.data(), frames);
  else
    sf_writef_float(file, samples.data(), frames);
  sf_close(file);
  return samples;
}

template <class Sample>
std::vector<Sample> ReadWave(const std::filesystem::path& path, SF_INFO& info) {
  SNDFILE* file = sf_open(path.c_str(), SFM_READ, &info);
  if (!file) return {};
  std::vector<Sample> samples(static_cast<std::size_t>(info.frames * info.channels));
  if constexpr (std::is_same_v<Sample, short>)
    sf_readf_short(file, samples.data(), info.frames);
  else
    sf_readf_float(file, samples.data(), info.frames);
  sf_close(file);
  return samples;
}

TEST_F(HostTest, AudioComesOutBitIdenticalThroughEveryInstance) {
  MakeRack("rack.json", {{"A", ""}, {"B", ""}});
  const auto pcm = WriteWave<short>(m_host.File("pcm.wav"), SF_FORMAT_PCM_16, 2, 48000, 48000 + 77);
  ASSERT_EQ(m_host.Run("run rack.json --seconds 0 --in pcm.wav --out pcm-out.wav").code, 0);
  SF_INFO info{};
  EXPECT_EQ(ReadWave<short>(m_host.File("pcm-out.wav"), info), pcm);
  EXPECT_EQ(info.format, SF_FORMAT_WAV | SF_FORMAT_PCM_16);

  const auto floats = WriteWave<float>(m_host.File("float.wav"), SF_FORMAT_FLOAT, 1, 48000, 9999);
  ASSERT_EQ(m_host.Run("run rack.json --seconds 0 --in float.wav --out float-out.wav").code, 0);
  EXPECT_EQ(ReadWave<float>(m_host.File("float-out.wav"), info), floats);
  EXPECT_EQ(info.channels, 1);
}

TEST_F(HostTest, UnfitAudioIsRefusedBeforeAnyInstanceStarts) {
  MakeRack("rack.json", {{"Lead", SenderConfig(1, 10)}});
  WriteWave<short>(m_host.File("cd.wav"), SF_FORMAT_PCM_16, 2, 44100, 100);
  HostResult run = m_host.Run("run rack.json --in cd.wav --out out.wav");
  EXPECT_EQ(run.code, 1);
  EXPECT_EQ(run.err, "tarn-host: audio file cd.wav has a rate of 44100 Hz; the rack runs at "
                     "48000 Hz\n");
  EXPECT_EQ(run.out, "");  // nothing was sent: no instance started
  EXPECT_FALSE(std::filesystem::exists(m_host.File("out.wav")));

  m_host.Write("text.wav", "not audio");
  run = m_host.Run("run rack.json --in text.wav");
  EXPECT_EQ(run.code, 1);
  EXPECT_EQ(run.err.rfind("tarn-host: audio file text.wav cannot be read: ", 0), 0u) << run.err;
  EXPECT_EQ(run.out, "");
}

// ---- bad racks ----

TEST_F(HostTest, BrokenRackFilesAreNamedWithTheirFault) {
  m_host.Write("junk.json", "{ not json");
  HostResult run = m_host.Run("run junk.json");
  EXPECT_EQ(run.code, 1);
  EXPECT_EQ(run.err.rfind("tarn-host: rack file junk.json is not valid: ", 0), 0u) << run.err;

  m_host.Write("other.json", R"({"format":"something else"})");
  run = m_host.Run("config other.json 1");
  EXPECT_EQ(run.err, "tarn-host: rack file other.json is not valid: it is not a tarn rack "
                     "(\"format\" must be \"tarn-rack\")\n");
  run = m_host.Run("run absent.json");
  EXPECT_EQ(run.err, "tarn-host: rack file absent.json cannot be read\n");
}

TEST_F(HostTest, ServerBackEndsThatAreNotThereAreNamedBeforeAnythingRuns) {
  ASSERT_EQ(m_host.Run("new rack.json --count 1").code, 0);
  HostResult run = m_host.Run("run rack.json --midi jack");
  if (run.code == 0) GTEST_SKIP() << "a JACK server runs here";
  EXPECT_NE(run.err.find("tarn-host: no JACK server is running (server \""), std::string::npos)
      << run.err;
  EXPECT_EQ(run.out, "");
  run = m_host.Run("run rack.json --audio jack");
  EXPECT_EQ(run.code, 1);
  EXPECT_NE(run.err.find("tarn-host: no JACK server is running"), std::string::npos) << run.err;
  if (std::filesystem::exists("/dev/snd/seq")) return;  // this machine has a sequencer
  run = m_host.Run("test rack.json --midi alsa");
  EXPECT_EQ(run.code, 1);
  EXPECT_EQ(run.err, "tarn-host: there is no ALSA sequencer on this machine (/dev/snd/seq cannot "
                     "be opened; is the snd-seq module loaded?)\n");
}

TEST_F(HostTest, FaultyInstancesAreNamedAndTheOthersStillRunAndKeepTheirPlaceOnSaving) {
  MakeRack("good.json", {{"Lead", SenderConfig(3, 10)}});
  const std::string good = m_host.Read("good.json");
  const std::string state = good.substr(good.find("\"state\": \"") + 10);
  const std::string leadState = state.substr(0, state.find('"'));
  m_host.Write("mixed.json", R"({"format":"tarn-rack","version":1,"instances":[
      {"name":"Ghost","class":"{00000000-1111-2222-3333-444444444444}","state":""},
      {"name":"Broken","class":"{D8DF3849-A01D-4254-A57D-5515BF9E3886}","state":"00ff"},
      {"name":"Odd","class":"{D8DF3849-A01D-4254-A57D-5515BF9E3886}","state":"xyz"},
      {"name":"Lead","class":"{D8DF3849-A01D-4254-A57D-5515BF9E3886}","state":")" +
                                 leadState + R"("}]})");
  const HostResult run = m_host.Run("run mixed.json --seconds 0.2 --save saved.json");
  EXPECT_EQ(run.code, 1);
  EXPECT_NE(run.err.find("tarn-host: mixed.json: instance 1 \"Ghost\": class "
                         "{00000000-1111-2222-3333-444444444444} is not a registered soft synth\n"),
            std::string::npos) << run.err;
  EXPECT_NE(run.err.find("tarn-host: mixed.json: instance 2 \"Broken\": the instance refused its "
                         "saved state (0x"),
            std::string::npos) << run.err;
  EXPECT_NE(run.err.find("tarn-host: mixed.json: instance 3 \"Odd\": its \"state\" is not hex "
                         "text\n"),
            std::string::npos) << run.err;
  EXPECT_EQ(BytesAt(run.out, "Virtual Out 1"), SenderBytes("03"));
  // Every entry keeps its place, and states that were not loaded keep their bytes.
  const std::string saved = m_host.Read("saved.json");
  EXPECT_NE(saved.find("\"state\": \"00ff\""), std::string::npos);
  EXPECT_NE(saved.find("\"name\": \"Ghost\""), std::string::npos);
  EXPECT_NE(saved.find("\"state\": \"" + leadState + "\""), std::string::npos);
}

TEST_F(HostTest, AFailedSaveLeavesTheRackAsItWas) {
  MakeRack("rack.json", {{"Lead", SenderConfig(3, 10)}});
  const std::string before = m_host.Read("rack.json");
  HostResult run = m_host.Run("run rack.json --seconds 0 --save missing/rack.json");
  EXPECT_EQ(run.code, 1);
  EXPECT_EQ(run.err, "tarn-host: rack file missing/rack.json cannot be written (its folder is not "
                     "writable?)\n");
  std::filesystem::create_directory(m_host.File("taken"));
  run = m_host.Run("run rack.json --seconds 0 --save taken");
  EXPECT_EQ(run.err, "tarn-host: rack file taken cannot be replaced\n");
  EXPECT_TRUE(std::filesystem::is_directory(m_host.File("taken")));

  m_host.Write("refused.xml", "<NotAConfig/>");
  run = m_host.Run("config rack.json 1 --set refused.xml");
  EXPECT_EQ(run.code, 1);
  EXPECT_EQ(run.err.rfind("tarn-host: rack.json: instance 1 \"Lead\": the instance refused "
                          "refused.xml (0x", 0), 0u) << run.err;
  EXPECT_EQ(m_host.Read("rack.json"), before);
  for (const auto& entry : std::filesystem::directory_iterator(m_host.Folder()))
    EXPECT_NE(entry.path().extension(), ".saving") << "a temporary file was left behind";
}

}  // namespace

// `tarn-host test` as a user runs it on the virtual loopback, where output N comes back at
// input N: real timers, so each case takes the seconds a run takes.
#include <gtest/gtest.h>

#include <string>

#include "tests/host/host_runner.h"

namespace {

// Listens on "Virtual In N" and sends on "Virtual Out N".
std::string LoopConfig(int port) {
  const std::string n = std::to_string(port);
  return "<Config Schema=\"1\"><MIDIInputPort Name=\"Virtual In " + n + "\" ID=\"" +
         std::to_string(999 + port) + "\" /><MIDIOutputPort Name=\"Virtual Out " + n +
         "\" ID=\"" + std::to_string(1999 + port) + "\" /><MIDISync Enabled=\"0\" /></Config>";
}

class LoopTestCommand : public ::testing::Test {
 protected:
  // A rack of instances, the Nth on loop ports[N].
  void MakeRack(const std::vector<int>& ports) {
    std::string names;
    for (std::size_t i = 0; i < ports.size(); ++i) names += " --name S" + std::to_string(i + 1);
    ASSERT_EQ(m_host.Run("new rack.json" + names).code, 0);
    for (std::size_t i = 0; i < ports.size(); ++i) {
      m_host.Write("loop.xml", LoopConfig(ports[i]));
      ASSERT_EQ(m_host.Run("config rack.json " + std::to_string(i + 1) + " --set loop.xml").code,
                0);
    }
  }
  static bool Has(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
  }

  HostRunner m_host;
};

TEST_F(LoopTestCommand, OneInstanceWiredToItselfPassesWithEveryMessageBackOnce) {
  MakeRack({1});
  const HostResult result = m_host.Run("test rack.json --report");
  EXPECT_EQ(result.code, 0) << result.out << result.err;
  for (const char* line : {"  Waiting for quiescence MIDI input...\n", "  Testing...\n",
                           "  Finishing\n", "  Restarting\n", "  User Stop\n", "  Finished\n",
                           "instances 1  sent 640  received 640  difference 0\n",
                           "round trip Virtual Out 1 -> Virtual In 1: 640 test messages\n",
                           "lost at Virtual Out 1: 0\n", "duplicated at Virtual In 1: 0\n",
                           "\npassed\n"})
    EXPECT_TRUE(Has(result.out, line)) << line << " in\n" << result.out;
}

TEST_F(LoopTestCommand, WithWaitTheTestStartsOnEnterOnly) {
  MakeRack({1});
  m_host.Start("test rack.json --wait");
  ASSERT_TRUE(m_host.WaitForOutput("ports open: wire them, then press Enter to start the test\n"));
  EXPECT_FALSE(m_host.WaitForOutput("Waiting for quiescence", std::chrono::milliseconds(300)));
  m_host.Enter();
  const HostResult result = m_host.Wait();
  EXPECT_EQ(result.code, 0) << result.out << result.err;
  EXPECT_TRUE(Has(result.out, "instances 1  sent 640  received 640  difference 0\n")) << result.out;
}

TEST_F(LoopTestCommand, TwoInstancesThatEachHearBothPassWithEveryMessageHeardTwice) {
  MakeRack({1, 1});
  const HostResult result = m_host.Run("test rack.json");
  EXPECT_EQ(result.code, 0) << result.out << result.err;
  EXPECT_TRUE(Has(result.out, "instances 2  sent 1280  received 2560  difference 0\n"))
      << result.out;
}

TEST_F(LoopTestCommand, SeparateLoopsAreStoppedAtTheTimeoutAndFailWithTheMismatch) {
  MakeRack({1, 2});
  const HostResult result = m_host.Run("test rack.json --timeout 8");
  EXPECT_EQ(result.code, 1);
  EXPECT_TRUE(Has(result.out, "  Finishing\n"));
  EXPECT_TRUE(Has(result.out, "the run has not passed in 8.000 s: Stop\n"));
  EXPECT_TRUE(Has(result.out,
                  "  Check Results:  Number of input and output events does not match\n"
                  "failed\n"))
      << result.out;
}

TEST_F(LoopTestCommand, ARackWithNoOutputHasNothingToTest) {
  ASSERT_EQ(m_host.Run("new rack.json --count 1").code, 0);
  const HostResult result = m_host.Run("test rack.json");
  EXPECT_EQ(result.code, 1);
  EXPECT_TRUE(Has(result.out, "no instance has an active output: nothing to test\n"));
}

}  // namespace

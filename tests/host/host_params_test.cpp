// Parameters through tarn-host: "params" lists and sets them, and envelopes in a rack reach the
// instances before they run. Automation is seen through the value a parameter ends a run with,
// as nothing in the instance reads "Enabled".
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>

#include "tests/host/host_runner.h"

namespace {

const std::string kClass = "{D8DF3849-A01D-4254-A57D-5515BF9E3886}";

// An instance entry named `name` carrying `envelopes` (JSON text; empty for none).
std::string Entry(const std::string& name, const std::string& envelopes = "") {
  return R"({"name":")" + name + R"(","class":")" + kClass + "\"" +
         (envelopes.empty() ? "" : ",\"envelopes\":" + envelopes) + "}";
}

std::string Rack(const std::vector<std::string>& entries) {
  std::string list;
  for (const std::string& entry : entries) list += (list.empty() ? "" : ",") + entry;
  return R"({"format":"tarn-rack","version":1,"instances":[)" + list + "]}";
}

// One segment of "Enabled" from `from` to `to` over [start, end) in 100 ns.
std::string Envelope(long long start, long long end, double from, double to,
                     const std::string& curve = "linear") {
  return R"([{"param":0,"segments":[{"start":)" + std::to_string(start) +
         ",\"end\":" + std::to_string(end) + ",\"from\":" + std::to_string(from) +
         ",\"to\":" + std::to_string(to) + ",\"curve\":\"" + curve + "\"}]}]";
}

const std::string kFreshLine =
    "  0  Enabled  bool  unit \"\"  range 0..1  default 1  value 1\n";

class ParamsTest : public ::testing::Test {
 protected:
  HostRunner m_host;
};

TEST_F(ParamsTest, FreshRackListsEnabledWithItsRangeAndDefault) {
  ASSERT_EQ(m_host.Run("new rack.json --name Lead --name Pad").code, 0);
  const HostResult all = m_host.Run("params rack.json");
  ASSERT_EQ(all.code, 0) << all.err;
  EXPECT_EQ(all.out, "instance 1 \"Lead\":\n" + kFreshLine + "instance 2 \"Pad\":\n" + kFreshLine);
  EXPECT_EQ(all.err, "");

  // One instance, by number or by name.
  EXPECT_EQ(m_host.Run("params rack.json 2").out, "instance 2 \"Pad\":\n" + kFreshLine);
  EXPECT_EQ(m_host.Run("params rack.json Lead").out, "instance 1 \"Lead\":\n" + kFreshLine);
}

TEST_F(ParamsTest, SettingChangesOnlyTheNamedInstanceAndIsNotSaved) {
  ASSERT_EQ(m_host.Run("new rack.json --name Lead --name Pad").code, 0);
  const std::string before = m_host.Read("rack.json");
  // A boolean takes 0.5 as true and anything less as false.
  const HostResult off = m_host.Run("params rack.json Pad --set 0=0.49");
  ASSERT_EQ(off.code, 0) << off.err;
  EXPECT_EQ(off.out, "instance 2 \"Pad\":\n  0  Enabled  bool  unit \"\"  range 0..1  default 1  "
                     "value 0\n");
  const HostResult on = m_host.Run("params rack.json Pad --set 0=0 --set 0=0.5");
  EXPECT_EQ(on.out, "instance 2 \"Pad\":\n" + kFreshLine);
  EXPECT_EQ(m_host.Read("rack.json"), before);
  EXPECT_EQ(m_host.Run("params rack.json 1").out, "instance 1 \"Lead\":\n" + kFreshLine);
}

TEST_F(ParamsTest, BadRequestsAreRefusedByName) {
  ASSERT_EQ(m_host.Run("new rack.json --name Lead").code, 0);
  // Index 2 lies outside the instance's table: refused, the list still printed.
  const HostResult outside = m_host.Run("params rack.json --set 2=1");
  EXPECT_EQ(outside.code, 1);
  EXPECT_EQ(outside.err, "tarn-host: rack.json: instance 1 \"Lead\": the instance refused 2=1 "
                         "(0x80070057)\n");
  EXPECT_EQ(outside.out, "instance 1 \"Lead\":\n" + kFreshLine);

  for (const char* text : {"0", "=1", "0=", "x=1", "-1=0", "0=1x", "0=nan", "0=inf"}) {
    const HostResult bad = m_host.Run(std::string("params rack.json --set '") + text + "'");
    EXPECT_EQ(bad.code, 1) << text;
    EXPECT_EQ(bad.err, std::string("tarn-host: \"") + text +
                           "\" is not INDEX=VALUE (a parameter index and a number)\n");
    EXPECT_EQ(bad.out, "") << text;
  }
  const HostResult nobody = m_host.Run("params rack.json Bass");
  EXPECT_EQ(nobody.code, 1);
  EXPECT_EQ(nobody.err, "tarn-host: rack.json: no usable instance \"Bass\"\n");
}

TEST_F(ParamsTest, EnvelopesApplyFromTheStreamsStartInMediaTime) {
  // 100 ns units: 2,000,000 is 0.2 s. A jump there switches "Enabled" off within a half-second
  // run but not within a tenth; a segment at 10 s is never reached and the value stays.
  m_host.Write("rack.json", Rack({Entry("Jump", Envelope(2000000, 2000000, 0, 0, "jump")),
                                  Entry("Fade", Envelope(0, 2500000, 1, 0)),
                                  Entry("Late", Envelope(100000000, 110000000, 0, 0)),
                                  Entry("Plain")}));
  const HostResult half = m_host.Run("run rack.json --seconds 0.5 --quiet");
  ASSERT_EQ(half.code, 0) << half.err;
  EXPECT_NE(half.out.find("instance 1 \"Jump\": parameter 0 ended at 0\n"
                          "instance 2 \"Fade\": parameter 0 ended at 0\n"
                          "instance 3 \"Late\": parameter 0 ended at 1\n"),
            std::string::npos) << half.out;
  EXPECT_EQ(half.out.find("\"Plain\": parameter"), std::string::npos);

  const HostResult tenth = m_host.Run("run rack.json --seconds 0.1 --quiet");
  ASSERT_EQ(tenth.code, 0) << tenth.err;
  EXPECT_NE(tenth.out.find("instance 1 \"Jump\": parameter 0 ended at 1\n"), std::string::npos)
      << tenth.out;

  // Every curve name is known; the envelope is the host's to add, so params shows the fresh value.
  for (const char* curve : {"jump", "linear", "square", "inverse-square", "sine"}) {
    m_host.Write("one.json", Rack({Entry("A", Envelope(0, 1000000, 1, 0, curve))}));
    const HostResult run = m_host.Run("run one.json --seconds 0.2 --quiet");
    EXPECT_EQ(run.code, 0) << curve << run.err;
    EXPECT_NE(run.out.find("instance 1 \"A\": parameter 0 ended at 0\n"), std::string::npos)
        << curve << run.out;
  }
  EXPECT_EQ(m_host.Run("params one.json").out, "instance 1 \"A\":\n" + kFreshLine);
}

TEST_F(ParamsTest, SavingKeepsTheEnvelopesAsTheFileHadThem) {
  const std::string good = Envelope(0, 2500000, 1, 0, "sine");
  const std::string bad = R"([{"param":0,"segments":[{"start":0,"end":1,"from":1,"to":0,)"
                          R"("curve":"cubic","note":"kept"}]}])";
  m_host.Write("rack.json", Rack({Entry("Fade", good), Entry("Bad", bad), Entry("Plain")}));
  const HostResult run = m_host.Run("run rack.json --seconds 0.1 --quiet --save saved.json");
  EXPECT_EQ(run.code, 1);
  const auto saved = nlohmann::json::parse(m_host.Read("saved.json"));
  ASSERT_EQ(saved.at("instances").size(), 3u);
  EXPECT_EQ(saved["instances"][0].at("envelopes"), nlohmann::json::parse(good));
  EXPECT_EQ(saved["instances"][1].at("envelopes"), nlohmann::json::parse(bad));
  EXPECT_FALSE(saved["instances"][2].contains("envelopes"));

  // The saved rack runs as the first did.
  const HostResult again = m_host.Run("run saved.json --seconds 0.3 --quiet");
  EXPECT_NE(again.out.find("instance 1 \"Fade\": parameter 0 ended at 0\n"), std::string::npos);
}

TEST_F(ParamsTest, MalformedEnvelopesNameTheirInstanceWhileTheOthersRun) {
  struct Case {
    const char* envelopes;
    const char* fault;
  };
  const Case cases[] = {
      {R"([{"param":0,"segments":[{"start":0,"end":10,"from":1,"to":0,"curve":"cubic"}]}])",
       "envelope 1 segment 1 has an unknown curve cubic (jump, linear, square, inverse-square or "
       "sine)"},
      {R"([{"param":0,"segments":[{"start":0,"end":10,"from":1,"to":0,"curve":2}]}])",
       "envelope 1 segment 1 has an unknown curve 2 (jump, linear, square, inverse-square or "
       "sine)"},
      {R"({"param":0})", "its \"envelopes\" is not a list"},
      {R"([7])", "envelope 1 is not an object"},
      {R"([{"segments":[]}])", "envelope 1 needs \"param\", a parameter index"},
      {R"([{"param":-1,"segments":[]}])", "envelope 1 needs \"param\", a parameter index"},
      {R"([{"param":0}])", "envelope 1 needs a \"segments\" list"},
      {R"([{"param":0,"segments":[]},{"param":0,"segments":[{"end":10,"from":1,"to":0}]}])",
       "envelope 2 segment 1 needs \"start\" as a whole number of 100 ns"},
      {R"([{"param":0,"segments":[{"start":0.5,"end":10,"from":1,"to":0}]}])",
       "envelope 1 segment 1 needs \"start\" as a whole number of 100 ns"},
      {R"([{"param":0,"segments":[{"start":0,"end":10,"from":"1","to":0}]}])",
       "envelope 1 segment 1 needs \"from\" as a number"},
      {R"([{"param":0,"segments":[{"start":20,"end":10,"from":1,"to":0}]}])",
       "envelope 1 segment 1 must start at 0 or later and end no earlier than it starts"},
      {R"([{"param":0,"segments":[{"start":-5,"end":10,"from":1,"to":0}]}])",
       "envelope 1 segment 1 must start at 0 or later and end no earlier than it starts"},
  };
  for (const Case& c : cases) {
    m_host.Write("rack.json", Rack({Entry("Bad", c.envelopes),
                                    Entry("Fade", Envelope(0, 1000000, 1, 0))}));
    const HostResult run = m_host.Run("run rack.json --seconds 0.2 --quiet");
    EXPECT_EQ(run.code, 1) << c.envelopes;
    EXPECT_EQ(run.err, std::string("tarn-host: rack.json: instance 1 \"Bad\": its envelopes are "
                                   "not valid: ") + c.fault + "\n");
    EXPECT_NE(run.out.find("instance 2 \"Fade\": parameter 0 ended at 0\n"), std::string::npos)
        << c.envelopes << run.out;
  }

  // A well-formed envelope for a parameter the instance lacks: the instance refuses it and
  // still runs.
  m_host.Write("rack.json", Rack({Entry("Odd", R"([{"param":3,"segments":[{"start":0,"end":1,)"
                                               R"("from":1,"to":0}]}])"),
                                  Entry("Plain")}));
  const HostResult refused = m_host.Run("run rack.json --seconds 0.1 --quiet");
  EXPECT_EQ(refused.code, 1);
  EXPECT_EQ(refused.err, "tarn-host: rack.json: instance 1 \"Odd\": the instance refused the "
                         "envelope for parameter 3 (0x80070057)\n");
  EXPECT_NE(refused.out.find("instance 1 \"Odd\": 0 sent"), std::string::npos);

  // params reports the broken instance and lists the others.
  m_host.Write("rack.json", Rack({Entry("Bad", cases[0].envelopes), Entry("Plain")}));
  const HostResult listed = m_host.Run("params rack.json");
  EXPECT_EQ(listed.code, 1);
  EXPECT_EQ(listed.out, "instance 2 \"Plain\":\n" + kFreshLine);
  EXPECT_NE(listed.err.find("instance 1 \"Bad\": its envelopes are not valid"), std::string::npos);
}

}  // namespace

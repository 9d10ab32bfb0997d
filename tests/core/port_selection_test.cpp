// Choosing ports by exact name, announcing ids, and the warning texts.
#include <gtest/gtest.h>

#include "ports/midi_manager.h"
#include "tests/support/test_instance.h"

namespace {

std::int32_t OutputIndex(ConnectedRig& rig) {
  std::int32_t index = -7;
  return rig.instance->GetOutputPortIndex(&index) == S_OK ? index : -1;
}

TEST(PortSelection, MatchesExactlyTakesTheFirstOfEqualNamesAndKeepsTheOldOnFailure) {
  MessageBoxRecorder boxes;
  ConnectedRig rig;
  rig.ports.SetOutputs({L"synth", L"Synth", L"Synth"});
  EXPECT_EQ(rig.instance->SelectOutputPort(L"Synth"), S_OK);
  EXPECT_EQ(OutputIndex(rig), 1);
  EXPECT_EQ(rig.ports.UsedOutputIds(), std::vector<std::int32_t>{FakeMidiPorts::kOutputIdBase + 1});
  EXPECT_EQ(rig.instance->SelectOutputPort(L"SYNTH"), E_FAIL);
  EXPECT_EQ(OutputIndex(rig), 1) << "a failed choice leaves the old one";
  ASSERT_EQ(boxes.Boxes().size(), 1u);
  EXPECT_EQ(boxes.Boxes()[0].text,
            L"Warning:  Tarn configured to use unavailable MIDI output port \"SYNTH\".  "
            L"Disabling output.");

  // Inputs take the same road and announce their id as outputs do.
  rig.ports.SetInputs({L"Keys", L"Pads"});
  ASSERT_EQ(rig.instance->SelectInputPort(L"Pads"), S_OK);
  EXPECT_EQ(rig.ports.UsedInputIds(), std::vector<std::int32_t>{FakeMidiPorts::kInputIdBase + 1});
}

TEST(PortSelection, AnEmptyListWarnsOnceForANameAndNeverForAnEmptyName) {
  MessageBoxRecorder boxes;
  ConnectedRig rig;
  rig.ports.SetInputs({});
  EXPECT_EQ(rig.instance->SelectInputPort(L"Keys"), E_FAIL);
  EXPECT_EQ(rig.instance->SelectInputPort(L""), E_FAIL);
  ASSERT_EQ(boxes.Boxes().size(), 1u);
  EXPECT_EQ(boxes.Boxes()[0].text,
            L"Warning:  Tarn configured to use unavailable MIDI input port \"Keys\".  "
            L"Disabling input.");
  std::int32_t index = 0;
  EXPECT_EQ(rig.instance->GetInputPortIndex(&index), E_FAIL);
}

TEST(PortSelection, AHostWithoutStableIdsStillSelects) {
  ConnectedRig rig;
  rig.ports.OfferVersion2(false);
  rig.ports.SetInputs({L"Keys"});
  EXPECT_EQ(rig.instance->SelectInputPort(L"Keys"), S_OK);
  std::int32_t index = -1;
  EXPECT_EQ(rig.instance->GetInputPortIndex(&index), S_OK);
  EXPECT_EQ(index, 0);
  EXPECT_TRUE(rig.ports.UsedInputIds().empty());
}

TEST(PortSelection, DisablingForgetsThePortAndReselectingDoesNotEnable) {
  ConnectedRig rig;
  rig.EnableOutput();
  rig.instance->SetOutputEnabled(0);
  EXPECT_EQ(OutputIndex(rig), -1);
  EXPECT_EQ(rig.instance->SelectOutputPort(L"Out A"), S_OK);
  EXPECT_EQ(OutputIndex(rig), 0);
  rig.Start();
  std::uint8_t active = 1;
  rig.instance->IsOutputActive(&active);
  EXPECT_EQ(active, 0) << "output stays off until it is enabled again";
  rig.Stop();
}

TEST(MidiManager, LooksUpByIdWithAFallbackAndByNameThroughAliases) {
  EXPECT_FALSE(CMIDIManager::AnyDestroyed());
  {
    CMIDIManager manager;
    EXPECT_EQ(manager.FindById(1), nullptr);
    manager.AddPort(7, L"Synth");
    manager.AddPort(9, L"Drums");
    manager.AddAlias(L"Old Synth", L"Synth");
    EXPECT_EQ(manager.FindById(9)->name, L"Drums");
    EXPECT_EQ(manager.FindById(42)->name, L"Synth") << "no match gives the first entry";
    EXPECT_EQ(manager.FindByName(L"Old Synth")->id, 7u);
    EXPECT_EQ(manager.FindByName(L"drums"), nullptr);
  }
  EXPECT_TRUE(CMIDIManager::AnyDestroyed());
}

}  // namespace

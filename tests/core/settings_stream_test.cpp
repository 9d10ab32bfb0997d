// The saved state: what an instance writes, what a load restores and sends, and what a broken
// stream or text does to it (nothing, unless the text has a "Config").
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>

#include "documents/settings_stream.h"
#include "platform/streams.h"
#include "tests/support/fake_stream.h"
#include "tests/support/test_instance.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes Save(CFilter& filter) {
  ComPtr<CMemoryStream> stream = ComPtr<CMemoryStream>::Attach(CMemoryStream::Create());
  EXPECT_EQ(filter.Save(stream.Get(), 1), S_OK);
  return stream->Bytes();
}

HRESULT Load(CFilter& filter, const Bytes& bytes) {
  ComPtr<CMemoryStream> stream =
      ComPtr<CMemoryStream>::Attach(CMemoryStream::Create(bytes.data(), bytes.size()));
  return filter.Load(stream.Get());
}

// A frame around `text`, with its own length unless another is given.
Bytes Frame(std::string_view text, std::optional<std::uint32_t> length = std::nullopt) {
  Bytes bytes;
  for (char c : std::string_view("00000000000 ")) bytes.insert(bytes.end(), {std::uint8_t(c), 0});
  const std::uint32_t l = length.value_or(static_cast<std::uint32_t>(text.size()));
  for (int shift = 0; shift < 32; shift += 8) bytes.push_back(std::uint8_t(l >> shift));
  bytes.insert(bytes.end(), text.begin(), text.end());
  return bytes;
}

std::string Text(CFilter& filter, bool includePorts = true, bool asDocument = true,
                 bool includeNames = true) {
  std::string out;
  WriteConfig(filter, out, includePorts, asDocument, includeNames);
  return out;
}

std::uint32_t EventCount(CFilter& filter) {
  std::uint32_t count = 0;
  filter.GetEventCount(&count);
  return count;
}

std::int32_t PortIndex(CFilter& filter, PortDirection direction) {
  std::int32_t index = -1;
  return (direction == PortDirection::Input ? filter.GetInputPortIndex(&index)
                                            : filter.GetOutputPortIndex(&index)) == S_OK
             ? index
             : -1;
}

std::wstring SharedIns(const char* name) {
  return std::filesystem::path(TARN_SHARED_DATA).append("ins").append(name).wstring();
}

// The host of both instances of a round trip: an input without an id, outputs with ids.
void SetUpPorts(ConnectedRig& rig) {
  rig.ports.SetInputs({L"Keys In", L"Pads In"});
  rig.ports.SetPortIds(true, {std::nullopt, 7});
  rig.ports.SetOutputs({L"Out A", L"Synth Out"});
  rig.ports.SetPortIds(false, {41, 42});
}

// Everything a state holds: ports, an imported device, prefix, rechannel, sync, and one event
// of each kind, a disabled one and a 1 MB sysex among them.
void Configure(ConnectedRig& rig) {
  CFilter& f = rig.instance.filter();
  EXPECT_EQ(f.SelectInputPort(L"Keys In"), S_OK);
  EXPECT_EQ(f.SelectOutputPort(L"Synth Out"), S_OK);
  f.SetOutputEnabled(1);
  CInstrument* store = nullptr;
  f.GetInstrumentObject(&store);
  EXPECT_TRUE(store->ParseDefinitionFile(SharedIns("MSGS.ins")));
  store->SelectDevice(store->GetDeviceNames().front());
  const std::uint8_t prefix[] = {0xF0, 0x41, 0x10, 0x42};
  f.SetSysexPrefix(prefix, 4);
  f.SetOutputRechannel(5);
  f.SetMIDISync(1);
  Bytes sysex(1 << 20);
  for (std::size_t i = 0; i < sysex.size(); ++i) sysex[i] = std::uint8_t(i * 7 & 0x7F);
  sysex.front() = 0xF0;
  sysex.back() = 0xF7;
  CStoredEvent big = CStoredEvent::MakeNew(NewEventKind::SystemExclusive);
  big.SetSysex(sysex);
  CStoredEvent off = CStoredEvent::MakeNew(NewEventKind::ControllerChange);
  off.SetEnabled(false);
  off.SetDescription(L"<off & \"quoted\">");
  for (const CStoredEvent& e : {CStoredEvent::MakeNew(NewEventKind::BankProgramChange), off,
                                CStoredEvent::MakeNew(NewEventKind::Wait), big,
                                CStoredEvent::MakeNew(NewEventKind::MidiData)})
    f.InsertEvent(EventCount(f), &e);
}

// Where two byte runs first differ, for a readable failure.
std::string FirstDifference(const Bytes& a, const Bytes& b) {
  const auto m = std::mismatch(a.begin(), a.end(), b.begin(), b.end());
  const auto at = static_cast<std::size_t>(m.first - a.begin());
  return "sizes " + std::to_string(a.size()) + " and " + std::to_string(b.size()) +
         ", first difference at " + std::to_string(at) + ": " +
         std::string(a.begin() + static_cast<std::ptrdiff_t>(at),
                     a.begin() + static_cast<std::ptrdiff_t>(std::min(a.size(), at + 60)));
}

TEST(SavedState, AFreshInstanceRestoresEverythingAndSavesTheSameBytes) {
  MessageBoxRecorder boxes;
  ConnectedRig original;
  SetUpPorts(original);
  Configure(original);
  const Bytes first = Save(original.instance.filter());

  ConnectedRig restored;
  SetUpPorts(restored);
  CFilter& f = restored.instance.filter();
  ASSERT_EQ(Load(f, first), S_OK);
  EXPECT_EQ(restored.editor.Reloads(), 1);
  EXPECT_TRUE(boxes.Boxes().empty());

  // What was restored shows in the next save; the only change is the prefix's growth to 6
  // bytes (the decoder's 2 padding zeros), which keeps the length of its base64 text.
  Bytes expected = first;
  const std::string grown = "8EEQQg==";
  const auto at = std::search(expected.begin(), expected.end(), grown.begin(), grown.end());
  ASSERT_NE(at, expected.end());
  std::copy_n("8EEQQgAA", 8, at);
  const Bytes second = Save(f);
  EXPECT_TRUE(second == expected) << FirstDifference(second, expected);

  ConnectedRig again;
  SetUpPorts(again);
  ASSERT_EQ(Load(again.instance.filter(), second), S_OK);
  EXPECT_TRUE(Save(again.instance.filter()) == second) << "a grown prefix grows no further";
}

TEST(SavedState, AFreshInstanceWritesOnlyTheDeviceAndItsTwoSettings) {
  TestInstance instance;
  EXPECT_EQ(Text(instance.filter()),
            "<?xml version=\"1.0\" ?><Config Schema=\"1\"><Instrument><Type>Generic Device</Type>"
            "</Instrument><MIDIOutputRechannel Channel=\"0\" /><MIDISync Enabled=\"0\" /></Config>");
  ULARGE_INTEGER size{};
  EXPECT_EQ(instance->GetSizeMax(&size), S_OK);
  EXPECT_EQ(size.QuadPart + 4, Save(instance.filter()).size()) << "4 bytes short, as always";
  EXPECT_EQ(instance->GetSizeMax(nullptr), E_POINTER);
}

// What a failed load must leave: the same text, no events sent, no page told.
struct Snapshot {
  explicit Snapshot(ConnectedRig& of) : rig(of), text(Text(of.instance.filter())) {}
  void ExpectUnchanged(const char* what) {
    EXPECT_EQ(Text(rig.instance.filter()), text) << what;
    EXPECT_EQ(rig.editor.Reloads(), 0) << what;
  }
  ConnectedRig& rig;
  std::string text;
};

void Populate(ConnectedRig& rig) {
  rig.EnableOutput();
  rig.instance->SetOutputRechannel(3);
  const std::uint8_t prefix[] = {0xF0, 0x43, 0x10};
  rig.instance->SetSysexPrefix(prefix, 3);
  CStoredEvent e = CStoredEvent::MakeNew(NewEventKind::ControllerChange);
  rig.instance->InsertEvent(0, &e);
}

TEST(SavedState, ABrokenFrameOrTextWithoutConfigChangesNothing) {
  ConnectedRig rig;
  Populate(rig);
  Snapshot before(rig);
  CFilter& f = rig.instance.filter();
  const std::string good = "<Config><MIDISync Enabled=\"1\" /></Config>";
  const Bytes frame = Frame(good);

  Bytes badVersion = frame;
  badVersion[20] = 'x';
  EXPECT_EQ(Load(f, badVersion), VFW_E_INVALID_FILE_FORMAT);
  for (std::size_t cut : {0u, 7u, 23u, 24u, 26u}) {
    const Bytes cutFrame(frame.begin(), frame.begin() + static_cast<std::ptrdiff_t>(cut));
    EXPECT_TRUE(FAILED(Load(f, cutFrame))) << "cut at " << cut;
  }
  EXPECT_EQ(Load(f, Frame("")), E_FAIL) << "length 0";
  EXPECT_EQ(Load(f, Frame("this is not XML at all")), E_FAIL);
  EXPECT_EQ(Load(f, Frame("<Settings><MIDISync Enabled=\"1\" /></Settings>")), E_FAIL);
  EXPECT_EQ(Load(f, Frame(std::string("\0", 1) + good)), E_FAIL) << "a zero byte first";
  EXPECT_EQ(f.SetConfigXml(L"Config"), E_FAIL);
  before.ExpectUnchanged("after the failed loads");
}

TEST(SavedState, TheTextIsCutAtAZeroByteOrAtTheEndOfTheStream) {
  ConnectedRig rig;
  CFilter& f = rig.instance.filter();
  const std::string text =
      "<Config><MIDIOutputRechannel Channel=\"7\" /><MIDISync Enabled=\"1\" /></Config>";
  std::string withZero = text;
  withZero.insert(withZero.find("<MIDISync"), 1, '\0');
  ASSERT_EQ(Load(f, Frame(withZero)), S_OK);
  std::int32_t sync = -1;
  f.GetMIDISync(&sync);
  EXPECT_EQ(sync, 0) << "nothing after the zero byte is read";

  // A length of 4 GiB on a stream of a hundred bytes: what is there loads, in small reads.
  FakeStream stream(Frame(text, 0xFFFFFFFFu));
  ASSERT_EQ(f.Load(&stream), S_OK);
  f.GetMIDISync(&sync);
  EXPECT_EQ(sync, 1);
  EXPECT_LE(stream.LargestRead(), 1u << 20);

  // Cut inside the text: the parser sees what arrived, and "Config" with it.
  const std::string cut = text.substr(0, text.find("<MIDISync") + 5);
  FakeStream shortStream(Frame(cut, static_cast<std::uint32_t>(text.size())));
  EXPECT_EQ(f.Load(&shortStream), S_OK);
}

TEST(SavedState, MalformedElementsLoadAsDefaultsAndTheLoadGoesOn) {
  MessageBoxRecorder boxes;
  ConnectedRig rig;
  Populate(rig);
  rig.instance->SetMIDISync(1);
  CFilter& f = rig.instance.filter();
  ASSERT_EQ(f.SetConfigXml(
                L"<Config><Instrument><Type/></Instrument><MIDIInputPort ID=\"x\"/>"
                L"<MIDIOutputPort ID=\"y\"/><SysexPrefix><p/></SysexPrefix>"
                L"<MIDIOutputRechannel Channel=\"abc\"/><MIDISync/><MIDIMsg Wait=\"q\"/>"
                L"<MIDIMsg><Msg Status=\"1\"/></MIDIMsg></Config>"),
            S_OK);
  std::uint32_t rechannel = 9, prefix = 9;
  std::int32_t sync = 9;
  f.GetOutputRechannel(&rechannel);
  f.GetMIDISync(&sync);
  f.GetSysexPrefixLength(&prefix);
  EXPECT_EQ(rechannel, 0u);
  EXPECT_EQ(sync, 0) << "no \"Enabled\" reads as off";
  EXPECT_EQ(prefix, 0u);
  EXPECT_EQ(EventCount(f), 2u) << "events matching no form still take their place";
  EXPECT_EQ(PortIndex(f, PortDirection::Output), -1) << "an output that cannot be chosen is off";
  EXPECT_TRUE(boxes.Boxes().empty()) << "no name, no box";
  wchar_t name[260], port[260];
  f.GetDeviceSummary(name, 260, port, 260, &rechannel);
  EXPECT_EQ(std::wstring(name), L"Generic Device");

}

TEST(SavedState, MissingPortsWarnAndAnUnknownIdLeavesThePortAlone) {
  MessageBoxRecorder boxes;
  ConnectedRig rig;
  rig.EnableOutput();
  CFilter& f = rig.instance.filter();
  // An id that matches nothing wins over a valid name while the host offers ids.
  ASSERT_EQ(f.SetConfigXml(L"<Config><MIDIOutputPort Name=\"Out A\" ID=\"999\"/>"
                           L"<MIDIInputPort Name=\"Nowhere\" ID=\"998\"/></Config>"),
            S_OK);
  EXPECT_EQ(PortIndex(f, PortDirection::Output), 0);
  EXPECT_TRUE(boxes.Boxes().empty());

  // By name, a missing output warns twice and turns output off; a missing input warns once.
  rig.ports.OfferVersion2(false);
  ASSERT_EQ(f.SetConfigXml(L"<Config><MIDIInputPort Name=\"Keys\" ID=\"100\"/>"
                           L"<MIDIOutputPort Name=\"Gone\" ID=\"200\"/></Config>"),
            S_OK);
  const auto shown = boxes.Boxes();
  ASSERT_EQ(shown.size(), 3u);
  EXPECT_EQ(shown[0].text, L"Warning:  Tarn configured to use unavailable MIDI input port \"Keys\".  "
                           L"Disabling input.");
  EXPECT_EQ(shown[1].text, L"Warning:  Tarn configured to use unavailable MIDI output port "
                           L"\"Gone\".  Disabling output.");
  EXPECT_EQ(shown[2].text, shown[1].text);
  EXPECT_EQ(PortIndex(f, PortDirection::Output), -1);
  wchar_t name[260], port[260] = L"x";
  std::uint32_t rechannel = 0;
  f.GetDeviceSummary(name, 260, port, 260, &rechannel);
  EXPECT_EQ(std::wstring(port), L"") << "the output's name is forgotten";

  // A renamed port comes back by its id.
  rig.ports.OfferVersion2(true);
  rig.ports.SetOutputs({L"Out A", L"Renamed"});
  ASSERT_EQ(f.SetConfigXml(L"<Config><MIDIOutputPort Name=\"Old\" ID=\"201\"/></Config>"), S_OK);
  EXPECT_EQ(PortIndex(f, PortDirection::Output), 1);
}

TEST(SavedState, TheTextRouteLeavesOutNamesAndWithoutPortsEmptiesOnlyThePrefix) {
  ConnectedRig rig;
  Populate(rig);
  rig.ports.SetPortIds(false, {std::nullopt});
  CFilter& f = rig.instance.filter();
  const std::string full = Text(f, true, false, false);
  EXPECT_EQ(full.find("<?xml"), std::string::npos);
  EXPECT_EQ(full.find("MIDIOutputPort"), std::string::npos) << "no id and no name: no element";
  EXPECT_NE(full.find("<SysexPrefix>"), std::string::npos);

  std::uint32_t size = 0;
  ASSERT_EQ(f.GetConfigXmlSize(&size, 0), S_OK);
  const std::string bare = Text(f, false, false, false);
  EXPECT_EQ(size, bare.size() + 2);
  std::wstring buffer(size, L'#');
  EXPECT_EQ(f.GetConfigXml(buffer.data(), size - 2, 0), E_FAIL);
  EXPECT_EQ(buffer[0], L'#') << "a failed copy leaves the buffer alone";
  ASSERT_EQ(f.GetConfigXml(buffer.data(), size - 1, 0), S_OK);
  EXPECT_EQ(buffer.c_str(), std::wstring(bare.begin(), bare.end()));
  EXPECT_EQ(f.GetConfigXmlSize(nullptr, 0), E_POINTER);
  EXPECT_EQ(f.GetConfigXml(nullptr, 10, 0), E_POINTER);
  EXPECT_EQ(f.SetConfigXml(nullptr), E_POINTER);

  ASSERT_EQ(f.SetConfigXml(buffer.c_str()), S_OK);
  std::uint32_t prefix = 9, rechannel = 0;
  f.GetSysexPrefixLength(&prefix);
  f.GetOutputRechannel(&rechannel);
  EXPECT_EQ(prefix, 0u);
  EXPECT_EQ(rechannel, 3u);
  EXPECT_EQ(PortIndex(f, PortDirection::Output), 0) << "ports stay";
  EXPECT_EQ(EventCount(f), 1u);

  ASSERT_EQ(f.SetConfigXml(L"<Config/>"), S_OK);
  EXPECT_EQ(EventCount(f), 0u) << "only \"Config\": the list empties, the rest stays";
  f.GetOutputRechannel(&rechannel);
  EXPECT_EQ(rechannel, 3u);
  EXPECT_EQ(rig.editor.Reloads(), 2);
}

TEST(SavedState, OnlySaveChangesTheDirtyFlagAndAFailedWriteIsTheAnswer) {
  ConnectedRig rig;
  CFilter& f = rig.instance.filter();
  EXPECT_EQ(f.IsDirty(), S_FALSE);
  Populate(rig);
  EXPECT_EQ(f.IsDirty(), S_FALSE) << "edits do not mark the state";
  FakeStream stream;
  EXPECT_EQ(f.Save(&stream, 0), S_OK);
  EXPECT_EQ(f.IsDirty(), S_OK);
  for (std::uint64_t limit : {0u, 24u, 28u}) {
    FakeStream failing;
    failing.FailWritesAfter(limit, STG_E_MEDIUMFULL);
    EXPECT_EQ(f.Save(&failing, 1), STG_E_MEDIUMFULL) << "writes failing after " << limit;
    EXPECT_EQ(f.IsDirty(), S_OK) << "a failed save keeps the flag";
  }
  EXPECT_EQ(f.Save(&stream, 1), S_OK);
  EXPECT_EQ(f.IsDirty(), S_FALSE);
  CLSID id{};
  EXPECT_EQ(f.GetClassID(&id), S_OK);
  EXPECT_EQ(id, CLSID_TarnFilter);
}

}  // namespace

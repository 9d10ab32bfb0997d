// Any bytes as a saved state handed to a connected instance: the frame, the document and every
// element are read as far as they go, the load either fails with nothing changed or applies
// what it found, and the instance must then save again.
#include <cstddef>
#include <cstdint>
#include <string>

#include "platform/message_box.h"
#include "platform/streams.h"
#include "tests/support/test_instance.h"

namespace {

// Warnings about missing ports are answered at once and kept nowhere.
class SilentBoxes final : public CMessageBoxPresenter {
 public:
  int Present(const std::wstring&, const std::wstring&, unsigned) override { return ID_OK_ANSWER; }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static SilentBoxes boxes;
  static const bool installed = (SetMessageBoxPresenter(&boxes), true);
  (void)installed;

  ConnectedRig rig;
  rig.ports.SetInputs({L"Keys In", L"Pads In"});
  rig.ports.SetOutputs({L"Out A", L"Synth Out"});
  auto in = ComPtr<CMemoryStream>::Attach(CMemoryStream::Create(data, size));
  const std::string before = [&] {
    auto out = ComPtr<CMemoryStream>::Attach(CMemoryStream::Create());
    rig.instance->Save(out.Get(), 1);
    return std::string(out->Bytes().begin(), out->Bytes().end());
  }();

  const HRESULT loaded = rig.instance->Load(in.Get());
  auto out = ComPtr<CMemoryStream>::Attach(CMemoryStream::Create());
  if (FAILED(rig.instance->Save(out.Get(), 1))) __builtin_trap();
  // A failed load changes nothing.
  if (FAILED(loaded) && std::string(out->Bytes().begin(), out->Bytes().end()) != before)
    __builtin_trap();
  return 0;
}

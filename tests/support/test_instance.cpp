#include "tests/support/test_instance.h"

namespace {

class WindowOf final : public IEditorWindow {
 public:
  explicit WindowOf(NotifyHandle handle) : m_handle(handle) {}
  NotifyHandle WindowHandle() const override { return m_handle; }

 private:
  NotifyHandle m_handle;
};

}  // namespace

TestInstance::TestInstance() {
  CUnknown* unknown = CFilter::CreateInstance(nullptr, &m_constructed);
  unknown->NonDelegatingAddRef();
  m_filter = static_cast<CFilter*>(unknown);
}

TestInstance::~TestInstance() { Destroy(); }

void TestInstance::Destroy() {
  if (m_filter) static_cast<CUnknown*>(std::exchange(m_filter, nullptr))->NonDelegatingRelease();
}

ConnectedRig::ConnectedRig(bool withPorts) {
  context.tempoMap = &tempoMap;
  if (withPorts) context.midiPorts = &ports;
  context.AddRef();  // Connect releases one reference that it was only lent
  instance->Connect(&context);
  // The page's window object is only asked for its handle, at once.
  WindowOf editor(window.Handle());
  instance->SetEditorWindow(&editor);
}

void ConnectedRig::EnableOutput() {
  instance->SelectOutputPort(L"Out A");
  instance->SetOutputEnabled(1);
}

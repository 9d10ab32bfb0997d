#include "editor/view_factory.h"

#include <atomic>

namespace {

std::atomic<CEditorViewFactory*> g_factory{nullptr};

}  // namespace

CEditorViewFactory* EditorViews() { return g_factory.load(); }

CEditorViewFactory* SetEditorViewFactory(CEditorViewFactory* factory) {
  return g_factory.exchange(factory);
}

#include "host/window/edit_command.h"

#include <QtWidgets/QApplication>
#include <cstdio>

#include "host/window/edit_session.h"
#include "host/window/edit_window.h"

namespace {

void Report(const std::string& text) { std::fprintf(stderr, "tarn-host: %s\n", text.c_str()); }

bool HasDisplay() {
  return !qEnvironmentVariableIsEmpty("DISPLAY") ||
         !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") ||
         !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM");
}

}  // namespace

int EditCommand(const EditOptions& options) {
  if (!HasDisplay()) {
    Report("edit needs a display: set DISPLAY, or QT_QPA_PLATFORM=offscreen to run without one");
    return 1;
  }
  int argc = 1;
  char name[] = "tarn-host";
  char* argv[] = {name, nullptr};
  QApplication application(argc, argv);
  UseRackLook(application);
  int faults = 0;
  std::string error;
  auto session = CEditSession::Open(
      options.rack,
      [&faults](const std::string& text) {
        ++faults;
        Report(text);
      },
      error, options.backEnds);
  if (!session) {
    Report(error);
    return 1;
  }
  CEditWindow window(*session);
  window.show();
  if (!session->Instances().empty()) window.ShowInstance(0);
  application.exec();
  return faults == 0 ? 0 : 1;
}

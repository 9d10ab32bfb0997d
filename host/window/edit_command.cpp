#include "host/window/edit_command.h"

#include <QtGui/QPalette>
#include <QtWidgets/QApplication>
#include <QtWidgets/QStyleFactory>
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

// The host's own look: the dark of the page's panel, so that the page sits in it as in a rack.
void UseRackLook(QApplication& application) {
  application.setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
  QPalette palette;
  const QColor panel(0x2B, 0x31, 0x38), light(0xDF, 0xFE, 0xFF), base(0x12, 0x1B, 0x22);
  palette.setColor(QPalette::Window, panel);
  palette.setColor(QPalette::WindowText, light);
  palette.setColor(QPalette::Base, base);
  palette.setColor(QPalette::AlternateBase, panel);
  palette.setColor(QPalette::Text, light);
  palette.setColor(QPalette::Button, QColor(0x3B, 0x42, 0x4A));
  palette.setColor(QPalette::ButtonText, light);
  palette.setColor(QPalette::Highlight, light);
  palette.setColor(QPalette::HighlightedText, Qt::black);
  palette.setColor(QPalette::ToolTipBase, base);
  palette.setColor(QPalette::ToolTipText, light);
  palette.setColor(QPalette::PlaceholderText, QColor(0x8F, 0xA6, 0xAE));
  palette.setColor(QPalette::Disabled, QPalette::Text, QColor(0x6C, 0x7A, 0x80));
  palette.setColor(QPalette::Disabled, QPalette::ButtonText, QColor(0x6C, 0x7A, 0x80));
  palette.setColor(QPalette::Disabled, QPalette::WindowText, QColor(0x6C, 0x7A, 0x80));
  application.setPalette(palette);
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
      error);
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

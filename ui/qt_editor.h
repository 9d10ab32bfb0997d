// The start of the editor's Qt drawing, callable from code that knows no Qt (the module).
#pragma once

// [editor thread] Installs the Qt view factory. The first view it makes also makes sure that a
// QApplication exists (one is made when the host has none), installs the Qt presenters of the
// platform seam (message boxes, file dialogs, popup menus, timers, clipboard), and keeps the
// module loaded for the rest of the process, as Qt holds on to its classes and resources.
// Calling it again does nothing more.
void InstallQtEditor();

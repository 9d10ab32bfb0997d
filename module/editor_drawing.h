// The drawing the module gives its property page: Qt's on Linux. Debian has no Qt for the
// Windows cross build, so Tarn.dll carries the page's logic without a drawing: a host that opens
// the page there is told so in a message box, and the page's activation fails.
#pragma once

// [loader] Installs the editor's view factory; no window is made before a host opens a page.
void InstallEditorDrawing() noexcept;

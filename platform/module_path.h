// Where this code was loaded from: files that travel with the plug-in ("devices.xml") live
// beside it, wherever the host found it.
#pragma once

#include <string>

// [any thread] The absolute path of the module that holds this code: the plug-in's library when
// built as one, else the program. Empty if the system cannot say.
std::wstring ModulePath();
// [any thread] The absolute path of the running program: the host's executable when this code
// is a plug-in inside it. Empty if the system cannot say.
std::wstring ProgramPath();

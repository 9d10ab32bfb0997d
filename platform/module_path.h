// The full path of the module file (shared library, or program) that contains this code.
#pragma once

#include <string>

// Empty when the platform cannot tell.
std::wstring ModulePath();

// The full path of the module file (shared library or program) that contains this code; empty
// when the platform cannot tell.
#pragma once

#include <string>

std::wstring ModulePath();

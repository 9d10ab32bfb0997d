// What the module does when it is loaded and unloaded, apart from the system's entry point.
#pragma once

#include <cstdint>

// [loader] Brings up the module-wide objects (the registered window messages, the instance
// registry and InstanceLock, the send lock), keeps `handle` and the platform's version, and
// calls each table row's initialisation routine with true.
void ModuleAttach(void* handle) noexcept;
// [loader] Calls each row's initialisation routine with false.
void ModuleDetach() noexcept;

// The handle given at load, and the platform version read then.
void* ModuleHandle() noexcept;
std::uint32_t PlatformVersion() noexcept;

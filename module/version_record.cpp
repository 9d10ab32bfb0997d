// The module's version record on systems without version resources: a section of its own that
// ReadModuleFileVersion finds by name in the library file, holding NUL-ended key and value
// pairs. TARN_FILE_VERSION comes from the project's version.
#define TARN_VERSION_RECORD(version) \
  "FileVersion\0" version "\0ProductVersion\0" version "\0ProductName\0Tarn\0"

[[gnu::used, gnu::section(".tarn_version")]] static const char kVersionRecord[] =
    TARN_VERSION_RECORD(TARN_FILE_VERSION);

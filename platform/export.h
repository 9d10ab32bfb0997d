// Marks the class families that the module exports to derived and outside users. Everything
// else in the module is built with hidden visibility, so only what carries this mark is seen.
#pragma once

#if defined(_WIN32)
#if defined(TARN_BUILDING_MODULE)
#define TARN_EXPORT __declspec(dllexport)
#else
#define TARN_EXPORT __declspec(dllimport)
#endif
#else
#define TARN_EXPORT __attribute__((visibility("default")))
#endif

// What the shared library shows to its hosts.
#pragma once

#if defined(_WIN32)
#if defined(VRAD_BUILDING)
#define VRAD_EXPORT __declspec(dllexport)
#else
#define VRAD_EXPORT __declspec(dllimport)
#endif
#else
#define VRAD_EXPORT __attribute__((visibility("default")))
#endif

// Export macro of the library.
//
// YON_API marks what applications may link to. Everything else stays hidden, on Linux too, so that a missing
// mark fails at home and not at a customer's. Users of the static archive define YON_STATIC (the CMake package does).
#pragma once

#if defined(YON_STATIC)
#define YON_API
#elif defined(_WIN32)
#if defined(YON_BUILDING)
#define YON_API __declspec(dllexport)
#else
#define YON_API __declspec(dllimport)
#endif
#else
#define YON_API __attribute__((visibility("default")))
#endif

// YON_LIFETIMEBOUND marks a parameter that must outlive the object made from it; clang warns of temporaries.
#if defined(__clang__)
#define YON_LIFETIMEBOUND [[clang::lifetimebound]]
#else
#define YON_LIFETIMEBOUND
#endif

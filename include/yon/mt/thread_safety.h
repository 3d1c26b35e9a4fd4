// Attributes with which clang's thread-safety analysis (-Wthread-safety) checks the use of locks.
#pragma once

#if defined(__clang__)
#define YON_THREAD_ATTRIBUTE(x) __attribute__((x))
#else
#define YON_THREAD_ATTRIBUTE(x)
#endif

/// A class that is a lock, and one that holds a lock for a scope.
#define YON_CAPABILITY YON_THREAD_ATTRIBUTE(capability("mutex"))
#define YON_SCOPED_CAPABILITY YON_THREAD_ATTRIBUTE(scoped_lockable)
/// A member that is used only, or whose pointee is used only, while a lock is held.
#define YON_GUARDED_BY(x) YON_THREAD_ATTRIBUTE(guarded_by(x))
#define YON_PT_GUARDED_BY(x) YON_THREAD_ATTRIBUTE(pt_guarded_by(x))
/// A function that needs the lock, or must be called without it.
#define YON_REQUIRES(...) YON_THREAD_ATTRIBUTE(requires_capability(__VA_ARGS__))
#define YON_EXCLUDES(...) YON_THREAD_ATTRIBUTE(locks_excluded(__VA_ARGS__))
/// A function that takes or releases the lock.
#define YON_ACQUIRE(...) YON_THREAD_ATTRIBUTE(acquire_capability(__VA_ARGS__))
#define YON_ACQUIRE_SHARED(...) YON_THREAD_ATTRIBUTE(acquire_shared_capability(__VA_ARGS__))
#define YON_TRY_ACQUIRE(...) YON_THREAD_ATTRIBUTE(try_acquire_capability(__VA_ARGS__))
#define YON_TRY_ACQUIRE_SHARED(...) YON_THREAD_ATTRIBUTE(try_acquire_shared_capability(__VA_ARGS__))
#define YON_RELEASE(...) YON_THREAD_ATTRIBUTE(release_capability(__VA_ARGS__))
#define YON_RELEASE_GENERIC(...) YON_THREAD_ATTRIBUTE(release_generic_capability(__VA_ARGS__))
/// A function whose use of locks the analysis cannot follow.
#define YON_NO_THREAD_SAFETY_ANALYSIS YON_THREAD_ATTRIBUTE(no_thread_safety_analysis)

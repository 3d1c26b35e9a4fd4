// What has to happen around a fork, so that the child finds the library's locks free and its data whole.
#pragma once

namespace yon::platform {

/// The layers whose locks are taken before a fork, in this order: what may be waited for while another lock is held
/// comes after it.
enum class ForkLayer { log, timer, mt, data, base };

using ForkHook = void (*)() noexcept;

/// Registers hooks for the life of the process, usually by a static initialiser of the file that owns the locks:
/// `prepare` takes them in the thread that forks, from the top layer down; `parent` and `child` give them back, from
/// the bottom layer up. The child has the forking thread only. Hooks may be null; one layer's are called in the order
/// of registration. One fork at a time calls hooks, and `parent` or `child` follow only what has prepared. `child`
/// must not allocate. No-op where processes do not fork. REQUIRES: at most 16 calls.
void onFork(ForkLayer layer, ForkHook prepare, ForkHook parent, ForkHook child) noexcept;

}  // namespace yon::platform

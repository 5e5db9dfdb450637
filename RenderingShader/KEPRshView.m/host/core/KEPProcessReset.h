// Process-wide caches outside the host (the module's) register here to be forgotten when the
// host resets its process state: to them, a reset host looks exactly like a new process.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

/// A function that forgets one process-wide cache. It runs on the host's user-interface thread,
/// never while the cache is in use.
using KEPProcessResetHook = void (*)();

/// Registers `hook`, once however often it is registered; the host calls every hook on each
/// reset of its process state, in the order of registration.
void KEPRegisterProcessResetHook(KEPProcessResetHook hook);

/// Forgets `hook` (a module about to be unloaded); nothing happens if it is not registered.
void KEPUnregisterProcessResetHook(KEPProcessResetHook hook);

#pragma GCC visibility pop

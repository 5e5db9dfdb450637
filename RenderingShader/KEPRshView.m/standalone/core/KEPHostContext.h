// The one owner of the stand-alone host's process-wide state.
//
// Every store and cache of the host lives in a state object that KEPHostContext creates on first
// use and destroys on Reset: the configuration store, the preference repository, the recorder,
// the message catalogues, the display units, the shader manager, the image cache, the trace sink
// and level, and the environment values set for this process. Caches outside the host (the
// module's) register with KEPRegisterProcessResetHook and are forgotten by the same Reset, so a
// reset host looks to them like a new process. What loaded code registered (classes, extensions,
// reset hooks) and the render lock are not state: they stay.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

class KEPHostContext {
 public:
  /// Starts a host session: makes the host's own registrations (once per process) and resets
  /// the process state. At most one context exists at a time (a second is a fatal assertion).
  KEPHostContext();
  /// Resets the process state, so that nothing of this session reaches the next one.
  ~KEPHostContext();
  KEPHostContext(const KEPHostContext&) = delete;
  KEPHostContext& operator=(const KEPHostContext&) = delete;

  /// Destroys every state object (newest first), then runs the registered reset hooks. Unsaved
  /// preference changes are dropped. Makes the host's own registrations first if no context did.
  static void Reset();

  /// Gives KEPGetEnv `value` for `name` until the next reset, ahead of the real environment
  /// (which is never changed).
  static void SetEnvironment(const std::string& name, const std::string& value);

  /// The state object of type T, default-constructed on first use and destroyed by Reset.
  template <class T>
  static T& State() {
    static std::size_t slot = kNoSlot;
    return *static_cast<T*>(Slot(
        slot, [] { return static_cast<void*>(new T()); },
        [](void* object) { delete static_cast<T*>(object); }));
  }

 private:
  static constexpr std::size_t kNoSlot = static_cast<std::size_t>(-1);
  static void* Slot(std::size_t& slot, void* (*create)(), void (*destroy)(void*));
};

/// The value that KEPHostContext::SetEnvironment gave `name`, if any (KEPGetEnv asks it first).
std::optional<std::string> KEPHostEnvironmentOverride(std::string_view name);

/// Runs every hook registered with KEPRegisterProcessResetHook (Reset calls it).
void KEPRunProcessResetHooks();

#include "KEPHostContext.h"

#include <algorithm>
#include <map>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "KEPFileServices.h"
#include "KEPHostShaderNodeLink.h"
#include "KEPProcessReset.h"
#include "KEPTrace.h"

namespace {

struct StateSlot {
  void* object = nullptr;
  void (*destroy)(void*) = nullptr;
};

struct Slots {
  std::vector<StateSlot> slots;
  std::vector<std::size_t> creationOrder;

  /// Destroys every state object, newest first. A state object may use older ones while it is
  /// destroyed (and may even create one again, which the loop then destroys too).
  void DestroyAll() {
    while (!creationOrder.empty()) {
      const std::size_t slot = creationOrder.back();
      creationOrder.pop_back();
      StateSlot& state = slots[slot];
      if (void* object = std::exchange(state.object, nullptr)) state.destroy(object);
    }
  }
};

// Never destroyed: objects released during the process's exit (a static handle of a host
// program, the module's own statics) may still reach the state, in whatever order statics die.
// What the state holds stays reachable until the end, so it is not a leak.
Slots& TheSlots() {
  static Slots& slots = *new Slots;
  return slots;
}

std::vector<KEPProcessResetHook>& Hooks() {
  static auto& hooks = *new std::vector<KEPProcessResetHook>;
  return hooks;
}

bool& ContextAlive() {
  static bool alive = false;
  return alive;
}

void RegisterHostExtensions() {
  static const bool registered = [] {
    KEPRegisterShaderNodeLink();
    return true;
  }();
  (void)registered;
}

// The host starts when its library is loaded: its own extensions are there before any program
// code can ask for them, with or without a context.
[[maybe_unused]] const bool gHostExtensionsRegistered = (RegisterHostExtensions(), true);

/// Environment values set for this process (KEPHostContext::SetEnvironment).
struct EnvironmentOverrides {
  std::map<std::string, std::string, std::less<>> values;
};

}  // namespace

void KEPRegisterProcessResetHook(KEPProcessResetHook hook) {
  auto& hooks = Hooks();
  if (hook && std::find(hooks.begin(), hooks.end(), hook) == hooks.end()) hooks.push_back(hook);
}

void KEPUnregisterProcessResetHook(KEPProcessResetHook hook) {
  auto& hooks = Hooks();
  hooks.erase(std::remove(hooks.begin(), hooks.end(), hook), hooks.end());
}

void KEPRunProcessResetHooks() {
  for (KEPProcessResetHook hook : Hooks()) hook();
}

KEPHostContext::KEPHostContext() {
  if (ContextAlive())
    KEPAssertFatalReport("!ContextAlive(): only one host context may exist at a time",
                         "RenderingShader/KEPRshView.m/standalone/core/KEPHostContext", __LINE__);
  ContextAlive() = true;
  Reset();
}

KEPHostContext::~KEPHostContext() {
  Reset();
  ContextAlive() = false;
}

void* KEPHostContext::Slot(std::size_t& slot, void* (*create)(), void (*destroy)(void*)) {
  Slots& all = TheSlots();
  if (slot == kNoSlot) {
    slot = all.slots.size();
    all.slots.push_back({});
  }
  StateSlot& state = all.slots[slot];
  if (!state.object) {
    state.object = create();
    state.destroy = destroy;
    all.creationOrder.push_back(slot);
  }
  return state.object;
}

void KEPHostContext::Reset() {
  RegisterHostExtensions();
  TheSlots().DestroyAll();
  KEPRunProcessResetHooks();
}

void KEPHostContext::SetEnvironment(const std::string& name, const std::string& value) {
  State<EnvironmentOverrides>().values[name] = value;
}

std::optional<std::string> KEPHostEnvironmentOverride(std::string_view name) {
  const auto& values = KEPHostContext::State<EnvironmentOverrides>().values;
  const auto it = values.find(name);
  if (it == values.end()) return std::nullopt;
  return it->second;
}

#include "KEPProcessReset.h"

#include <algorithm>
#include <vector>

namespace {
std::vector<KEPProcessResetHook>& Hooks() {
  static std::vector<KEPProcessResetHook> hooks;
  return hooks;
}
}  // namespace

void KEPRegisterProcessResetHook(KEPProcessResetHook hook) {
  auto& hooks = Hooks();
  if (hook && std::find(hooks.begin(), hooks.end(), hook) == hooks.end()) hooks.push_back(hook);
}

void KEPRunProcessResetHooks() {
  for (KEPProcessResetHook hook : Hooks()) hook();
}

#include "KEPRshConnectionDoneNotification.h"

#include <cstring>

KEP_IMPLEMENT_CLASS(KEPRshConnectionDoneNotification, KEPNotification, "RenderingShader")

namespace {
constexpr const char* kName = "KEPRshConnectionDoneNotification";
}

KEPRshConnectionDoneNotification::KEPRshConnectionDoneNotification() = default;

KEPRshConnectionDoneNotification::~KEPRshConnectionDoneNotification() = default;

const char* KEPRshConnectionDoneNotification::GetNotificationName() const {
  return kName;
}

bool KEPRshConnectionDoneNotification::IsAKindOf(const char* name) const {
  if (name && std::strcmp(name, kName) == 0) return true;
  return KEPNotification::IsAKindOf(name);
}

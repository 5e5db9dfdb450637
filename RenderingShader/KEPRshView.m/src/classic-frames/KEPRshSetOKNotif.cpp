#include "KEPRshSetOKNotif.h"

#include <cstring>

KEP_IMPLEMENT_CLASS(KEPRshSetOKNotif, KEPNotification, "RenderingShader")

namespace {
constexpr const char* kName = "KEPRshSetOKNotif";
}

KEPRshSetOKNotif::KEPRshSetOKNotif() = default;

KEPRshSetOKNotif::~KEPRshSetOKNotif() = default;

const char* KEPRshSetOKNotif::GetNotificationName() const {
  return kName;
}

bool KEPRshSetOKNotif::IsAKindOf(const char* name) const {
  if (name && std::strcmp(name, kName) == 0) return true;
  return KEPNotification::IsAKindOf(name);
}

#include "KEPRshIntrospectionAnnouncer.h"

#include "KEPBaseUnknown.h"
#include "KEPISYPIntrospectable.h"
#include "KEPTrace.h"
#include "KEP_var.h"

void KEPRshIntrospectionAnnouncer::Announce(KEPBaseUnknown* object, const char* property,
                                            const char* sourcePath) {
  const KEP_var<KEPISYPIntrospectable> introspectable = KEPQueryVar<KEPISYPIntrospectable>(object);
  if (!introspectable) return;
  auto* adapter = dynamic_cast<KEPSYPIntrospectableAdapter*>(introspectable->GetImplementation());
  KEP_ASSERT(adapter != nullptr,
             "( introspectable_adapter != NULL ) && \"Bad Introspectable implementation!\"",
             sourcePath);
  if (adapter) adapter->DispatchModifyProperty(property);
}

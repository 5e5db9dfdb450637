// KEPIModelEvents: the interface through which a view frames a structural change of the shader
// model (a connection made or removed, a node created) with a begin and an end notification.
// The document's shader support offers it; every observer of KEPRshModelEvents (the open editors,
// the viewer's material) hears the notifications, in pairs.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include "KEPIUnknown.h"
#include "KEPRshModelEvents.h"

class KEPIModelEvents : public virtual KEPIUnknown {
  KEP_DECLARE_INTERFACE(KEPIModelEvents)
  /// Announces the start of a modification of `notification.shader`.
  virtual HRESULT SendBeginShaderModify(
      const KEPRbaBeginShaderModifyNotification& notification) = 0;
  /// Announces its end; each begin is followed by exactly one end.
  virtual HRESULT SendEndShaderModify(const KEPRbaEndShaderModifyNotification& notification) = 0;
};

#pragma GCC visibility pop

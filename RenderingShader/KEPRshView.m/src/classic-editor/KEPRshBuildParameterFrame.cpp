#include "KEPRshBuildParameterFrame.h"

#include "KEPIRshParameterDialog.h"

HRESULT KEPRshBuildParameterFrame(KEPIRshParameterDialog* behaviour, KEPDialog* parent,
                                  const KEPString& name, KEPDialog*& frame) {
  // The classic behaviours build no frame yet: every row is left out until they do.
  (void)behaviour;
  (void)parent;
  (void)name;
  (void)frame;
  return E_NOTIMPL;
}

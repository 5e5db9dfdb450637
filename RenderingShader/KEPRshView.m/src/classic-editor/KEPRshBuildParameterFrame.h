// The frame of one parameter in the classic editor, as the parameter's classic behaviour builds
// it.
#pragma once

#include "KEPString.h"
#include "KEPTypes.h"

class KEPDialog;
class KEPIRshParameterDialog;

/// Has `behaviour` build its parameter's frame named `name` under `parent` (which owns it);
/// `frame` receives it (borrowed). A failure code, `frame` untouched, when no frame is built.
HRESULT KEPRshBuildParameterFrame(KEPIRshParameterDialog* behaviour, KEPDialog* parent,
                                  const KEPString& name, KEPDialog*& frame);

// Base of the immersive parameter widgets: a grid layout that edits one shader parameter. The
// parameter is held weakly, so a widget that outlives its parameter (the node was deleted while
// an editor still shows it) finds it gone and does nothing, instead of keeping the node alive.
#pragma once

#include "KEPBaseUnknown_WR.h"
#include "KEPIRshParameter.h"
#include "KEPString.h"
#include "KEPVidLayGrid.h"
#include "KEP_var.h"

class KEPRshParameterImmWidget : public KEPVidLayGrid {
  KEP_DECLARE_CLASS
 public:
  /// The widget of `parameter`, named `name`, under `parent` (which owns it when given).
  KEPRshParameterImmWidget(KEPIRshParameter* parameter, KEPVidWidget* parent,
                           const KEPString& name);

  /// The parameter with a reference for the caller, or null once it is gone.
  KEP_var<KEPIRshParameter> GetParameter() const;

 protected:
  ~KEPRshParameterImmWidget() override;

 private:
  KEPBaseUnknown_WR parameter_;
};

// Base of the classic parameter frames: a dialog-toolkit frame that edits one shader parameter.
//
// A frame holds its parameter with a reference of its own for its whole life, so the parameter
// outlives a shader node that goes away first (the frame then edits a detached parameter, which
// nobody else sees). Each type's frame chooses and sets up its controls in its constructor and
// writes what a person changes back into the parameter under the render lock.
#pragma once

#include "KEPDlgFrame.h"
#include "KEPIRshParameter.h"
#include "KEP_var.h"

class KEPRshParameterFrame : public KEPDlgFrame {
  KEP_DECLARE_CLASS
 public:
  KEPRshParameterFrame(KEPDialog* parent, const KEPString& name, int style);

  /// The frame and every control in it.
  void SetSensitivity(int sensitivity) override;
  void SetSensitivity(bool) = delete;

  /// The edited parameter (borrowed), null for an empty frame.
  KEPIRshParameter* GetParameter() const { return parameter_.Get(); }

 protected:
  /// A frame of `parameter` (which may be null: the frame stays empty).
  KEPRshParameterFrame(KEPDialog* parent, KEPIRshParameter* parameter, const KEPString& name,
                       int style);
  ~KEPRshParameterFrame() override;

  /// Traces "(`method`)\n" at the callback level when the module trace is on.
  static void TraceCallback(const char* method);

 private:
  KEP_var<KEPIRshParameter> parameter_;
};

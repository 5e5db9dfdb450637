// Base of the classic parameter frames: a dialog-toolkit frame that edits one shader parameter.
//
// A frame holds its parameter with a reference of its own for its whole life, so the parameter
// outlives a shader node that goes away first (the frame then edits a detached parameter, which
// nobody else sees). Each type's frame chooses and sets up its controls in its constructor and
// writes what a person changes back into the parameter under the render lock.
//
// A frame follows its parameter: when the parameter's value is written by anyone else (another
// editor of the node, immersive or classic, or the model itself), the frame shows the new value in
// its controls (ShowParameterValue). Showing a value never writes it back, and the frame's own
// writes are not shown again (the controls already hold what the person chose).
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

  /// Shows the parameter's current value in the controls without writing it back; called when
  /// someone else wrote the parameter. Nothing by default.
  virtual void ShowParameterValue() {}

  /// True while the frame shows a value written elsewhere: control notifications are then not a
  /// person's edit and write nothing.
  bool IsShowingValue() const { return showing_; }

  /// Marks the frame's own write into the parameter for as long as it lives, so that the model's
  /// announcement of that write does not come back to the frame as someone else's.
  class OwnWrite {
   public:
    explicit OwnWrite(KEPRshParameterFrame& frame) : frame_(frame), previous_(frame.writing_) {
      frame_.writing_ = true;
    }
    ~OwnWrite() { frame_.writing_ = previous_; }
    OwnWrite(const OwnWrite&) = delete;
    OwnWrite& operator=(const OwnWrite&) = delete;

   private:
    KEPRshParameterFrame& frame_;
    bool previous_;
  };

 private:
  void OnParameterChanged(KEPIRshParameter* changed);

  KEP_var<KEPIRshParameter> parameter_;
  int observer_ = 0;      ///< token of the model observer, 0 when none
  bool writing_ = false;  ///< the frame itself is writing the parameter
  bool showing_ = false;  ///< the frame is showing a value written elsewhere
};

// Base of the classic dialog behaviours: the shared readers and context, with the classic range
// (which never falls back to the hard keys) and an untraced widget choice. Per-type behaviours
// add the typed default, the enumeration readers (integer), the default widget kind and the frame
// they build (the frame classes themselves are the classic frames').
#pragma once

#include "KEPRshParameterBehaviour.h"

class KEPIRshParameter;

class KEPRshParameterDialog : public KEPRshParameterBehaviour<KEPIRshParameterDialog> {
  KEP_DECLARE_CLASS
 public:
  KEPRshParameterDialog() = default;
  ~KEPRshParameterDialog() override;

  // --- KEPIRshParameterDialog, beyond the shared readers
  HRESULT GetRange(KEPString& min, KEPString& max, KEPString& step) override;
  HRESULT GetTypedRange(float& min, float& max, float& step) override;
  HRESULT GetTypedRange(int& min, int& max, int& step) override;
  HRESULT GetEnumValue(int index, int& value) override;
  HRESULT GetEnumIndex(int value, int& index) override;
  HRESULT ChooseWidgetKind(KEPString& kind) override;
  /// Checks the arguments and the parameter, then has the type make its frame (style 0xc0000).
  HRESULT BuildFrame(KEPDialog* parent, const KEPString& name, KEPDialog** frame) override;

  /// The style flags every parameter frame is made with.
  static constexpr int kFrameStyle = 0xc0000;

 protected:
  /// The type's frame of `parameter` under `parent`; null for a type that builds none (the base).
  virtual KEPDialog* CreateFrame(KEPIRshParameter* parameter, KEPDialog* parent,
                                 const KEPString& name, int style);
};

// Base of the classic dialog behaviours: the shared readers and context, with the classic range
// (which never falls back to the hard keys) and an untraced widget choice. Per-type behaviours
// add the typed default, the enumeration readers (integer) and the default widget kind; frame
// building belongs to the classic frames.
#pragma once

#include "KEPRshParameterBehaviour.h"

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
};

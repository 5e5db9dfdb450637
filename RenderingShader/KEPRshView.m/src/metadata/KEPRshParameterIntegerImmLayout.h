// Immersive layout behaviour of an integer parameter: data extension of "KEPRmaInteger".
#pragma once

#include "KEPExtensionRegistry.h"
#include "KEPRshParameterImmLayout.h"

class KEPRshParameterIntegerImmLayout : public KEPRshParameterImmLayout {
  KEP_DECLARE_CLASS
 public:
  /// A new, detached instance with one reference (the extension registry's creator).
  static KEPBaseUnknown* CreateItself();

  using KEPRshParameterImmLayout::GetTypedDefault;
  using KEPRshParameterImmLayout::GetTypedRange;
  /// The default text parsed "%d".
  HRESULT GetTypedDefault(int& value) override;
  /// Range texts parsed "%d"; min and max must parse; an unreadable step keeps `step`.
  HRESULT GetTypedRange(int& min, int& max, int& step) override;

 protected:
  KEPRshParameterIntegerImmLayout() = default;
  ~KEPRshParameterIntegerImmLayout() override = default;
  const char* DefaultWidgetKind() const override;
  std::vector<KEPString> WidgetKinds() const override;
};

KEP_DECLARE_TIE(KEPIRshParameterImmLayout, KEPRshParameterIntegerImmLayout)

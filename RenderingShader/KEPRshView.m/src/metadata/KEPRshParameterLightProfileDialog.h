// Classic dialog behaviour of a light-profile parameter: data extension of "KEPRmaLightProfile".
#pragma once

#include "KEPExtensionRegistry.h"
#include "KEPRshParameterDialog.h"

class KEPRshParameterLightProfileDialog : public KEPRshParameterDialog {
  KEP_DECLARE_CLASS
 public:
  /// A new, detached instance with one reference (the extension registry's creator).
  static KEPBaseUnknown* CreateItself();

 protected:
  KEPRshParameterLightProfileDialog() = default;
  /// Traces "Destructor" and "Done" at module trace level 2.
  ~KEPRshParameterLightProfileDialog() override;
  const char* DefaultWidgetKind() const override;
  std::vector<KEPString> WidgetKinds() const override;
  /// A KEPRshParameterLightProfileFrame.
  KEPDialog* CreateFrame(KEPIRshParameter* parameter, KEPDialog* parent, const KEPString& name,
                         int style) override;
};

KEP_DECLARE_TIE(KEPIRshParameterDialog, KEPRshParameterLightProfileDialog)

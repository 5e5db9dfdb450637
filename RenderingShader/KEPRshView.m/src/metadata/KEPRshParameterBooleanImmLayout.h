// Immersive layout behaviour of a boolean (check box) parameter: data extension of "KEPRmaBoolean".
#pragma once

#include "KEPExtensionRegistry.h"
#include "KEPRshParameterImmLayout.h"

class KEPRshParameterBooleanImmLayout : public KEPRshParameterImmLayout {
  KEP_DECLARE_CLASS
 public:
  /// A new, detached instance with one reference (the extension registry's creator).
  static KEPBaseUnknown* CreateItself();

  using KEPRshParameterImmLayout::GetTypedDefault;
  /// "on"/"true" true, "off"/"false" false (any case), else a "%d" number (0 false); an unreadable
  /// text fails; no default at all reads true.
  HRESULT GetTypedDefault(bool& value) override;

  /// Builds the check box widget; traces the kind and the outcome on the layout's trace channel.
  HRESULT BuildWidget(KEPVidWidget* parent, const char* name, KEPVidWidget*& widget) override;

 protected:
  KEPRshParameterBooleanImmLayout() = default;
  ~KEPRshParameterBooleanImmLayout() override = default;
  const char* DefaultWidgetKind() const override;
  std::vector<KEPString> WidgetKinds() const override;
};

KEP_DECLARE_TIE(KEPIRshParameterImmLayout, KEPRshParameterBooleanImmLayout)

// Immersive layout behaviour of a colour parameter: data extension of "KEPRmaColor".
#pragma once

#include "KEPExtensionRegistry.h"
#include "KEPRshParameterImmLayout.h"

class KEPRshParameterColorImmLayout : public KEPRshParameterImmLayout {
  KEP_DECLARE_CLASS
 public:
  /// A new, detached instance with one reference (the extension registry's creator).
  static KEPBaseUnknown* CreateItself();

  using KEPRshParameterImmLayout::GetTypedDefault;
  using KEPRshParameterImmLayout::GetTypedRange;
  /// Two to four numbers of the default text (blanks or commas between, brackets allowed).
  HRESULT GetTypedDefault(float (&value)[4]) override;
  /// ".HardMin"/".Min", ".HardMax"/".Max" and the optional ".Step", parsed "%le", in model units.
  HRESULT GetTypedRange(float& min, float& max, float& step) override;
  HRESULT GetStep(double& step) override;
  HRESULT GetDecimalPrecision(int& precision) override;
  HRESULT GetSoftRange(double& min, double& max) override;
  HRESULT GetSecondaryParameterName(KEPString& name) override;
  HRESULT GetHardRange(double& min, double& max) override;
  /// Builds the control of the configured kind: "scalar-spinner" the grey-level spinner (styled
  /// from "KEPRshUI.sypstyle"), "color" and any other kind the colour widget. Traces the kind and
  /// the outcome on the layout's trace channel. Without a parent the control is built all the
  /// same and the caller owns it.
  HRESULT BuildWidget(KEPVidWidget* parent, const char* name, KEPVidWidget*& widget) override;

 protected:
  KEPRshParameterColorImmLayout() = default;
  ~KEPRshParameterColorImmLayout() override = default;
  const char* DefaultWidgetKind() const override;
  std::vector<KEPString> WidgetKinds() const override;
};

KEP_DECLARE_TIE(KEPIRshParameterImmLayout, KEPRshParameterColorImmLayout)

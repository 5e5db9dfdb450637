// Immersive layout behaviour of a vector parameter: data extension of "KEPRmaVector".
#pragma once

#include "KEPExtensionRegistry.h"
#include "KEPRshParameterImmLayout.h"

class KEPRshParameterVectorImmLayout : public KEPRshParameterImmLayout {
  KEP_DECLARE_CLASS
 public:
  /// A new, detached instance with one reference (the extension registry's creator).
  static KEPBaseUnknown* CreateItself();

  using KEPRshParameterImmLayout::GetTypedDefault;
  /// Two to four numbers of the default text (blanks or commas between, brackets allowed).
  HRESULT GetTypedDefault(float (&value)[4]) override;

  /// Builds the vector widget (spin boxes, sliders or nothing, by its kind); traces the kind and
  /// the outcome on the layout's trace channel.
  HRESULT BuildWidget(KEPVidWidget* parent, const char* name, KEPVidWidget*& widget) override;

 protected:
  KEPRshParameterVectorImmLayout() = default;
  ~KEPRshParameterVectorImmLayout() override = default;
  const char* DefaultWidgetKind() const override;
  std::vector<KEPString> WidgetKinds() const override;
};

KEP_DECLARE_TIE(KEPIRshParameterImmLayout, KEPRshParameterVectorImmLayout)

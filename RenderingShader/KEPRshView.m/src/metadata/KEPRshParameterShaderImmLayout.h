// Immersive layout behaviour of a connection-only (shader-valued) parameter: data extension of
// "KEPRmaVoid".
#pragma once

#include "KEPExtensionRegistry.h"
#include "KEPRshParameterImmLayout.h"

class KEPRshParameterShaderImmLayout : public KEPRshParameterImmLayout {
  KEP_DECLARE_CLASS
 public:
  /// A new, detached instance with one reference (the extension registry's creator).
  static KEPBaseUnknown* CreateItself();

  /// Builds a read-only label naming the connected node (or "No Shader Connected") that follows
  /// the parameter's connection; the editor's connection column connects and disconnects.
  HRESULT BuildWidget(KEPVidWidget* parent, const char* name, KEPVidWidget*& widget) override;

 protected:
  KEPRshParameterShaderImmLayout() = default;
  ~KEPRshParameterShaderImmLayout() override = default;
  const char* DefaultWidgetKind() const override;
  std::vector<KEPString> WidgetKinds() const override;
};

KEP_DECLARE_TIE(KEPIRshParameterImmLayout, KEPRshParameterShaderImmLayout)

// Immersive layout behaviour of a texture parameter: data extension of "KEPRmaTexture".
#pragma once

#include "KEPExtensionRegistry.h"
#include "KEPRshParameterImmLayout.h"

class KEPRshParameterTextureImmLayout : public KEPRshParameterImmLayout {
  KEP_DECLARE_CLASS
 public:
  /// A new, detached instance with one reference (the extension registry's creator).
  static KEPBaseUnknown* CreateItself();

  /// Builds the image-document selector widget; traces the kind and the outcome on the layout's
  /// trace channel.
  HRESULT BuildWidget(KEPVidWidget* parent, const char* name, KEPVidWidget*& widget) override;

 protected:
  KEPRshParameterTextureImmLayout() = default;
  ~KEPRshParameterTextureImmLayout() override = default;
  const char* DefaultWidgetKind() const override;
  std::vector<KEPString> WidgetKinds() const override;
};

KEP_DECLARE_TIE(KEPIRshParameterImmLayout, KEPRshParameterTextureImmLayout)

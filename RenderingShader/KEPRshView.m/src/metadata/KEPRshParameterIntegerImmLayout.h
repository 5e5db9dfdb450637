// Immersive layout behaviour of an integer parameter: data extension of "KEPRmaInteger".
//
// Its builder switches on the software level "KEPRmaUIParameterConfiguration", read once per
// process: at level 1 (the built-in level) an integer is edited by the introspectable control
// KEPRshUICtlParameterIntegral1, which the style sheet gives its parts; at any other level by the
// immersive widget KEPRshParameterIntegerImmWidget.
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

  /// Level 1: a KEPRshUICtlParameterIntegral1 given the parameter (neither named nor fathered:
  /// the caller places it). Other levels: a KEPRshParameterIntegerImmWidget under `parent`
  /// (E_FAIL without a parent; S_OK with a null `widget` when it could not be allocated).
  /// E_NOINTERFACE, with an assertion, when the behaviour extends no parameter.
  HRESULT BuildWidget(KEPVidWidget* parent, const char* name, KEPVidWidget*& widget) override;

  /// The software level in force for the builder, read on first use and kept until
  /// ForgetProcessCache.
  static int BuilderLevel();
  /// Forgets the level read (a host process reset: the next build reads it again).
  static void ForgetProcessCache();

 protected:
  KEPRshParameterIntegerImmLayout() = default;
  ~KEPRshParameterIntegerImmLayout() override = default;
  const char* DefaultWidgetKind() const override;
  std::vector<KEPString> WidgetKinds() const override;
};

KEP_DECLARE_TIE(KEPIRshParameterImmLayout, KEPRshParameterIntegerImmLayout)

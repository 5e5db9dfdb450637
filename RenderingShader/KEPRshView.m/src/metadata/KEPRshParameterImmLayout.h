// Base of the immersive layout behaviours: the shared readers and context, plus what only the
// immersive editor asks for (the range that falls back to the hard keys, enumeration values and
// indices, magnitude, tooltip, the cached unit factor and the traced widget choice). Per-type
// behaviours override the typed readers, the range-control readers and the default widget kind.
#pragma once

#include "KEPRshParameterBehaviour.h"
#include "KEPTrace.h"

class KEPIRshParameter;

class KEPRshParameterImmLayout : public KEPRshParameterBehaviour<KEPIRshParameterImmLayout> {
  KEP_DECLARE_CLASS
 public:
  KEPRshParameterImmLayout();
  ~KEPRshParameterImmLayout() override;

  // --- KEPIRshParameterImmLayout, beyond the shared readers
  HRESULT GetRange(KEPString& min, KEPString& max, KEPString& step) override;
  HRESULT GetTypedRange(float& min, float& max, float& step) override;
  HRESULT GetTypedRange(int& min, int& max, int& step) override;
  HRESULT GetStep(double& step) override;
  HRESULT GetDecimalPrecision(int& precision) override;
  HRESULT GetSoftRange(double& min, double& max) override;
  HRESULT GetSecondaryParameterName(KEPString& name) override;
  HRESULT GetHardRange(double& min, double& max) override;
  HRESULT GetEnumValue(int index, int& value) override;
  HRESULT GetEnumIndex(int value, int& index) override;
  HRESULT GetMagnitude(KEPICkeMagnitude*& magnitude) override;
  HRESULT GetMagnitudeName(KEPString& magnitude) override;
  HRESULT GetTooltip(KEPUnicodeString& text, KEPString& image) override;
  HRESULT ConvertToModelUnit(float& value) override;
  HRESULT ChooseWidgetKind(KEPString& kind) override;
  /// E_NOTIMPL: the per-type behaviours that have an immersive widget build it.
  HRESULT BuildWidget(KEPVidWidget* parent, const char* name, KEPVidWidget*& widget) override;

  /// The trace channel "KEPRshParameterConfiguration".
  const KEPTrace* GetTrace() const { return &trace_; }

 protected:
  // Shared by the scalar and colour behaviours.
  /// Bounds from ".HardMin"/".Min" and ".HardMax"/".Max", step from the optional ".Step", each
  /// parsed "%le" and converted to model units. Without ".Step" `step` is left as it is.
  HRESULT ReadModelUnitRange(float& min, float& max, float& step);
  /// ".Step" parsed "%le" (resource "step" first when `useResources`).
  HRESULT ReadStep(bool useResources, double& step);
  /// Decimals for a step: 1, plus one per decimal digit of ".Step" (see DecimalDigits).
  HRESULT ReadDecimalPrecision(int& precision);
  /// Digits after the point of `number` written in plain decimal, as short as reads back the
  /// same double: 0.25 has 2, 1e-10 has 10, 12 and 1e20 none; infinity and NaN none.
  static int DecimalDigits(double number);
  HRESULT ReadSoftRange(double& min, double& max);
  HRESULT ReadHardRange(double& min, double& max);
  HRESULT ReadSecondaryParameterName(KEPString& name);

  /// Makes the widget of a parameter, named `name` under `parent`; null when it cannot be made.
  using WidgetMaker = KEPVidWidget* (*)(KEPIRshParameter* parameter, KEPVidWidget* parent,
                                        const KEPString& name);
  /// The builder of the types whose one widget reads its kind itself: E_FAIL without a parent,
  /// E_NOINTERFACE without the parameter or the layout interface; traces the chosen kind, makes
  /// the widget, traces the outcome ("Widget successfully built", at the error level with
  /// `sourcePath` and `line` when nothing was made, E_FAIL), then names it, fathers it under
  /// `parent` and hands it out (S_OK).
  HRESULT BuildOwnWidget(KEPVidWidget* parent, const char* name, KEPVidWidget*& widget,
                         WidgetMaker make, const char* sourcePath, int line);

 private:
  KEPTrace trace_;
  double unitFactor_ = 0.0;
};

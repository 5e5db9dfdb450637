#include "KEPRshScalarBlackbodySlider.h"

#include "KEP2DImagePixelRep.h"
#include "KEPBlackbodyColor.h"
#include "KEPDlgSpinner.h"
#include "KEPPixelImage.h"
#include "KEPRbaSlider.h"
#include "KEPTrace.h"

KEP_IMPLEMENT_CLASS(KEPRshScalarBlackbodySlider, KEPDlgFrame, "RenderingShader")

namespace {
// Toolkit values of the parts.
constexpr int kSliderStyle = 0xC0000;
constexpr int kSpinnerFloatStyle = 0x40000;
constexpr int kSpinnerDoubleStyle = 0x60000;
// The gradient image: RGB pixels, the buffer the caller's to free, drawn 2 pixels in (the border).
constexpr int kImageDeallocation = 2;
constexpr double kImageInset = 2.0;
}  // namespace

KEPRshScalarBlackbodySlider::KEPRshScalarBlackbodySlider(KEPDialog* parent, const KEPString& name,
                                                         const int& width, const int& height,
                                                         int style)
    : KEPDlgFrame(parent, name, style), style_(style & kKeptStyle) {
  slider_ = new KEPRbaSlider(this, name + "BlackbodySlider", width, height, style_ | kSliderStyle);
  slider_->SetRange(0.0, 1.0, 0.01);
  AddCallback(slider_, slider_->GetSliderDragNotification(), this,
              &KEPRshScalarBlackbodySlider::SliderDragNotificationCB);
  AddCallback(slider_, slider_->GetSliderModifyNotification(), this,
              &KEPRshScalarBlackbodySlider::SliderModifyNotificationCB);

  if (IsDoubleMode()) {
    spinner_ = new KEPDlgSpinner(this, name + "Spinner", kSpinnerDoubleStyle);
    spinner_->SetMinMaxStep(0.0, 1.0, 0.01);
  } else {
    spinner_ = new KEPDlgSpinner(this, name + "Spinner", kSpinnerFloatStyle);
    spinner_->SetRange(0.0f, 1.0f, 100);
  }
  AddCallback(spinner_, spinner_->GetSpinnerModifyNotification(), this,
              &KEPRshScalarBlackbodySlider::SpinnerModifyNotificationCB);

  SetHorizontalAttachment(1, KEPDlgTabAcross, {slider_, spinner_});
  SetVerticalAttachment(1, KEPDlgTabStart, {slider_});
  SetVerticalAttachment(2, KEPDlgTabStart, {spinner_});
  SetVerticalAttachment(3, KEPDlgTabEnd, {spinner_});

  dragNotification_ = new KEPDlgSliderDragNotification();
  modifyNotification_ = new KEPDlgSliderModifyNotification();
}

KEPRshScalarBlackbodySlider::~KEPRshScalarBlackbodySlider() {
  KEPModuleTrace::Trace(
      2, "(KEPRshScalarBlackbodySlider::~KEPRshScalarBlackbodySlider) Destructor of '%s'\n",
      GetName().c_str());
  dragNotification_->Release();
  modifyNotification_->Release();
  KEPModuleTrace::Trace(2, "(KEPRshScalarBlackbodySlider::~KEPRshScalarBlackbodySlider) Done\n");
}

// --- The spinner's value interface

float KEPRshScalarBlackbodySlider::GetCurrentValue() const {
  return spinner_->GetCurrentValue();
}
const char* KEPRshScalarBlackbodySlider::GetFormat() const {
  return spinner_->GetFormat();
}
const KEPString& KEPRshScalarBlackbodySlider::GetMagnitude() const {
  return spinner_->GetMagnitude();
}
void KEPRshScalarBlackbodySlider::GetMinMaxStep(double& minimum, double& maximum,
                                                double& step) const {
  spinner_->GetMinMaxStep(minimum, maximum, step);
}
int KEPRshScalarBlackbodySlider::GetPrecision() const {
  return spinner_->GetPrecision();
}
void KEPRshScalarBlackbodySlider::GetRange(float& minimum, float& maximum, int& steps) const {
  spinner_->GetRange(minimum, maximum, steps);
}
int KEPRshScalarBlackbodySlider::GetUnit() const {
  return spinner_->GetUnit();
}
double KEPRshScalarBlackbodySlider::GetValue() const {
  return spinner_->GetValue();
}
int KEPRshScalarBlackbodySlider::GetVisibleTextWidth() const {
  return spinner_->GetVisibleTextWidth();
}
int KEPRshScalarBlackbodySlider::IsSetSensitivity() const {
  return spinner_->IsSetSensitivity();
}
void KEPRshScalarBlackbodySlider::SetFormat(const char* format) {
  spinner_->SetFormat(format);
}
void KEPRshScalarBlackbodySlider::SetMagnitude(const KEPString& magnitude) {
  spinner_->SetMagnitude(magnitude);
}
void KEPRshScalarBlackbodySlider::SetPrecision(int decimals, unsigned char trimZeros) {
  spinner_->SetPrecision(decimals, trimZeros);
}
void KEPRshScalarBlackbodySlider::SetUnit(int unitCode) {
  spinner_->SetUnit(unitCode);
}
void KEPRshScalarBlackbodySlider::SetVisibleTextWidth(int characters) {
  spinner_->SetVisibleTextWidth(characters);
}

// --- Setters of both parts

void KEPRshScalarBlackbodySlider::SetRange(float minimum, float maximum, int steps) {
  const int count = steps < 1 ? 1 : steps;
  const double low = minimum;
  const double high = maximum;
  slider_->SetRange(low, high, (high - low) / count);
  spinner_->SetRange(minimum, maximum, steps, 1);
}

void KEPRshScalarBlackbodySlider::SetMinMaxStep(double minimum, double maximum, double step) {
  slider_->SetRange(minimum, maximum, step);
  spinner_->SetMinMaxStep(minimum, maximum, step, 1);
}

void KEPRshScalarBlackbodySlider::SetValue(double value, int notify) {
  spinner_->SetValue(value, notify);
  slider_->SetValue(spinner_->GetValue());
  valueSet_ = true;
}

void KEPRshScalarBlackbodySlider::SetCurrentValue(float value, int notify) {
  spinner_->SetCurrentValue(value, notify);
  slider_->SetValue(spinner_->GetCurrentValue());
}

void KEPRshScalarBlackbodySlider::SetSensitivity(int sensitivity) {
  slider_->SetSensitivity(sensitivity);
  spinner_->SetSensitivity(sensitivity);
}

// --- Background

void KEPRshScalarBlackbodySlider::SetSliderBackgroundColor(float red, float green, float blue) {
  slider_->SetBackgroundColor(red, green, blue);
}

void KEPRshScalarBlackbodySlider::SetSliderBackgroundRep(KEP2DRep* rep, int owned) {
  slider_->SetBackgroundRep(rep, owned);
}

void KEPRshScalarBlackbodySlider::SetSliderBackgroundGradient() {
  KEPModuleTrace::Trace(5,
                        "(KEPRshScalarBlackbodySlider::SetBackgroundGradient) Updating "
                        "gradient.\n");
  double minimum = 0.0, maximum = 0.0, step = 0.0;
  slider_->GetRange(minimum, maximum, step);
  int width = 0, height = 0;
  slider_->GetBackgroundAreaSize(width, height);
  pixels_.clear();
  if (width <= 0 || height <= 0) return;
  const auto columns = static_cast<std::size_t>(width);
  const auto rows = static_cast<std::size_t>(height);
  pixels_.assign(columns * rows * 3, 0);
  for (std::size_t i = 0; i < columns; ++i) {
    // Column i shows the start of its share of the range: the last one stops a step short.
    const double kelvin =
        minimum + (static_cast<double>(i) / static_cast<double>(columns)) * (maximum - minimum);
    float r = 0.0f, g = 0.0f, b = 0.0f;
    BlackbodyColor(static_cast<float>(kelvin), &r, &g, &b);
    const std::uint8_t rgb[3] = {static_cast<std::uint8_t>(r * 255.0f),
                                 static_cast<std::uint8_t>(g * 255.0f),
                                 static_cast<std::uint8_t>(b * 255.0f)};
    for (std::size_t j = 0; j < rows; ++j) {
      std::uint8_t* pixel = &pixels_[(j * columns + i) * 3];
      pixel[0] = rgb[0];
      pixel[1] = rgb[1];
      pixel[2] = rgb[2];
    }
  }
  KEPPixelImage* image =
      KEPPixelImage::Create(width, height, KEPPixelFormat_RGB, pixels_.data(), kImageDeallocation);
  if (!image) return;
  image->SetPixelWidth(1.0f);
  image->SetPixelHeight(1.0f);
  auto* rep = new KEP2DImagePixelRep(image, kImageInset, kImageInset, 0, 0, 0, 0);
  rep->ClearControllerId();
  image->Release();
  SetSliderBackgroundRep(rep, 1);  // the slider takes over the reference
}

// --- Notifications

void KEPRshScalarBlackbodySlider::CopySliderToSpinner() {
  if (IsDoubleMode())
    spinner_->SetValue(slider_->GetValue());
  else
    spinner_->SetCurrentValue(static_cast<float>(slider_->GetValue()));
}

void KEPRshScalarBlackbodySlider::SliderDragNotificationCB(KEPDialog*, KEPNotification*,
                                                           KEPDlgClientData) {
  KEPModuleTrace::Trace(5,
                        "(KEPRshScalarBlackbodySlider::SliderDragNotificationCB) Slider value=%f\n",
                        slider_->GetValue());
  CopySliderToSpinner();
  SendNotification(GetFather(), dragNotification_);
}

void KEPRshScalarBlackbodySlider::SliderModifyNotificationCB(KEPDialog*, KEPNotification*,
                                                             KEPDlgClientData) {
  KEPModuleTrace::Trace(
      5, "(KEPRshScalarBlackbodySlider::SliderModifyNotificationCB) Slider value=%f\n",
      slider_->GetValue());
  CopySliderToSpinner();
  SendNotification(GetFather(), modifyNotification_);
}

void KEPRshScalarBlackbodySlider::SpinnerModifyNotificationCB(KEPDialog*, KEPNotification*,
                                                              KEPDlgClientData) {
  KEPModuleTrace::Trace(5,
                        "(KEPRshScalarBlackbodySlider::SpinnerModifyNotificationCB) Spinner "
                        "value=%f, double value=%f\n",
                        static_cast<double>(spinner_->GetCurrentValue()), spinner_->GetValue());
  const double value =
      IsDoubleMode() ? spinner_->GetValue() : static_cast<double>(spinner_->GetCurrentValue());
  if (value == slider_->GetValue()) return;
  slider_->SetValue(value);
  SendNotification(GetFather(), modifyNotification_);
}

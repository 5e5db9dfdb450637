#include "KEPRshUICtlParameterColor.h"

#include <cmath>
#include <cstdio>
#include <new>

#include "KEPRdgRenderLock.h"
#include "KEPRshColorPickerModes.h"
#include "KEPRshFlagScope.h"
#include "KEPVidCtlButton.h"
#include "KEPVidCtlColorCompositePicker.h"
#include "KEPVidCtlEditor.h"
#include "KEPVidCtlPopup.h"
#include "KEPVidCtlSlider.h"

KEP_IMPLEMENT_CLASS_EX(KEPRshUICtlParameterColor, KEPRshParameterImmWidget, "KEPNull",
                       "RenderingShader", KEPClassKind_Implementation, "")

namespace {

constexpr const char* kSourcePath =
    "RenderingShader/KEPRshView.m/src/KEPRshParameterColorImmWidget";

constexpr int kSliderMinimum = 0;
constexpr int kSliderMaximum = 100;

const KEPVidColor kSliderBackground{255, 255, 255, 100};
const KEPVidColor kEditorBackground{255, 255, 255, 150};
/// The button's own colour before it shows the parameter's: transparent white.
const KEPVidColor kButtonColor{255, 255, 255, 0};

/// The picker's options switched on: the toolkit's first two (its live preview and its
/// immediate notification of every change).
constexpr int kPickerOptions[] = {0, 1};
/// The popup's options: not modal; closes on a click outside, on Escape; follows its anchor.
constexpr bool kPopupOptions[] = {false, true, true, true};
constexpr int kPopupOffsetX = 55;
constexpr int kPopupOffsetY = 10;

/// The slider position of a lightness in 0..1, rounded to the nearest.
int SliderPosition(const KEPVidCtlSlider& slider, float lightness) {
  const double span = static_cast<double>(slider.GetMaximum() - slider.GetMinimum());
  return slider.GetMinimum() + static_cast<int>(std::lround(static_cast<double>(lightness) * span));
}

}  // namespace

KEPRshUICtlParameterColor::KEPRshUICtlParameterColor(KEPIRshParameter* parameter,
                                                     KEPVidWidget* parent, const KEPString& name)
    : KEPRshParameterImmWidget(parameter, parent, name),
      life_(std::make_shared<KEPRshUICtlParameterColor*>(this)) {
  if (!parameter) return;
  Build(parameter);
  observer_ = KEPRshModelEvents::AddParameterObserver(
      [life = life_](KEPIRshParameter* changed, KEPRshParameterChangeKind kind) {
        if (*life) (*life)->OnParameterChanged(changed, kind);
      });
}

KEPRshUICtlParameterColor::~KEPRshUICtlParameterColor() {
  // A control that someone else still holds outlives this widget; its handlers then find no
  // widget behind them.
  *life_ = nullptr;
  if (observer_) KEPRshModelEvents::RemoveObserver(observer_);
}

// --- Construction

void KEPRshUICtlParameterColor::Build(KEPIRshParameter* parameter) {
  grid_ = new (std::nothrow) KEPVidLayGrid(this, "ColorLayout");
  if (!grid_) return;
  grid_->SetCellSpacing(2, 2);
  grid_->SetColumnWeight(0, 1.0);
  grid_->SetColumnWeight(1, 0.0);
  grid_->SetColumnWeight(2, 0.0);
  grid_->SetGridCell({0, 0, 1, 1, KEPVidAttach_All});

  // Nothing is shown while the controls are made: their notifications are no user edits.
  const KEPRshFlagScope quiet(active_, false);
  BuildSlider();
  BuildEditor();
  BuildButton();
  BuildPicker();

  ReadColor(parameter);
  hsl_ = KEPVidRGBToHSL(rgb_);
  TraceColor();
  Show(true);
  Place();
  Connect();
}

void KEPRshUICtlParameterColor::BuildSlider() {
  auto* slider = new (std::nothrow) KEPVidCtlSlider(grid_, "colorSlider");
  if (!slider) return;
  slider_ = slider;
  slider->SetBarSize(2.0);
  slider->SetTickPosition(0);
  slider->SetBackgroundColor(kSliderBackground);
  slider->SetBackgroundSquareHeightRatio(0.1);
  slider->SetMinimumSize(60, 5);
  slider->SetLayoutWhenInvisible(false);
  slider->SetRange(kSliderMinimum, kSliderMaximum);
  slider->SetTickInterval(10);
  slider->SetSingleStep(1);
  slider->SetPageStep(10);
}

void KEPRshUICtlParameterColor::BuildEditor() {
  auto* editor = new (std::nothrow) KEPVidCtlEditor(grid_, "colorEditor");
  if (!editor) return;
  editor_ = editor;
  editor->SetDataType(KEPVidEditor_Float);
  editor->SetBackgroundColor(kEditorBackground);
  editor->SetCharacterWidth(4);
  editor->SetLayoutWhenInvisible(false);
  editor->SetMinimumSize(48, 15);
}

void KEPRshUICtlParameterColor::BuildButton() {
  auto* button = new (std::nothrow) KEPVidCtlButton(grid_, "AmbientColor");
  if (!button) return;
  button_ = button;
  button->SetColor(kButtonColor);
  button->SetMinimumSize(15, 15);
  button->SetLayoutWhenInvisible(false);
}

void KEPRshUICtlParameterColor::BuildPicker() {
  auto* picker =
      new (std::nothrow) KEPVidCtlColorCompositePicker(grid_, "colorPicker", "VIDColorPicker", 10);
  if (!picker) return;
  picker_ = picker;
  picker->SetModeList(KEPRshColorPickerModes::ModeList());
  for (const int option : kPickerOptions) picker->SetOption(option, true);

  auto* popup = new (std::nothrow) KEPVidCtlPopup(grid_, "colorPopup");
  if (!popup) return;
  popup_ = popup;
  popup->SetVisibility(false);
  for (int option = 0; option < 4; ++option) popup->SetOption(option, kPopupOptions[option]);
  popup->SetOffset(kPopupOffsetX, kPopupOffsetY);
  // The popup opens next to the colour button that opens it.
  popup->SetAnchor(button_);
  picker->SetFather(popup);
}

void KEPRshUICtlParameterColor::Place() {
  if (slider_) slider_->SetGridCell({0, 0, 1, 1, KEPVidAttach_All});
  if (editor_) editor_->SetGridCell({0, 1, 1, 1, KEPVidAttach_All});
  if (button_) button_->SetGridCell({0, 2, 1, 1, KEPVidAttach_All});
  if (popup_) popup_->SetGridCell({0, 2, 1, 1, KEPVidAttach_None});
}

void KEPRshUICtlParameterColor::Connect() {
  if (slider_) {
    slider_->AddHandler(KEPVidEvent::ValueChanged, [life = life_](KEPVidWidget*, KEPVidEvent) {
      if (*life) (*life)->OnSliderMoved();
    });
  }
  if (button_) {
    button_->AddHandler(KEPVidEvent::Pressed, [life = life_](KEPVidWidget*, KEPVidEvent) {
      if (*life) (*life)->OnButtonPressed();
    });
  }
  if (editor_) {
    editor_->AddHandler(KEPVidEvent::EditModify, [life = life_](KEPVidWidget*, KEPVidEvent) {
      if (*life) (*life)->OnEditorModified();
    });
  }
  if (picker_) {
    picker_->AddHandler(KEPVidEvent::ColorChanged, [life = life_](KEPVidWidget*, KEPVidEvent) {
      if (*life) (*life)->OnPickerChanged();
    });
  }
}

// --- Showing the colour

bool KEPRshUICtlParameterColor::ReadColor(KEPIRshParameter* parameter) {
  float red = 0.0f;
  float green = 0.0f;
  float blue = 0.0f;
  float alpha = 1.0f;
  if (!parameter || FAILED(parameter->GetColorValue(red, green, blue, &alpha))) return false;
  rgb_ = {red, green, blue};
  alpha_ = alpha;
  return true;
}

void KEPRshUICtlParameterColor::Show(bool picker) {
  const KEPRshFlagScope quiet(active_, false);
  const KEPVidColor shown{KEPVidChannelToByte(rgb_.red), KEPVidChannelToByte(rgb_.green),
                          KEPVidChannelToByte(rgb_.blue), 255};
  if (button_) button_->SetColor(shown);
  if (picker && picker_) picker_->SetColor(shown);
  if (slider_) slider_->SetValue(SliderPosition(*slider_, hsl_.lightness));
  ShowLightness();
}

void KEPRshUICtlParameterColor::ShowLightness() {
  if (!editor_) return;
  const KEPRshFlagScope quiet(active_, false);
  const double lightness = static_cast<double>(hsl_.lightness);
  char text[32];
  const int written = std::snprintf(text, sizeof text, "%.2f", lightness);
  KEP_ASSERT_FATAL(written > 0 && static_cast<std::size_t>(written) < sizeof text,
                   "( written > 0 ) && \"Unable to convert digit into text\"", kSourcePath);
  editor_->SetValue(lightness);
  editor_->SetText(KEPUnicodeString::FromUTF8(text));
}

void KEPRshUICtlParameterColor::TraceColor() const {
  trace_.Info("HSL updated to { %.2f, %.2f, %.2f }", static_cast<double>(hsl_.hue),
              static_cast<double>(hsl_.saturation), static_cast<double>(hsl_.lightness));
  trace_.Info("RGB updated to { %.2f, %.2f, %.2f }", static_cast<double>(rgb_.red),
              static_cast<double>(rgb_.green), static_cast<double>(rgb_.blue));
}

// --- Handlers

void KEPRshUICtlParameterColor::Write(KEPIRshParameter* parameter, bool picker) {
  const KEPRdgRenderLock lock;
  const KEPRshFlagScope quiet(active_, false);
  if (FAILED(parameter->SetColorValue(rgb_.red, rgb_.green, rgb_.blue, alpha_)) &&
      ReadColor(parameter)) {
    // Refused: the controls go back to what the parameter holds.
    hsl_ = KEPVidRGBToHSL(rgb_);
    picker = true;
  }
  Show(picker);
  TraceColor();
}

void KEPRshUICtlParameterColor::ApplyLightness(KEPIRshParameter* parameter, float lightness) {
  // Hue and saturation stay: going through black or white and back gives the colour back.
  hsl_.lightness = lightness;
  rgb_ = KEPVidHSLToRGB(hsl_);
  Write(parameter, true);
}

void KEPRshUICtlParameterColor::OnSliderMoved() {
  if (!active_ || !slider_) return;
  const KEP_var<KEPIRshParameter> parameter = GetParameter();
  if (!parameter) return;
  const int span = slider_->GetMaximum() - slider_->GetMinimum();
  if (span <= 0) return;
  const double lightness =
      static_cast<double>(slider_->GetValue() - slider_->GetMinimum()) / static_cast<double>(span);
  ApplyLightness(parameter.Get(), static_cast<float>(lightness));
}

void KEPRshUICtlParameterColor::OnEditorModified() {
  if (!active_ || !editor_) return;
  const KEP_var<KEPIRshParameter> parameter = GetParameter();
  if (!parameter) return;
  const double typed = editor_->GetValue();
  // A lightness lies in 0..1: anything else is refused and the editor shows the lightness again.
  if (!(typed >= 0.0 && typed <= 1.0)) {
    ShowLightness();
    return;
  }
  ApplyLightness(parameter.Get(), static_cast<float>(typed));
}

void KEPRshUICtlParameterColor::OnPickerChanged() {
  if (!active_ || !picker_) return;
  const KEP_var<KEPIRshParameter> parameter = GetParameter();
  if (!parameter) return;
  const KEPVidColor& picked = picker_->GetColor();
  rgb_ = {KEPVidByteToChannel(picked.red), KEPVidByteToChannel(picked.green),
          KEPVidByteToChannel(picked.blue)};
  hsl_ = KEPVidRGBToHSL(picked);
  Write(parameter.Get(), false);
}

void KEPRshUICtlParameterColor::OnButtonPressed() {
  if (popup_) popup_->Open();
}

void KEPRshUICtlParameterColor::OnParameterChanged(KEPIRshParameter* changed,
                                                   KEPRshParameterChangeKind kind) {
  // Not active: the widget wrote this itself and its controls already show it.
  if (!active_ || kind != KEPRshParameterChangeKind::Value || !changed) return;
  const KEP_var<KEPIRshParameter> parameter = GetParameter();
  if (!parameter || changed != parameter.Get()) return;
  const KEPVidRGB before = rgb_;
  if (!ReadColor(parameter.Get())) return;
  // The same colour again keeps the hue and saturation that the lightness controls hold.
  if (rgb_.red == before.red && rgb_.green == before.green && rgb_.blue == before.blue) return;
  hsl_ = KEPVidRGBToHSL(rgb_);
  Show(true);
}

// --- State

void KEPRshUICtlParameterColor::DescribeState(KEPVidStateWriter& writer) const {
  KEPRshParameterImmWidget::DescribeState(writer);
  writer.DoubleList("rgb", {static_cast<double>(rgb_.red), static_cast<double>(rgb_.green),
                            static_cast<double>(rgb_.blue)});
  writer.DoubleList("hsl", {static_cast<double>(hsl_.hue), static_cast<double>(hsl_.saturation),
                            static_cast<double>(hsl_.lightness)});
}

// A composite colour picker: several modes (wheel, squares, sliders with spin boxes, palettes,
// history) shown together, chosen by a "|"-separated mode list such as
// "ColorWheel|ColorSquareS|ColorSlidersAndSpinBoxes". A change of colour raises ColorChanged.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include <vector>

#include "KEPVidCtl.h"

class KEPVidCtlColorCompositePicker : public KEPVidCtl {
  KEP_DECLARE_CLASS
 public:
  /// `style` is the picker's look ("VIDColorPicker"), `size` its size argument.
  KEPVidCtlColorCompositePicker(KEPVidWidget* father, const KEPString& name,
                                const KEPString& style = KEPString(), int size = 0);

  const KEPString& GetStyle() const { return style_; }
  int GetSize() const { return size_; }
  /// The mode list as given; GetModes splits it at "|" (empty names dropped).
  void SetModeList(const KEPString& modes) { modeList_ = modes; }
  const KEPString& GetModeList() const { return modeList_; }
  std::vector<KEPString> GetModes() const;
  /// Boolean option `index` (0-based; options not set are off).
  void SetOption(int index, bool on);
  bool GetOption(int index) const;
  /// The colour, 8-bit channels.
  void SetColor(const KEPVidColor& color);
  const KEPVidColor& GetColor() const { return color_; }

  void DescribeState(KEPVidStateWriter& writer) const override;
  /// Color: "r g b [a]" as numbers in 0..1 (alpha 1 when left out).
  HRESULT InjectUserEvent(KEPVidAction action, std::string_view argument,
                          std::string& error) override;

 protected:
  ~KEPVidCtlColorCompositePicker() override;

 private:
  KEPString style_;
  KEPString modeList_;
  std::vector<bool> options_;
  KEPVidColor color_{0, 0, 0, 255};
  int size_ = 0;
};

#pragma GCC visibility pop

// Small types shared by the immersive toolkit's widgets: colours, sizes, grid placement, the
// notifications a widget raises, the user actions it accepts, and the writer through which a
// widget describes its state.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// A colour with 8-bit channels (backgrounds, button colours).
struct KEPVidColor {
  int red = 0;
  int green = 0;
  int blue = 0;
  int alpha = 255;
  friend bool operator==(const KEPVidColor&, const KEPVidColor&) = default;
};

/// Sides of a grid cell a widget is attached to; attached on both sides of an axis it stretches
/// along that axis.
enum KEPVidAttach : int {
  KEPVidAttach_None = 0,
  KEPVidAttach_Left = 1,
  KEPVidAttach_Right = 2,
  KEPVidAttach_Top = 4,
  KEPVidAttach_Bottom = 8,
  KEPVidAttach_All = 15,
};

/// Where a widget sits in its father's grid: row, column, spans and attachments.
struct KEPVidGridCell {
  int row = 0;
  int column = 0;
  int rowSpan = 1;
  int columnSpan = 1;
  int attach = KEPVidAttach_None;
  friend bool operator==(const KEPVidGridCell&, const KEPVidGridCell&) = default;
};

/// Notifications. A control raises its notification whenever its state changes, whether a person
/// or code changed it (as common toolkits do); setting the state it already has raises nothing.
enum class KEPVidEvent : int {
  ValueChanged,  ///< slider, spin boxes: the value moved
  EditModify,    ///< editor: its value or text changed
  Pressed,       ///< button
  Toggled,       ///< check box
  Selected,      ///< combo: the selection changed
  ColorChanged,  ///< colour picker
  ImageChanged,  ///< image-document selector: image, groups or resolution changed
  Expanded,      ///< expander opened
  Collapsed,     ///< expander closed
  PopupOpened,   ///< popup shown
  PopupClosed,   ///< popup hidden
};

class KEPVidWidget;

/// A notification handler: the widget that raised it and what happened.
using KEPVidHandler = std::function<void(KEPVidWidget* sender, KEPVidEvent event)>;

/// What a person can do to a widget (immersive or classic); injected by widget path (tests,
/// `rshview drive`, the browser). The argument's form depends on the action (see
/// KEPVidWidget::InjectUserEvent).
enum class KEPVidAction : int {
  Set,       ///< slider, spin box: a number
  Type,      ///< editor: the text typed (then confirmed)
  Press,     ///< button
  Toggle,    ///< check box: "on", "off", or empty to flip
  Select,    ///< combo: an index or an entry's label
  Expand,    ///< expander
  Collapse,  ///< expander
  Color,     ///< colour picker: "r g b [a]" in 0..1
  Choose,    ///< image-document selector: "image=PATH groups=a,b dpi=N" (any subset)
  Open,      ///< popup
  Close,     ///< popup; classic dialog: its window's close box
  Drag,      ///< classic slider: the handle dragged to a number
  Ok,        ///< classic dialog
  Cancel,    ///< classic dialog
};

/// Receives a widget's state, key by key, in the order the widget writes it.
class KEPVidStateWriter {
 public:
  virtual void Bool(std::string_view key, bool value) = 0;
  virtual void Int(std::string_view key, long long value) = 0;
  virtual void Double(std::string_view key, double value) = 0;
  /// UTF-8 text.
  virtual void Text(std::string_view key, std::string_view value) = 0;
  virtual void TextList(std::string_view key, const std::vector<std::string>& values) = 0;
  virtual void DoubleList(std::string_view key, const std::vector<double>& values) = 0;
  /// Integers (colour channels, offsets, option switches); a writer that does not override it
  /// receives them as a list of doubles.
  virtual void IntList(std::string_view key, std::span<const int> values) {
    DoubleList(key, std::vector<double>(values.begin(), values.end()));
  }

 protected:
  ~KEPVidStateWriter() = default;
};

#pragma GCC visibility pop

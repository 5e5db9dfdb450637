// A parsed style sheet ("*.sypstyle", described in docs/formats.md, "Style sheets"): styles, each
// a set of classes, each a tree of parts (toolkit widgets) with their look and their bindings to
// the introspected properties of the control that is styled.
//
// Sheets are read once per file and process: Load keeps what it read (the sheet, or the errors
// that made it unusable) in the host context's state, which KEPHostContext::Reset forgets.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "KEPLoadResult.h"

/// What a part is built as.
enum class KEPVidPartKind : int {
  Grid,           ///< KEPVidLayGrid, the only kind that holds parts
  Label,          ///< KEPVidCtlLabel
  Slider,         ///< KEPVidCtlSlider
  Editor,         ///< KEPVidCtlEditor
  SpinBox,        ///< KEPVidCtlSpinBox
  DoubleSpinBox,  ///< KEPVidCtlDoubleSpinBox
  Combo,          ///< KEPVidCtlImageCombo
  CheckBox,       ///< KEPVidCtlCheckBox
};

/// The form of a target's literal (and of what a binding gives it).
enum class KEPVidStyleValueType : int {
  Bool,        ///< yes/no
  Int,         ///< integer
  Double,      ///< real number
  Text,        ///< "double-quoted text"
  Cell,        ///< row column [row-span column-span]
  Attach,      ///< words: left right top bottom all none
  Size,        ///< two non-negative integers
  Color,       ///< #rrggbb or #rrggbbaa
  Weights,     ///< one or more non-negative numbers
  Correction,  ///< previous or nearest
};

/// What a setting sets on its part.
enum class KEPVidStyleTarget : int {
  // Every kind
  Cell,
  Attach,
  MinimumSize,
  Background,
  Tooltip,
  TooltipDelay,
  Visible,
  Sensitive,
  LayoutWhenInvisible,
  // Grid
  ColumnWeights,
  RowWeights,
  Spacing,
  // Values and ranges (which kinds take which: see the table in KEPVidStyleSheet.cpp)
  Value,
  Text,
  Minimum,
  Maximum,
  Step,
  Decimals,
  Suffix,
  Checked,
  Label,
  Selection,
  Items,
  // Look of single kinds
  Width,
  TextLength,
  Correction,
  TickInterval,
  SingleStep,
  PageStep,
  TickPosition,
  BarSize,
  SquareRatio,
  Magnifier,
};

/// How a setting gets its value.
enum class KEPVidStyleMode : int {
  Literal,  ///< `target = literal`: set once, when the part is built
  OneWay,   ///< `target <- Property.path`: the part shows the property and follows it
  TwoWay,   ///< `target <-> Property.path`: and a person's change of the part writes it
};

/// One line of a part.
struct KEPVidStyleSetting {
  KEPVidStyleTarget target = KEPVidStyleTarget::Cell;
  KEPVidStyleMode mode = KEPVidStyleMode::Literal;
  int line = 0;
  /// Literal: numbers of Bool (0/1), Int, Double, Cell (4), Size (2), Color (r g b a),
  /// Weights, Attach (the flags) and Correction (0 previous, 1 nearest).
  std::vector<double> numbers;
  /// Literal of Text.
  std::string text;
  /// Binding: the property, then the steps into its value ("Values", "x").
  std::vector<std::string> path;
};

struct KEPVidStylePart {
  KEPVidPartKind kind = KEPVidPartKind::Grid;
  std::string name;
  int line = 0;
  std::vector<KEPVidStyleSetting> settings;
  std::vector<KEPVidStylePart> parts;  ///< grids only

  /// The setting of `target`, or null.
  const KEPVidStyleSetting* Find(KEPVidStyleTarget target) const;
};

struct KEPVidStyleClass {
  std::string name;     ///< without the trailing '*' of a prefix class
  bool prefix = false;  ///< `class combo* {`: every style class that begins with the name
  int line = 0;
  std::vector<KEPVidStylePart> parts;
};

struct KEPVidStyle {
  std::string name;
  int line = 0;
  std::vector<KEPVidStyleClass> classes;
};

class KEPVidStyleSheet {
 public:
  /// Parts nest at most this deep (a grid in a grid ...).
  static constexpr int kMaxDepth = 16;

  /// Parses `text`; `file` names it in errors. Null with the errors in `result` when the text
  /// has any error: a sheet is used whole or not at all.
  static std::shared_ptr<const KEPVidStyleSheet> Parse(std::string_view text,
                                                       const std::string& file,
                                                       KEPLoadResult& result);
  /// The sheet at `path`, read and parsed on the first request of the host session; later
  /// requests answer the same sheet, or the same errors. `firstRead` tells which it was.
  static std::shared_ptr<const KEPVidStyleSheet> Load(const std::string& path,
                                                      KEPLoadResult& result,
                                                      bool* firstRead = nullptr);

  const std::string& GetFile() const { return file_; }
  const std::vector<KEPVidStyle>& GetStyles() const { return styles_; }
  const KEPVidStyle* FindStyle(std::string_view name) const;
  /// The class of `style` named exactly `styleClass`, else the prefix class with the longest
  /// name that `styleClass` begins with, else null.
  static const KEPVidStyleClass* FindClass(const KEPVidStyle& style, std::string_view styleClass);

  /// What the sheets may do with a target.
  struct TargetInfo {
    const char* name;
    KEPVidStyleValueType type;
    unsigned kinds;        ///< bit (1 << kind) for each kind that takes the target
    unsigned twoWayKinds;  ///< the kinds on which it may be bound both ways
    bool bindable;         ///< may be bound one way
    bool nonNegative;      ///< a literal below 0 is refused
  };
  static const TargetInfo& Info(KEPVidStyleTarget target);
  /// The target written `name`, or false.
  static bool FindTarget(std::string_view name, KEPVidStyleTarget& target);
  /// The kind written `name`, or false.
  static bool FindKind(std::string_view name, KEPVidPartKind& kind);
  static const char* KindName(KEPVidPartKind kind);
  /// "kinds: grid, label, ..." and "takes: cell, ..." for error messages.
  static std::string KindList();
  static std::string TargetList(KEPVidPartKind kind);

 private:
  friend class KEPVidStyleSheetParser;
  std::string file_;
  std::vector<KEPVidStyle> styles_;
};

// Values shared by the classic dialog toolkit's widgets: visibility and sensitivity values, style
// bits, grid and tabulation attachments, check states, line-setting flags, unit codes, and the
// callback through which a dialog receives notifications (see docs/design.md, "Classic toolkit").
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include <cstdint>
#include <functional>

class KEPDialog;
class KEPNotification;

/// Visibility values (KEPDialog::SetVisibility).
inline constexpr int KEPDlgShow = 2;
inline constexpr int KEPDlgHide = 4;

/// Sensitivity values (KEPDialog::SetSensitivity).
inline constexpr int KEPDlgDisable = 0;
inline constexpr int KEPDlgEnable = 1;

/// Style bits with a meaning in this toolkit; every other bit is kept and shown only.
/// Spinners, scalar sliders, wheels, the black-body slider: values kept in double precision.
inline constexpr int KEPDlgStyleDouble = 0x20000;
/// Spinners: the spinner's own style (float mode); with KEPDlgStyleDouble (0x60000) double mode.
inline constexpr int KEPDlgStyleSpinner = 0x40000;

/// Check button states (KEPDlgCheckButton::SetState).
inline constexpr int KEPDlgCheck = 0x40000;
inline constexpr int KEPDlgUncheck = 0x80000;

/// Grid attachment bits (KEPDialog::SetGridConstraints): the sides of its cell a widget sticks
/// to; KEPDlgGridAll (90) stretches it both ways. Other bits are kept and shown only.
inline constexpr int KEPDlgGridTop = 0x02;
inline constexpr int KEPDlgGridLeft = 0x08;
inline constexpr int KEPDlgGridRight = 0x10;
inline constexpr int KEPDlgGridBottom = 0x40;
inline constexpr int KEPDlgGridAll =
    KEPDlgGridTop | KEPDlgGridLeft | KEPDlgGridRight | KEPDlgGridBottom;

/// Tabulation attachment kinds (KEPDlgFrame::SetHorizontalAttachment, SetVerticalAttachment):
/// which edges of the widgets a tabulation line holds. Across the line's direction the start edge
/// is the left (vertical line) or top (horizontal line) one.
inline constexpr int KEPDlgTabStart = 1;  ///< the widgets' start edge lies on the line
inline constexpr int KEPDlgTabEnd = 4;    ///< the widgets' end edge lies on the line
inline constexpr int KEPDlgTabAcross = KEPDlgTabStart | KEPDlgTabEnd;  ///< the line runs through

/// KEPDlgCombo::SetLine, KEPDlgSelectorList::SetLine: the given lines replace the existing ones.
inline constexpr int KEPDlgLineReplace = 0x40;

/// Unit codes of spinners, scalar sliders and wheels (SetUnit). A value with a length code is
/// held in metres and shown in the code's unit, one with the degree code held in radians and
/// shown in degrees; kelvins are held and shown as such.
inline constexpr int KEPDlgUnitNone = 0;
inline constexpr int KEPDlgUnitDegree = 12;
inline constexpr int KEPDlgUnitMetre = 43;
inline constexpr int KEPDlgUnitMillimetre = 45;
inline constexpr int KEPDlgUnitCentimetre = 46;
inline constexpr int KEPDlgUnitKilometre = 47;
inline constexpr int KEPDlgUnitKelvin = 95;

/// The data a subscriber gave with its callback (a row index, a pointer made into an integer).
using KEPDlgClientData = std::intptr_t;

/// A notification callback: the widget that sent the notification, the notification, and the
/// subscriber's data.
using KEPDlgCallback =
    std::function<void(KEPDialog* sender, KEPNotification* notification, KEPDlgClientData data)>;

#pragma GCC visibility pop

#include "KEPVidCtlEditor.h"

#include <cfloat>
#include <charconv>
#include <cmath>
#include <cstdio>

#include "KEPVidUserEvent.h"

KEP_IMPLEMENT_CLASS(KEPVidCtlEditor, KEPVidCtl, "System")

namespace {
// Reads `text` as the data type asks: a real number, or an integer within the int range.
bool ReadForType(int dataType, std::string_view text, double& value, std::string& problem) {
  if (dataType == KEPVidEditor_Integer) {
    int integer = 0;
    if (!KEPVidReadInt(text, integer, problem)) return false;
    value = integer;
    return true;
  }
  if (!KEPVidReadDouble(text, value, problem)) return false;
  if (dataType == KEPVidEditor_Float && std::fabs(value) > static_cast<double>(FLT_MAX)) {
    problem = KEPVidQuote(text) + " is beyond the single-precision floats";
    return false;
  }
  return true;
}

// The shortest text that reads back as `value`; a value that is exactly a single-precision float
// (what parameters store) is written as that float's shortest text, so 0.8f shows as "0.8", not
// as the digits of its double widening.
std::string Shown(double value) {
  char shown[64];
  std::to_chars_result written{};
  const auto narrow = static_cast<float>(value);
  if (std::isfinite(value) && static_cast<double>(narrow) == value)
    written = std::to_chars(shown, shown + sizeof shown, narrow);
  else
    written = std::to_chars(shown, shown + sizeof shown, value);
  return std::string(shown, written.ptr);
}

bool IsNumeric(int dataType) {
  return dataType == KEPVidEditor_Integer || dataType == KEPVidEditor_Double ||
         dataType == KEPVidEditor_Float;
}
}  // namespace

KEPVidCtlEditor::KEPVidCtlEditor(KEPVidWidget* father, const KEPString& name)
    : KEPVidCtl(father, name) {}

KEPVidCtlEditor::~KEPVidCtlEditor() = default;

void KEPVidCtlEditor::SetValue(double value) {
  const KEPUnicodeString text = KEPUnicodeString::FromUTF8(Shown(value));
  if (KEPVidSameDouble(value, value_) && text == text_) return;
  value_ = value;
  text_ = text;
  Raise(KEPVidEvent::EditModify);
}

void KEPVidCtlEditor::SetText(const KEPUnicodeString& text) {
  double value = value_;
  if (IsNumeric(dataType_)) {
    std::string problem;
    double read = 0.0;
    if (ReadForType(dataType_, text.ToUTF8(), read, problem)) value = read;
  }
  if (KEPVidSameDouble(value, value_) && text == text_) return;
  value_ = value;
  text_ = text;
  Raise(KEPVidEvent::EditModify);
}

void KEPVidCtlEditor::DescribeState(KEPVidStateWriter& writer) const {
  KEPVidCtl::DescribeState(writer);
  writer.Int("dataType", dataType_);
  writer.Double("value", value_);
  writer.Text("text", text_.ToUTF8());
  writer.Int("characterWidth", characterWidth_);
}

HRESULT KEPVidCtlEditor::InjectUserEvent(KEPVidAction action, std::string_view argument,
                                         std::string& error) {
  if (action != KEPVidAction::Type) return KEPVidRefuseAction(this, action, error);
  if (!KEPVidCheckReachable(this, action, error)) return E_INVALIDARG;
  if (IsNumeric(dataType_)) {
    // The editor refuses what its data type cannot read and keeps what it had.
    double value = 0.0;
    std::string problem;
    if (!ReadForType(dataType_, argument, value, problem)) {
      problem += dataType_ == KEPVidEditor_Integer ? " (the editor takes an integer)"
                                                   : " (the editor takes a real number)";
      return KEPVidRefuse(this, problem, error);
    }
  }
  // A number is kept as typed, without the blanks around it.
  SetText(KEPUnicodeString::FromUTF8(IsNumeric(dataType_) ? KEPTrimBlanks(argument) : argument));
  return S_OK;
}

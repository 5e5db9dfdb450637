// A one-line editor. Its data type decides how typed text is read: 6 (KEPVidEditor_Double) reads
// a real number, 2 (KEPVidEditor_Float) a real number within the single-precision floats,
// 1 (KEPVidEditor_Integer) an integer, 0 (KEPVidEditor_Text) keeps the text.
// Setting the value or the text raises EditModify when either changes; text that the data type
// cannot read is refused by a person's Type (the editor keeps what it had).
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include "KEPVidCtl.h"

enum KEPVidEditorDataType : int {
  KEPVidEditor_Text = 0,
  KEPVidEditor_Integer = 1,
  KEPVidEditor_Float = 2,
  KEPVidEditor_Double = 6,
};

class KEPVidCtlEditor : public KEPVidCtl {
  KEP_DECLARE_CLASS
 public:
  explicit KEPVidCtlEditor(KEPVidWidget* father = nullptr, const KEPString& name = KEPString());

  void SetDataType(int type) { dataType_ = type; }
  int GetDataType() const { return dataType_; }
  /// Sets the number and shows it as the shortest text that reads back as it (as a float when it
  /// is exactly one: 0.8f shows "0.8").
  void SetValue(double value);
  double GetValue() const { return value_; }
  /// Sets the text; a numeric data type also reads it into the value when it can.
  void SetText(const KEPUnicodeString& text);
  const KEPUnicodeString& GetText() const { return text_; }
  /// Width in characters the editor asks for.
  void SetCharacterWidth(int characters) { characterWidth_ = characters; }
  int GetCharacterWidth() const { return characterWidth_; }

  void DescribeState(KEPVidStateWriter& writer) const override;
  HRESULT InjectUserEvent(KEPVidAction action, std::string_view argument,
                          std::string& error) override;

 protected:
  ~KEPVidCtlEditor() override;

 private:
  KEPUnicodeString text_;
  double value_ = 0.0;
  int dataType_ = KEPVidEditor_Text;
  int characterWidth_ = 0;
};

#pragma GCC visibility pop

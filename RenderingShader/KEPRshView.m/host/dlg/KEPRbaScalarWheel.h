// A wheel: a scalar slider turned by a thumb wheel, shown with a number of decimals and an
// optional unit symbol of its own.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include "KEPRbaScalarSlider.h"

class KEPRbaScalarWheel : public KEPRbaScalarSlider {
  KEP_DECLARE_CLASS
 public:
  KEPRbaScalarWheel(KEPDialog* father, const KEPString& name, const int& width, const int& height,
                    int style = 0);

  /// Decimals shown when no format is set (negative: the shortest text).
  void SetPrecision(int decimals) { precision_ = decimals; }
  int GetPrecision() const { return precision_; }
  /// A symbol shown instead of the unit code's (empty: the code's).
  void SetCustomUnitSymbol(const KEPString& symbol) { symbol_ = symbol; }
  const KEPString& GetCustomUnitSymbol() const { return symbol_; }

  void DescribeState(KEPVidStateWriter& writer) const override;

 protected:
  ~KEPRbaScalarWheel() override;
};

#pragma GCC visibility pop

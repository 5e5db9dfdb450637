// A grid layout: places its children by their grid cells (KEPVidWidget::SetGridCell), with
// column and row weights (how extra space is shared; 0 keeps a column at its natural size) and
// spacing between cells.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include <vector>

#include "KEPVidWidget.h"

class KEPVidLayGrid : public KEPVidWidget {
  KEP_DECLARE_CLASS
 public:
  explicit KEPVidLayGrid(KEPVidWidget* father = nullptr, const KEPString& name = KEPString());

  /// Weight of `column` (0 when never set).
  void SetColumnWeight(int column, double weight);
  double GetColumnWeight(int column) const;
  void SetRowWeight(int row, double weight);
  double GetRowWeight(int row) const;
  /// Space between cells, in pixels, horizontally and vertically.
  void SetCellSpacing(int horizontal, int vertical) {
    horizontalSpacing_ = horizontal;
    verticalSpacing_ = vertical;
  }
  int GetHorizontalSpacing() const { return horizontalSpacing_; }
  int GetVerticalSpacing() const { return verticalSpacing_; }
  /// One more than the largest row any child occupies (0 without children).
  int GetRowCount() const;

  void DescribeState(KEPVidStateWriter& writer) const override;

 protected:
  ~KEPVidLayGrid() override;

 private:
  std::vector<double> columnWeights_;
  std::vector<double> rowWeights_;
  int horizontalSpacing_ = 0;
  int verticalSpacing_ = 0;
};

#pragma GCC visibility pop

#include "KEPVidLayGrid.h"

#include <algorithm>

KEP_IMPLEMENT_CLASS(KEPVidLayGrid, KEPVidWidget, "System")

namespace {
void SetWeight(std::vector<double>& weights, int index, double weight) {
  if (index < 0) return;
  const auto at = static_cast<std::size_t>(index);
  if (at >= weights.size()) weights.resize(at + 1, 0.0);
  weights[at] = weight;
}

double GetWeight(const std::vector<double>& weights, int index) {
  if (index < 0 || static_cast<std::size_t>(index) >= weights.size()) return 0.0;
  return weights[static_cast<std::size_t>(index)];
}
}  // namespace

KEPVidLayGrid::KEPVidLayGrid(KEPVidWidget* father, const KEPString& name)
    : KEPVidWidget(father, name) {}

KEPVidLayGrid::~KEPVidLayGrid() = default;

void KEPVidLayGrid::SetColumnWeight(int column, double weight) {
  SetWeight(columnWeights_, column, weight);
}

double KEPVidLayGrid::GetColumnWeight(int column) const {
  return GetWeight(columnWeights_, column);
}

void KEPVidLayGrid::SetRowWeight(int row, double weight) {
  SetWeight(rowWeights_, row, weight);
}

double KEPVidLayGrid::GetRowWeight(int row) const {
  return GetWeight(rowWeights_, row);
}

int KEPVidLayGrid::GetRowCount() const {
  int rows = 0;
  for (std::size_t i = 0; i < GetChildCount(); ++i) {
    const KEPVidGridCell& cell = GetChild(i)->GetGridCell();
    rows = std::max(rows, cell.row + std::max(cell.rowSpan, 1));
  }
  return rows;
}

void KEPVidLayGrid::DescribeState(KEPVidStateWriter& writer) const {
  KEPVidWidget::DescribeState(writer);
  writer.Int("rows", GetRowCount());
  writer.DoubleList("columnWeights", columnWeights_);
  writer.DoubleList("rowWeights", rowWeights_);
  writer.Int("horizontalSpacing", horizontalSpacing_);
  writer.Int("verticalSpacing", verticalSpacing_);
}

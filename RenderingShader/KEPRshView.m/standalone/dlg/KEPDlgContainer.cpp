#include "KEPDlgContainer.h"

KEP_IMPLEMENT_CLASS(KEPDlgContainer, KEPDialog, "System")

KEPDlgContainer::KEPDlgContainer(KEPDialog* father, const KEPString& name, int style)
    : KEPDialog(father, name, style) {}

KEPDlgContainer::~KEPDlgContainer() = default;

void KEPDlgContainer::SetRectDimensions(int x, int y, int width, int height) {
  x_ = x;
  y_ = y;
  width_ = width;
  height_ = height;
  SetMinimumSize(width, height);
}

void KEPDlgContainer::GetRectDimensions(int& x, int& y, int& width, int& height) const {
  x = x_;
  y = y_;
  width = width_;
  height = height_;
}

void KEPDlgContainer::DescribeState(KEPVidStateWriter& writer) const {
  KEPDialog::DescribeState(writer);
  const int rect[] = {x_, y_, width_, height_};
  writer.IntList("rectangle", rect);
}

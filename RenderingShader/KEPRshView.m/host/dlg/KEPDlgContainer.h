// A container: a plain area that holds other widgets, with the rectangle it asks for.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include "KEPDialog.h"

class KEPDlgContainer : public KEPDialog {
  KEP_DECLARE_CLASS
 public:
  explicit KEPDlgContainer(KEPDialog* father = nullptr, const KEPString& name = KEPString(),
                           int style = 0);

  /// The rectangle: origin (x, y) and size (width, height), in pixels.
  void SetRectDimensions(int x, int y, int width, int height);
  void GetRectDimensions(int& x, int& y, int& width, int& height) const;

  void DescribeState(KEPVidStateWriter& writer) const override;

 protected:
  ~KEPDlgContainer() override;

 private:
  int x_ = 0;
  int y_ = 0;
  int width_ = 0;
  int height_ = 0;
};

#pragma GCC visibility pop

// KEP2DRep: something a 2D viewer draws. A representation has a controller id: the viewer's
// manipulator moves a representation whose id is not 0 (1, the default manipulator, when made);
// clearing it fixes the representation where it is drawn.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include "KEPBaseUnknown.h"
#include "KEPVidTypes.h"

class KEP2DRep : public KEPBaseUnknown {
  KEP_DECLARE_CLASS
 public:
  KEP2DRep();

  void SetControllerId(int id) { controller_ = id; }
  int GetControllerId() const { return controller_; }
  void ClearControllerId() { controller_ = 0; }

  /// Writes what the representation shows (for the widget tree's state).
  virtual void DescribeState(KEPVidStateWriter& writer) const;

 protected:
  ~KEP2DRep() override;

 private:
  int controller_ = 1;
};

#pragma GCC visibility pop

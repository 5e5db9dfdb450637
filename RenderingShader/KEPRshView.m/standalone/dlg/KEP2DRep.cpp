#include "KEP2DRep.h"

KEP_IMPLEMENT_CLASS(KEP2DRep, KEPBaseUnknown, "System")

KEP2DRep::KEP2DRep() = default;
KEP2DRep::~KEP2DRep() = default;

void KEP2DRep::DescribeState(KEPVidStateWriter& writer) const {
  writer.Int("controllerId", controller_);
}

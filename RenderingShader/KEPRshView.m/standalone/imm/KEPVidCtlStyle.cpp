// The introspection and style side of KEPVidCtl: its adapter, its answer to KEPISYPIntrospectable,
// and SetCustomStyle, which hands the control to the style engine.
#include "KEPISYPIntrospectable.h"
#include "KEPVidCtl.h"
#include "KEPVidStyleEngine.h"

HRESULT KEPVidCtl::SetCustomStyle(const KEPString& sheet, const KEPString& styleName,
                                  const KEPUnicodeString& styleClass) {
  styleSheet_ = sheet;
  styleName_ = styleName;
  styleClass_ = styleClass;
  return KEPVidStyleEngine::Apply(*this, sheet, styleName, styleClass.ToUTF8());
}

KEPSYPIntrospectableAdapter* KEPVidCtl::GetIntrospectionAdapter() {
  if (!adapter_) {
    if (KEPSYPAdapterFactory factory = KEPSYPRegistry::FindAdapter(this)) adapter_ = factory(this);
    // A factory that does not take this object (null) leaves it to the toolkit's own adapter.
    if (!adapter_) adapter_ = new KEPSYPIntrospectableAdapter(this);
  }
  return adapter_;
}

void* KEPVidCtl::QueryOwnInterface(const KEPIID& iid) {
  if (iid == KEPISYPIntrospectable::IID())
    return static_cast<KEPISYPIntrospectable*>(GetIntrospectionAdapter());
  return KEPVidWidget::QueryOwnInterface(iid);
}

#include "KEPCreateComponent.h"

KEP_IMPLEMENT_CLASS_EX(KEPLateTypeComponent, KEPBaseUnknown, "KEPNull", "System",
                       KEPClassKind_Component, "")

KEPLateTypeComponent* KEPLateTypeComponent::Create(const char* lateType) {
  auto* component = new KEPLateTypeComponent();
  component->SetLateType(lateType ? lateType : "");
  return component;
}

KEPBaseUnknown* KEPCreateComponent(const char* lateType) {
  if (!lateType || !*lateType) return nullptr;
  return KEPLateTypeComponent::Create(lateType);
}

#include "KEPRshParameterBooleanImmWidget.h"

#include <new>

#include "KEPRdgRenderLock.h"
#include "KEPVidCtlCheckBox.h"

KEP_IMPLEMENT_CLASS_EX(KEPRshParameterBooleanImmWidget, KEPRshParameterImmWidget, "KEPNull",
                       "RenderingShader", KEPClassKind_Implementation, "")

KEPRshParameterBooleanImmWidget::KEPRshParameterBooleanImmWidget(KEPIRshParameter* parameter,
                                                                 KEPVidWidget* parent,
                                                                 const KEPString& name)
    : KEPRshParameterImmWidget(parameter, parent, name),
      life_(std::make_shared<KEPRshParameterBooleanImmWidget*>(this)) {
  if (!parameter) return;
  check_ = new (std::nothrow) KEPVidCtlCheckBox(this, "booleanCheck");
  if (!check_) return;
  check_->SetLabel(KEPUnicodeString());
  unsigned char value = 0;
  if (SUCCEEDED(parameter->GetBooleanValue(value))) check_->SetChecked(value != 0);
  check_->SetGridCell({0, 0, 1, 1, KEPVidAttach_None});
  check_->AddHandler(KEPVidEvent::Toggled, [life = life_](KEPVidWidget*, KEPVidEvent) {
    if (*life) (*life)->OnClicked();
  });
  observer_ = KEPRshModelEvents::AddParameterObserver(
      [life = life_](KEPIRshParameter* changed, KEPRshParameterChangeKind kind) {
        if (*life) (*life)->OnParameterChanged(changed, kind);
      });
}

KEPRshParameterBooleanImmWidget::~KEPRshParameterBooleanImmWidget() {
  *life_ = nullptr;
  if (observer_) KEPRshModelEvents::RemoveObserver(observer_);
}

void KEPRshParameterBooleanImmWidget::OnClicked() {
  if (refreshing_) return;
  const KEP_var<KEPIRshParameter> parameter = GetParameter();
  if (!parameter) return;
  const KEPRdgRenderLock lock;
  parameter->SetBooleanValue(check_->IsChecked() ? 1 : 0);
}

void KEPRshParameterBooleanImmWidget::OnParameterChanged(KEPIRshParameter* changed,
                                                         KEPRshParameterChangeKind kind) {
  if (kind != KEPRshParameterChangeKind::Value || !changed) return;
  const KEP_var<KEPIRshParameter> parameter = GetParameter();
  unsigned char value = 0;
  if (!parameter || changed != parameter.Get() || FAILED(parameter->GetBooleanValue(value))) return;
  refreshing_ = true;
  check_->SetChecked(value != 0);
  refreshing_ = false;
}

#include "KEPRshParameterShaderImmWidget.h"

#include <new>
#include <vector>

#include "KEPIAlias.h"
#include "KEPIRshShader.h"
#include "KEPRshShaderImmLayout.h"
#include "KEPRshShaderManager.h"
#include "KEPVidCtlLabel.h"

KEP_IMPLEMENT_CLASS_EX(KEPRshParameterShaderImmWidget, KEPRshParameterImmWidget, "KEPNull",
                       "RenderingShader", KEPClassKind_Implementation, "")

namespace {

/// The display name of shader type `type` among the types connectable to `parameterType`.
bool TypeLabel(const KEPString& parameterType, const KEPString& type, KEPUnicodeString& label) {
  const KEPRshShaderManager* manager = KEPRshShaderManager::GetManager();
  std::vector<KEPString> names;
  std::vector<KEPUnicodeString> labels;
  if (!manager || FAILED(manager->GetConnectableShaders(parameterType, names, labels, 2)))
    return false;
  for (std::size_t i = 0; i < names.size() && i < labels.size(); ++i) {
    if (names[i] == type && !labels[i].IsEmpty()) {
      label = labels[i];
      return true;
    }
  }
  return false;
}

}  // namespace

KEPRshParameterShaderImmWidget::KEPRshParameterShaderImmWidget(KEPIRshParameter* parameter,
                                                               KEPVidWidget* parent,
                                                               const KEPString& name)
    : KEPRshParameterImmWidget(parameter, parent, name),
      life_(std::make_shared<KEPRshParameterShaderImmWidget*>(this)) {
  if (!parameter) return;
  label_ = new (std::nothrow) KEPVidCtlLabel(this, "connectedShader");
  if (!label_) return;
  label_->SetText(ConnectionText(parameter));
  label_->SetGridCell({0, 0, 1, 1, KEPVidAttach_Left});
  observer_ = KEPRshModelEvents::AddParameterObserver(
      [life = life_](KEPIRshParameter* changed, KEPRshParameterChangeKind kind) {
        if (*life) (*life)->OnParameterChanged(changed, kind);
      });
}

KEPRshParameterShaderImmWidget::~KEPRshParameterShaderImmWidget() {
  *life_ = nullptr;
  if (observer_) KEPRshModelEvents::RemoveObserver(observer_);
}

KEPUnicodeString KEPRshParameterShaderImmWidget::ConnectionText(KEPIRshParameter* parameter) {
  KEPIRshShader* connectedShader = nullptr;
  if (!parameter || FAILED(parameter->GetConnectedShader(connectedShader)))
    connectedShader = nullptr;
  const auto connected = KEP_var<KEPIRshShader>::Adopt(connectedShader);
  if (!connected) return KEPUnicodeString::FromUTF8(KEPRshShaderImmLayout::kNoShaderConnected);
  if (const KEP_var<KEPIAlias> alias = KEPQueryVar<KEPIAlias>(connected.Get())) {
    KEPUnicodeString text;
    if (SUCCEEDED(alias->GetAlias(text)) && !text.IsEmpty()) return text;
  }
  KEPString type;
  KEPString parameterType;
  KEPUnicodeString label;
  if (SUCCEEDED(connected->GetTypeName(type)) && SUCCEEDED(parameter->GetTypeName(parameterType)) &&
      TypeLabel(parameterType, type, label))
    return label;
  return KEPUnicodeString::FromUTF8(type);
}

void KEPRshParameterShaderImmWidget::OnParameterChanged(KEPIRshParameter* changed,
                                                        KEPRshParameterChangeKind kind) {
  if (kind != KEPRshParameterChangeKind::Connection || !changed) return;
  const KEP_var<KEPIRshParameter> parameter = GetParameter();
  if (parameter && changed == parameter.Get()) label_->SetText(ConnectionText(parameter.Get()));
}

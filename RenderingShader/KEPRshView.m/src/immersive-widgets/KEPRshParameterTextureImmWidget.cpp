#include "KEPRshParameterTextureImmWidget.h"

#include <new>
#include <vector>

#include "KEPIPLMDmtDocument.h"
#include "KEPRbaImageDocImmSelector.h"
#include "KEPRbaImageServices.h"
#include "KEPRdgRenderLock.h"
#include "KEPRshParameterServices.h"

KEP_IMPLEMENT_CLASS_EX(KEPRshParameterTextureImmWidget, KEPRshParameterImmWidget, "KEPNull",
                       "RenderingShader", KEPClassKind_Implementation, "")

namespace {
/// Creation options of the selector: plain image documents, with groups and resolution.
constexpr int kSelectorOptions = 0;
constexpr int kSelectorFlags = 4;
}  // namespace

KEPRshParameterTextureImmWidget::KEPRshParameterTextureImmWidget(KEPIRshParameter* parameter,
                                                                 KEPVidWidget* parent,
                                                                 const KEPString& name)
    : KEPRshParameterImmWidget(parameter, parent, name),
      life_(std::make_shared<KEPRshParameterTextureImmWidget*>(this)) {
  if (!parameter) return;
  grid_ = new (std::nothrow) KEPVidLayGrid(this, "TextureLayout");
  if (!grid_) return;
  grid_->SetCellSpacing(2, 2);
  grid_->SetColumnWeight(0, 1.0);
  grid_->SetGridCell({0, 0, 1, 1, KEPVidAttach_All});
  selector_ = new (std::nothrow)
      KEPRbaImageDocImmSelector(grid_, "textureEditor", kSelectorOptions, kSelectorFlags);
  if (!selector_) return;
  selector_->SetVisibility(true);
  selector_->SetLayoutWhenInvisible(false);
  selector_->SetGridCell({0, 0, 1, 1, KEPVidAttach_All});
  Show(parameter);
  selector_->AddHandler(KEPVidEvent::EditModify, [life = life_](KEPVidWidget*, KEPVidEvent) {
    if (*life) (*life)->OnChosen();
  });
  observer_ = KEPRshModelEvents::AddParameterObserver(
      [life = life_](KEPIRshParameter* changed, KEPRshParameterChangeKind kind) {
        if (*life) (*life)->OnParameterChanged(changed, kind);
      });
}

KEPRshParameterTextureImmWidget::~KEPRshParameterTextureImmWidget() {
  *life_ = nullptr;
  if (observer_) KEPRshModelEvents::RemoveObserver(observer_);
}

void KEPRshParameterTextureImmWidget::Show(KEPIRshParameter* parameter) {
  KEP_var<KEPIPLMDmtDocument> document;
  KEPUnicodeString path;
  if (FAILED(parameter->GetTextureValue(*document.Out())) || !document ||
      FAILED(KEPRbaImageServices::GetProjectionPath(document.Get(), path)))
    path = KEPUnicodeString();
  std::vector<KEPString> groups;
  double dpi = 72.0;
  if (!path.IsEmpty()) {
    KEPRshParameterServices::RetrieveGroupList(parameter, groups);
    KEPRshParameterServices::RetrieveDpi(parameter, dpi);
  }
  refreshing_ = true;
  selector_->SetImage(path.ToUTF8());
  selector_->SetLayerGroups(groups);
  selector_->SetResolution(dpi);
  refreshing_ = false;
}

void KEPRshParameterTextureImmWidget::OnChosen() {
  if (refreshing_) return;
  const KEP_var<KEPIRshParameter> parameter = GetParameter();
  if (!parameter) return;
  if (!selector_->HasImage()) {
    // The undefined image chosen: the parameter holds no image any more.
    const KEPRdgRenderLock lock;
    parameter->SetTextureValue(nullptr);
    return;
  }
  // The image is read before the render lock is taken: a renderer waits only for the write.
  KEP_var<KEPIPLMDmtDocument> document;
  if (FAILED(KEPRshParameterServices::CreateTextureDocument(
          parameter.Get(), selector_->GetImage(), selector_->GetLayerGroups(),
          selector_->GetResolution(), *document.Out())) ||
      !document) {
    Show(parameter.Get());
    return;
  }
  const KEPRdgRenderLock lock;
  parameter->SetTextureValue(document.Get());
}

void KEPRshParameterTextureImmWidget::OnParameterChanged(KEPIRshParameter* changed,
                                                         KEPRshParameterChangeKind kind) {
  if (kind != KEPRshParameterChangeKind::Value || !changed) return;
  const KEP_var<KEPIRshParameter> parameter = GetParameter();
  if (parameter && changed == parameter.Get()) Show(parameter.Get());
}

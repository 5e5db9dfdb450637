#include "KEPRshParameterTextureFrame.h"

#include <algorithm>

#include "KEPDlgSelectorList.h"
#include "KEPIPLMDmtDocument.h"
#include "KEPIRshParameterDialog.h"
#include "KEPRbaImageDocImmSelector.h"
#include "KEPRdgRenderLock.h"
#include "KEPRshParameterServices.h"
#include "KEPTrace.h"

KEP_IMPLEMENT_CLASS(KEPRshParameterTextureFrame, KEPRshParameterFrame, "RenderingShader")

namespace {
/// Names separated by commas or semicolons, blanks around them dropped, empty ones skipped.
std::vector<KEPString> SplitNames(const KEPString& text) {
  std::vector<KEPString> names;
  std::size_t start = 0;
  while (start <= text.size()) {
    const std::size_t end = std::min(text.find_first_of(",;", start), text.size());
    const std::size_t first = text.find_first_not_of(" \t", start);
    if (first != KEPString::npos && first < end) {
      const std::size_t last = text.find_last_not_of(" \t", end - 1);
      names.push_back(text.substr(first, last - first + 1));
    }
    start = end + 1;
  }
  return names;
}

/// Clears a flag for as long as it lives.
class Quiet {
 public:
  explicit Quiet(bool& flag) : flag_(flag), previous_(flag) { flag_ = false; }
  ~Quiet() { flag_ = previous_; }
  Quiet(const Quiet&) = delete;
  Quiet& operator=(const Quiet&) = delete;

 private:
  bool& flag_;
  bool previous_;
};
}  // namespace

KEPRshParameterTextureFrame::KEPRshParameterTextureFrame(KEPDialog* parent,
                                                         KEPIRshParameter* parameter,
                                                         const KEPString& name, int style)
    : KEPRshParameterFrame(parent, parameter, name, style) {
  if (!parameter) return;
  KEPString configured;
  if (const KEP_var<KEPIRshParameterDialog> behaviour =
          KEPQueryVar<KEPIRshParameterDialog>(parameter);
      behaviour && SUCCEEDED(behaviour->GetLayerGroupName(configured)))
    configuredGroups_ = SplitNames(configured);

  selector_ = new KEPRbaImageDocImmSelector(this, "textureSelector", 0, 4);
  KEPVidGridCell cell;
  cell.attach = KEPVidAttach_Left | KEPVidAttach_Right;
  selector_->SetGridCell(cell);
  layers_ = new KEPDlgSelectorList(this, "svgLayersSelector");
  layers_->SetTitle(KEPUnicodeString::FromUTF8("SVG Layers Selector"));
  layers_->SetGridConstraints(1, 0, 1, 1, KEPDlgGridAll);
  ShowValue();
  selectorHandler_ =
      selector_->AddHandler(KEPVidEvent::EditModify, [this](KEPVidWidget*, KEPVidEvent) {
        if (active_ && !IsShowingValue()) SelectorModified();
      });
  AddCallback(layers_, layers_->GetListSelectNotification(), this,
              &KEPRshParameterTextureFrame::ParameterModifiedCB);
  active_ = true;
}

KEPRshParameterTextureFrame::~KEPRshParameterTextureFrame() {
  KEPModuleTrace::Trace(2,
                        "(KEPRshParameterTextureFrame::~KEPRshParameterTextureFrame) Destructor\n");
  // The selector may be held elsewhere and outlive the frame: its handler must not.
  if (selector_) selector_->RemoveHandler(selectorHandler_);
  KEPModuleTrace::Trace(2, "(KEPRshParameterTextureFrame::~KEPRshParameterTextureFrame) Done\n");
}

void KEPRshParameterTextureFrame::ShowValue() {
  KEPIRshParameter* parameter = GetParameter();
  if (!parameter || !selector_) return;
  const Quiet quiet(active_);
  KEPString image;
  KEPIPLMDmtDocument* document = nullptr;
  if (SUCCEEDED(parameter->GetTextureValue(document)) && document) {
    KEPUnicodeString path;
    if (SUCCEEDED(document->GetImagePath(path))) image = path.ToUTF8();
    document->Release();
  }
  std::vector<KEPString> groups;
  double dpi = 72.0;
  if (!image.empty()) {
    KEPRshParameterServices::RetrieveGroupList(parameter, groups);
    KEPRshParameterServices::RetrieveDpi(parameter, dpi);
  }
  selector_->SetImage(image);
  selector_->SetLayerGroups(groups);
  selector_->SetResolution(dpi);

  std::vector<KEPString> offered = configuredGroups_;
  for (const KEPString& group : groups)
    if (std::find(offered.begin(), offered.end(), group) == offered.end()) offered.push_back(group);
  std::vector<KEPUnicodeString> lines;
  lines.reserve(offered.size());
  for (const KEPString& group : offered) lines.push_back(KEPUnicodeString::FromUTF8(group));
  layers_->SetLine(lines.data(), static_cast<int>(lines.size()), -1, KEPDlgLineReplace);
  int selected = -1;
  if (!groups.empty()) {
    const auto at = std::find(offered.begin(), offered.end(), groups.front());
    selected = static_cast<int>(at - offered.begin());
  }
  layers_->SetSelect(selected);
  // The chooser only shows where there is a choice of layers to make.
  layers_->SetVisibility(lines.empty() ? KEPDlgHide : KEPDlgShow);
}

void KEPRshParameterTextureFrame::SelectorModified() {
  TraceCallback("KEPRshParameterTextureFrame::SelectorModified");
  Write(selector_->GetImage(), selector_->GetLayerGroups(), selector_->GetResolution());
}

void KEPRshParameterTextureFrame::ParameterModifiedCB(KEPDialog*, KEPNotification*,
                                                      KEPDlgClientData) {
  TraceCallback("KEPRshParameterTextureFrame::ParameterModifiedCB");
  if (!active_ || !selector_ || IsShowingValue()) return;
  const int index = layers_->GetSelect();
  std::vector<KEPString> groups;
  if (index >= 0) groups.push_back(layers_->GetLine(index).ToUTF8());
  Write(selector_->GetImage(), groups, selector_->GetResolution());
}

void KEPRshParameterTextureFrame::Write(const KEPString& image,
                                        const std::vector<KEPString>& groups, double dpi) {
  KEPIRshParameter* parameter = GetParameter();
  if (!parameter) return;
  const OwnWrite own(*this);
  if (image.empty()) {
    const KEPRdgRenderLock lock;
    parameter->SetTextureValue(nullptr);
  } else {
    KEPIPLMDmtDocument* document = nullptr;
    if (SUCCEEDED(KEPRshParameterServices::CreateTextureDocument(parameter, image, groups, dpi,
                                                                 document))) {
      const KEP_var<KEPIPLMDmtDocument> held = KEP_var<KEPIPLMDmtDocument>::Adopt(document);
      const KEPRdgRenderLock lock;
      parameter->SetTextureValue(held.Get());
    }
  }
  ShowValue();  // what was stored, or the old value when the choice was refused
}

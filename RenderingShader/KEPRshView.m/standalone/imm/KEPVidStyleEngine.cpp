#include "KEPVidStyleEngine.h"

#include <filesystem>
#include <map>

#include "KEPHostContext.h"
#include "KEPMsgCatalog.h"
#include "KEPTrace.h"
#include "KEPVidStyleSheet.h"
#include "KEPVidStyledControl.h"

namespace {

constexpr const char* kSource = "RenderingShader/KEPRshView.m/standalone/imm/KEPVidStyleEngine";

const KEPTrace& Trace() {
  static const KEPTrace trace("KEPVidStyle");
  return trace;
}

/// Where each sheet name leads in this host session (the resources directory may differ in the
/// next one): every styled row of an editor asks for the same sheet.
struct SheetPaths {
  std::map<std::string, std::string, std::less<>> byName;
};

const std::string& PathOf(const std::string& sheet) {
  auto& paths = KEPHostContext::State<SheetPaths>().byName;
  auto it = paths.find(sheet);
  if (it == paths.end()) {
    std::string path = std::filesystem::path(sheet).is_absolute()
                           ? sheet
                           : KEPMsgCatalog::ResourcesDirectory() + "/" + sheet;
    it = paths.emplace(sheet, std::move(path)).first;
  }
  return it->second;
}

}  // namespace

HRESULT KEPVidStyleEngine::Apply(KEPVidCtl& control, const std::string& sheet,
                                 const std::string& styleName, const std::string& styleClass) {
  // The control shows the last style asked for: the parts of the one before go in any case.
  if (auto previous = KEPVidStyledControl::Of(control)) previous->Unbuild();

  const char* name = control.GetName().c_str();
  if (sheet.empty()) {
    Trace().Error(kSource, __LINE__, "No style sheet given { control = %s, class = %s }", name,
                  styleClass.c_str());
    return E_FAIL;
  }
  const std::string& path = PathOf(sheet);
  KEPLoadResult result;
  bool firstRead = false;
  const auto parsed = KEPVidStyleSheet::Load(path, result, &firstRead);
  if (!parsed) {
    // The sheet's faults once per session; each control it fails says so in one line.
    if (firstRead)
      for (const KEPLoadIssue& issue : result.ErrorIssues())
        Trace().Error(kSource, __LINE__, "%s", issue.Text().c_str());
    Trace().Error(kSource, __LINE__,
                  "Style sheet unusable { control = %s, file = %s, errors = %zu }", name,
                  path.c_str(), result.ErrorIssues().size());
    return E_FAIL;
  }
  const KEPVidStyle* style = parsed->FindStyle(styleName);
  if (!style) {
    Trace().Error(kSource, __LINE__, "Style not found { control = %s, file = %s, style = %s }",
                  name, path.c_str(), styleName.c_str());
    return E_FAIL;
  }
  const KEPVidStyleClass* found = KEPVidStyleSheet::FindClass(*style, styleClass);
  if (!found) {
    Trace().Error(kSource, __LINE__,
                  "Class not found { control = %s, file = %s, line = %d, style = %s, class = %s }",
                  name, path.c_str(), style->line, styleName.c_str(), styleClass.c_str());
    return E_FAIL;
  }
  KEPVidStyledControl::Build(control, parsed, *found);
  return S_OK;
}

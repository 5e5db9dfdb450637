// The style sheet parser on any text, then the engine on what parsed: every class of every style
// built on a control, refreshed and written through each two-way part, then destroyed. A sheet
// with errors must give no sheet; every error must name the file and a line of it (see
// KEPFuzzCheckErrors).
#include <cstdio>
#include <cstdlib>
#include <string>

#include "KEPFuzzChecks.h"
#include "KEPHostContext.h"
#include "KEPVidCtl.h"
#include "KEPVidStyleSheet.h"
#include "KEPVidStyledControl.h"
#include "KEP_var.h"

namespace {
[[noreturn]] void Fault(const char* what, const KEPLoadResult& result) {
  std::fprintf(stderr, "style sheet: %s\n%s", what, result.Text().c_str());
  std::abort();
}

void RaiseAll(KEPVidWidget* widget) {
  for (std::size_t i = 0; i < widget->GetChildCount(); ++i) {
    KEPVidWidget* child = widget->GetChild(i);
    for (KEPVidEvent event : {KEPVidEvent::ValueChanged, KEPVidEvent::EditModify,
                              KEPVidEvent::Toggled, KEPVidEvent::Selected})
      child->Raise(event);
    RaiseAll(child);
  }
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  KEPHostContext host;  // a new session: nothing of the previous input is left
  const std::string text(reinterpret_cast<const char*>(data), size);
  const std::string file = "fuzz.sypstyle";
  KEPLoadResult result;
  const auto sheet = KEPVidStyleSheet::Parse(text, file, result);
  KEPFuzzCheckErrors(result, {{file, text, false}});
  if (!sheet && result.Ok()) Fault("no sheet and no error", result);
  if (sheet && !result.Ok()) Fault("a sheet despite errors", result);
  if (!sheet) return 0;

  for (const KEPVidStyle& style : sheet->GetStyles()) {
    if (sheet->FindStyle(style.name) == nullptr) Fault("a style is not found by its name", result);
    for (const KEPVidStyleClass& styleClass : style.classes) {
      // A control without properties: the literals build the parts, the bindings read nothing.
      auto control = KEP_var<KEPVidCtl>::Adopt(new KEPVidCtl(nullptr, "Fuzz"));
      auto styled = KEPVidStyledControl::Build(*control, sheet, styleClass);
      styled->RefreshAll(true);
      RaiseAll(control.Get());  // as if a person changed every part: each writes, or fails to
      styled.reset();
      control.Reset();
    }
  }
  return 0;
}

#include "KEPRshUICtlParameterIntegral1.h"

#include <variant>

#include "KEPIRshParameter.h"
#include "KEPIRshParameterImmLayout.h"
#include "KEPIRshParameterPrivate.h"
#include "KEPIRshShader.h"
#include "KEPIRshShaderPrivate.h"
#include "KEPISYPIntrospectable.h"
#include "KEPRbaConfiguration.h"
#include "KEPRshIntrospectionAnnouncer.h"
#include "KEPTrace.h"

KEP_IMPLEMENT_CLASS(KEPRshUICtlParameterIntegral1, KEPVidCtl, "RenderingShader")

namespace {

KEPRshUICtlParameterIntegral1* Control(KEPBaseUnknown* object) {
  return dynamic_cast<KEPRshUICtlParameterIntegral1*>(object);
}

KEPSYPValue GetParameterProperty(KEPBaseUnknown* object) {
  const KEPRshUICtlParameterIntegral1* control = Control(object);
  if (!control) return std::monostate{};
  return KEPSYPBoxInterface(control->GetParameter().Detach());
}

KEPSYPValue GetComboConfigurationProperty(KEPBaseUnknown* object) {
  const KEPRshUICtlParameterIntegral1* control = Control(object);
  if (!control) return std::monostate{};
  return control->GetComboConfiguration();
}

KEPBaseUnknown* CreateControl() {
  return new KEPRshUICtlParameterIntegral1();
}

}  // namespace

const char* KEPRshUICtlParameterIntegral1::SourcePath() {
  return "RenderingShader/KEPRshView.m/src/KEPRshUICtlParameterIntegral1";
}

KEPRshUICtlParameterIntegral1::KEPRshUICtlParameterIntegral1() = default;

KEPRshUICtlParameterIntegral1::~KEPRshUICtlParameterIntegral1() = default;

void KEPRshUICtlParameterIntegral1::SetParameter(KEPIRshParameter* parameter) {
  parameter_ = KEP_var<KEPIRshParameter>(parameter);
  if (parameter && !ReadAndStyle(parameter)) return;
  KEPRshIntrospectionAnnouncer::Announce(this, "Parameter", SourcePath());
}

bool KEPRshUICtlParameterIntegral1::ReadAndStyle(KEPIRshParameter* parameter) {
  KEPString name;
  const HRESULT readName = parameter->GetName(name);
  KEP_ASSERT(SUCCEEDED(readName), "SUCCEEDED( result_read_name ) && \"Could not fetch name\"",
             SourcePath());

  const KEP_var<KEPIRshParameterImmLayout> layout =
      KEPQueryVar<KEPIRshParameterImmLayout>(parameter);
  if (!layout) {
    KEPAssertReport("hParameterConfiguration && \"KEPIRshParameterImmLayout not available\"",
                    SourcePath(), __LINE__);
    return false;
  }
  // The configured kind, else the type's default ("spinner"): every integer gets a style.
  KEPString widget;
  const HRESULT readWidget = layout->ChooseWidgetKind(widget);
  if (FAILED(readWidget)) {
    KEPAssertReport("SUCCEEDED( result_read_widget ) && \"Could not read widget\"", SourcePath(),
                    __LINE__);
    return false;
  }

  if (widget.starts_with("combo")) {
    const KEP_var<KEPIRshParameterPrivate> parameterPrivate =
        KEPQueryVar<KEPIRshParameterPrivate>(parameter);
    if (!parameterPrivate) {
      KEPAssertReport("hParameterConfiguration && \"KEPIRshParameterPrivate not available\"",
                      SourcePath(), __LINE__);
      return false;
    }
    KEP_var<KEPIRshShader> shader;
    if (FAILED(parameterPrivate->GetParentShader(*shader.Out()))) shader.Reset();
    const KEP_var<KEPIRshShaderPrivate> shaderPrivate = KEPQueryVar<KEPIRshShaderPrivate>(shader);
    if (!shaderPrivate) {
      KEPAssertReport("hParentShaderPrivate && \"KEPIRshShaderPrivate not available\"",
                      SourcePath(), __LINE__);
      return false;
    }
    KEPString configuration;
    HRESULT readValue = shaderPrivate->GetConfiguration(configuration);
    if (SUCCEEDED(readValue))
      readValue = KEPRbaConfiguration::GetHierarchicalValue(
          configuration, name + ".ComboConfiguration", comboConfiguration_);
    if (FAILED(readValue)) {
      KEPAssertReport("SUCCEEDED( result_read_value ) && \"Could not find combo configuration\"",
                      SourcePath(), __LINE__);
      return false;
    }
  }

  SetCustomStyle("KEPRshUI.sypstyle", "Default", KEPUnicodeString::FromUTF8(widget));
  return true;
}

HRESULT fctCreateKEPRshUICtlParameterIntegral1SYPMetaClassBuilder(KEPSYPMetaClassBuilder& builder) {
  static const KEPSYPPropertyEntry kProperties[] = {
      {"Parameter", "KEPIRshParameter", &GetParameterProperty, nullptr},
      {"ComboConfiguration", "KEPString", &GetComboConfigurationProperty, nullptr},
  };
  // No base: the control is described by its own properties only.
  builder.SetClass("KEPRshUICtlParameterIntegral1", nullptr, &CreateControl);
  return builder.AddProperties(kProperties, 2);
}

KEPSYPIntrospectableAdapter* CreateBOAKEPISYPIntrospectableKEPRshUICtlParameterIntegral1SYPIntro(
    KEPBaseUnknown* implementation) {
  KEPRshUICtlParameterIntegral1* control = Control(implementation);
  if (!control) return nullptr;
  return new KEPSYPIntrospectableAdapter(control);
}

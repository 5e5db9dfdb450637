// The bundled style sheet on the module's own value controls, over parameters of the stand-alone
// host: the parts follow what the soft and hard range control publishes (ranges and value in the
// user's unit, the precision, the unit's symbol) and a person's change reaches the parameter.
#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "KEPHostConfiguration.h"
#include "KEPIRshParameterImmLayout.h"
#include "KEPParmDictionary.h"
#include "KEPRshUIScalarSoftHardRange.h"
#include "KEPRshViewModule.h"
#include "KEPSYPMetaClass.h"
#include "KEPTestSupport.h"
#include "KEPVidCtlEditor.h"
#include "KEPVidCtlLabel.h"
#include "KEPVidCtlSlider.h"
#include "KEPVidLayGrid.h"
#include "KEPVidTree.h"
#include "KEP_var.h"

namespace {

class ModuleControlsStyle : public keptest::Fixture {
 protected:
  void SetUp() override {
    keptest::Fixture::SetUp();
    KEPSYPRegistry::Clear();  // what other suites registered
    KEPRshViewRegister();
    world_ = std::make_unique<keptest::World>();
    world_->Add(keptest::Type("t").Param("x", keptest::Scalar(0.5f)));
    for (const auto& [key, text] :
         std::initializer_list<std::pair<const char*, const char*>>{{"x.Unit", "m"},
                                                                    {"x.Magnitude", "LENGTH"},
                                                                    {"x.HardMin", "-1"},
                                                                    {"x.HardMax", "2"},
                                                                    {"x.SoftMin", "0"},
                                                                    {"x.SoftMax", "1"},
                                                                    {"x.Step", "0.01"}})
      KEPHostConfiguration::SetValue("t", key, text);
    KEPHostShaderNode* node = world_->Node("t");
    x_ = world_->Param(node, "x");
    root_ = KEP_var<KEPVidWidget>::Adopt(new KEPVidLayGrid(nullptr, "root"));
  }
  void TearDown() override {
    root_.Reset();
    world_.reset();
    KEPSYPRegistry::Clear();
    keptest::Fixture::TearDown();
  }

  KEPRshUIScalarSoftHardRange* DynamicSlider(const char* name) {
    const auto layout = KEPQueryVar<KEPIRshParameterImmLayout>(x_);
    auto* control = new KEPRshUIScalarSoftHardRange(layout.Get());
    control->SetFather(root_.Get());
    control->SetName(name);
    EXPECT_EQ(control->SetCustomStyle("KEPRshUI.sypstyle", "Default", u"dynamic-slider"), S_OK);
    return control;
  }
  static KEPVidWidget* Part(KEPVidWidget* control, const char* path) {
    std::string error;
    KEPVidWidget* part = KEPVidFindByPath(control, path, error);
    EXPECT_NE(part, nullptr) << error;
    return part;
  }
  static std::string EditorText(KEPVidWidget* control, const char* path) {
    auto* editor = dynamic_cast<KEPVidCtlEditor*>(Part(control, path));
    return editor ? editor->GetText().ToUTF8() : "(none)";
  }
  static HRESULT Type(KEPVidWidget* control, const char* path, const char* text) {
    std::string error;
    return KEPVidInject(control, path, KEPVidAction::Type, text, error);
  }
  static float Stored(KEPHostParameter* parameter) {
    float value = NAN;
    parameter->GetScalarValue(value);
    return value;
  }

  std::unique_ptr<keptest::World> world_;
  KEPHostParameter* x_ = nullptr;
  KEP_var<KEPVidWidget> root_;
};

TEST_F(ModuleControlsStyle, TheDynamicSliderShowsTheParameterInTheUsersUnit) {
  KEPRshUIScalarSoftHardRange* control = DynamicSlider("Range");
  const int precision = control->GetDecimalPrecision();
  const double scale = std::pow(10.0, precision);
  auto* slider = dynamic_cast<KEPVidCtlSlider*>(Part(control, "ValueSlider"));
  ASSERT_NE(slider, nullptr);
  EXPECT_EQ(slider->GetMinimum(), 0);
  EXPECT_EQ(slider->GetMaximum(), std::lround(1000.0 * scale)) << "1 m shown in millimetres";
  EXPECT_EQ(slider->GetValue(), std::lround(500.0 * scale));
  char shown[32];
  std::snprintf(shown, sizeof shown, "%.*f", precision, 500.0);
  EXPECT_EQ(EditorText(control, "ValueEditor"), shown);
  auto* label = dynamic_cast<KEPVidCtlLabel*>(Part(control, "UnitLabel"));
  EXPECT_EQ(label->GetText(), KEPUnicodeString(u"mm"));
}

TEST_F(ModuleControlsStyle, TypedValuesReachTheParameterWithinTheHardRangeOnly) {
  KEPRshUIScalarSoftHardRange* control = DynamicSlider("Range");
  auto* slider = dynamic_cast<KEPVidCtlSlider*>(Part(control, "ValueSlider"));
  ASSERT_EQ(Type(control, "ValueEditor", "1500"), S_OK);
  EXPECT_EQ(Stored(x_), 1.5f) << "beyond the soft range, within the hard one";
  EXPECT_EQ(slider->GetValue(), slider->GetMaximum());
  ASSERT_EQ(Type(control, "ValueEditor", "2500"), S_OK);
  EXPECT_EQ(Stored(x_), 1.5f) << "beyond the hard range: refused";
  ASSERT_EQ(Type(control, "ValueEditor", "-1000"), S_OK);
  EXPECT_EQ(Stored(x_), -1.0f);
  EXPECT_EQ(slider->GetValue(), slider->GetMinimum());
}

TEST_F(ModuleControlsStyle, TwoControlsOfOneParameterStayInStep) {
  KEPRshUIScalarSoftHardRange* a = DynamicSlider("A");
  KEPRshUIScalarSoftHardRange* b = DynamicSlider("B");
  ASSERT_EQ(Type(a, "ValueEditor", "250"), S_OK);
  EXPECT_EQ(Stored(x_), 0.25f);
  EXPECT_EQ(EditorText(b, "ValueEditor"), EditorText(a, "ValueEditor"));
  // A write from elsewhere (the classic editor, a script) reaches both.
  ASSERT_EQ(x_->SetScalarValue(0.75f), S_OK);
  char shown[32];
  std::snprintf(shown, sizeof shown, "%.*f", a->GetDecimalPrecision(), 750.0);
  EXPECT_EQ(EditorText(a, "ValueEditor"), shown);
  EXPECT_EQ(EditorText(b, "ValueEditor"), shown);
  // A change of the user's unit shows with the next announcement.
  KEPICkeMagnitude* length = KEPParmDictionary::FindMagnitude(KEPParmDictionary::LengthType);
  ASSERT_EQ(length->SetCurrentUnit(KEPParmDictionary::FindUnit(u"cm")), S_OK);
  ASSERT_EQ(x_->SetScalarValue(0.5f), S_OK);
  auto* label = dynamic_cast<KEPVidCtlLabel*>(Part(b, "UnitLabel"));
  EXPECT_EQ(label->GetText(), KEPUnicodeString(u"cm"));
}

}  // namespace

// The integer control: what SetParameter reads, styles and announces, its failures, its
// description; and the bundled sheet's integer classes over it (the style engine's parameter
// steps, two-way writes into a parameter, combo entries that carry values).
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "KEPHostConfiguration.h"
#include "KEPISYPIntrospectable.h"
#include "KEPRshUICtlParameterIntegral1.h"
#include "KEPRshViewModule.h"
#include "KEPSYPMetaClass.h"
#include "KEPTestSupport.h"
#include "KEPVidCtlCheckBox.h"
#include "KEPVidCtlImageCombo.h"
#include "KEPVidCtlSlider.h"
#include "KEPVidCtlSpinBox.h"
#include "KEPVidLayGrid.h"
#include "KEPVidStyleValues.h"
#include "KEPVidTree.h"

namespace keptest {
namespace {

using Keys = std::vector<std::pair<std::string, std::string>>;

class Integral1Test : public Fixture {
 protected:
  void SetUp() override {
    Fixture::SetUp();
    KEPRshViewRegister();
    world_.emplace();
    root_ = KEP_var<KEPVidWidget>::Adopt(new KEPVidLayGrid(nullptr, "root"));
  }
  void TearDown() override {
    root_.Reset();
    world_.reset();
    Fixture::TearDown();
  }
  /// Integer "p" of a node of its own, with keys after the name (".Widget").
  KEPHostParameter* Param(int value, const Keys& config) {
    const std::string type = "t" + std::to_string(++types_);
    world_->Add(Type(type).Param("p", Integer(value)));
    for (const auto& [suffix, text] : config)
      KEPHostConfiguration::SetValue(type, "p" + suffix, text);
    return world_->Param(world_->Node(type), "p");
  }
  /// A control under the root, given `parameter`.
  KEPRshUICtlParameterIntegral1* Control(KEPIRshParameter* parameter) {
    auto* control = new KEPRshUICtlParameterIntegral1();
    control->SetFather(root_.Get());
    control->SetName("Row" + std::to_string(++rows_));
    control->SetParameter(parameter);
    return control;
  }
  template <class Part>
  static Part* PartOf(KEPVidWidget* control, const char* path) {
    std::string error;
    auto* part = dynamic_cast<Part*>(KEPVidFindByPath(control, path, error));
    EXPECT_NE(part, nullptr) << path << ": " << error;
    return part;
  }
  static HRESULT Act(KEPVidWidget* control, const char* path, KEPVidAction action,
                     const char* argument) {
    std::string error;
    return KEPVidInject(control, path, action, argument, error);
  }
  static int Stored(KEPIRshParameter* parameter) {
    int value = -999;
    parameter->GetIntegerValue(value);
    return value;
  }
  static std::vector<std::string> Assertions(const TraceCapture& capture) {
    std::vector<std::string> texts;
    for (const KEPTraceEntry& e : capture.Entries())
      if (e.level == KEPTraceLevel::Assertion) texts.push_back(e.text + " @" + e.file);
    return texts;
  }
  /// Counts the announcements of `property` by `control`.
  static int* CountAnnouncements(KEPVidCtl* control, std::string property) {
    auto* count = new int(0);
    control->GetIntrospectionAdapter()->AddListener(
        [count, property](std::string_view name) { *count += name == property; });
    return count;
  }

  std::optional<World> world_;
  KEP_var<KEPVidWidget> root_;
  int types_ = 0;
  int rows_ = 0;
};

TEST_F(Integral1Test, ComboNamesReadTheirConfigurationAndEveryNameStyles) {
  struct Row {
    std::optional<std::string> widget;
    std::string configuration;  // what the control publishes
    std::string styleClass;
  };
  for (const Row& row :
       {Row{"combo", "0:Off;1:On", "combo"}, Row{"comboMaterial", "0:Off;1:On", "comboMaterial"},
        Row{"slider", "", "slider"}, Row{"Combo", "", "Combo"}, Row{"xcombo", "", "xcombo"},
        Row{std::nullopt, "", "spinner"}}) {
    SCOPED_TRACE(row.styleClass);
    Keys config = {{".ComboConfiguration", "0:Off;1:On"}};
    if (row.widget) config.emplace_back(".Widget", *row.widget);
    TraceCapture capture;
    KEPRshUICtlParameterIntegral1* control = Control(Param(1, config));
    EXPECT_EQ(control->GetComboConfiguration(), row.configuration);
    EXPECT_EQ(control->GetStyleSheet() + "/" + control->GetStyleName() + "/" +
                  control->GetStyleClass().ToUTF8(),
              "KEPRshUI.sypstyle/Default/" + row.styleClass);
    EXPECT_TRUE(Assertions(capture).empty());
    KEPSYPValue published;
    ASSERT_EQ(control->GetIntrospectionAdapter()->GetProperty("ComboConfiguration", published),
              S_OK);
    EXPECT_EQ(std::get<KEPString>(published), row.configuration);
  }
}

TEST_F(Integral1Test, MissingComboConfigurationStopsBeforeStyleAndAnnouncement) {
  auto* control = new KEPRshUICtlParameterIntegral1();
  control->SetFather(root_.Get());
  const std::unique_ptr<int> announced(CountAnnouncements(control, "Parameter"));
  TraceCapture capture;
  control->SetParameter(Param(1, {{".Widget", "combo"}}));
  EXPECT_EQ(Assertions(capture),
            std::vector<std::string>{
                "AssertionFailed:SUCCEEDED( result_read_value ) && \"Could not find combo "
                "configuration\" @RenderingShader/KEPRshView.m/src/KEPRshUICtlParameterIntegral1"});
  EXPECT_TRUE(control->GetStyleClass().IsEmpty());
  EXPECT_EQ(control->GetChildCount(), 0u);
  EXPECT_EQ(*announced, 0);
}

TEST_F(Integral1Test, SettingNoneReleasesAndStillAnnounces) {
  KEPHostParameter* p = Param(1, {{".Widget", "check"}});
  const unsigned long before = p->AddRef() - 1;
  p->Release();
  KEPRshUICtlParameterIntegral1* control = Control(p);
  EXPECT_EQ(p->AddRef() - 1, before + 1);  // the control holds one
  p->Release();
  const std::unique_ptr<int> announced(CountAnnouncements(control, "Parameter"));
  control->SetParameter(nullptr);
  EXPECT_EQ(*announced, 1);
  EXPECT_EQ(control->GetParameter().Get(), nullptr);
  EXPECT_EQ(p->AddRef() - 1, before);
  p->Release();
}

TEST_F(Integral1Test, DescriptionNamesNoBaseAndTwoReadOnlyProperties) {
  const auto control =
      KEP_var<KEPRshUICtlParameterIntegral1>::Adopt(new KEPRshUICtlParameterIntegral1());
  const KEPSYPMetaClass* meta = control->GetIntrospectionAdapter()->GetSYPMetaClass();
  ASSERT_NE(meta, nullptr);
  EXPECT_EQ(meta->GetName(), "KEPRshUICtlParameterIntegral1");
  EXPECT_EQ(meta->GetBaseName(), "");
  for (const auto& [name, type] :
       {std::pair("Parameter", "KEPIRshParameter"), std::pair("ComboConfiguration", "KEPString")}) {
    const KEPSYPProperty* property = meta->FindProperty(name);
    ASSERT_NE(property, nullptr) << name;
    EXPECT_EQ(property->type, type);
    EXPECT_EQ(property->set, nullptr);
    EXPECT_EQ(property->batch, meta->FindProperty("Parameter")->batch);  // one batch of two
  }
  // A control without a parameter publishes none, and an empty configuration.
  KEPSYPValue value;
  control->GetIntrospectionAdapter()->GetProperty("Parameter", value);
  EXPECT_TRUE(std::holds_alternative<std::monostate>(value));
}

// --- The bundled sheet over the control

TEST_F(Integral1Test, ComboShowsConfiguredEntriesAndWritesTheirValues) {
  KEPHostParameter* p = Param(
      4, {{".Widget", "combo"}, {".ComboConfiguration", " 1:Draft ; 4:Fine=fine.png;Finest "}});
  KEPRshUICtlParameterIntegral1* control = Control(p);
  auto* combo = PartOf<KEPVidCtlImageCombo>(control, "ValueCombo");
  ASSERT_NE(combo, nullptr);
  ASSERT_EQ(combo->GetItemCount(), 3);
  EXPECT_EQ(combo->GetItemLabel(2).ToUTF8(), "Finest");
  EXPECT_EQ(combo->GetItemImage(1), "fine.png");
  EXPECT_EQ(combo->GetSelect(), 1);  // the entry carrying 4
  ASSERT_EQ(Act(control, "ValueCombo", KEPVidAction::Select, "Finest"), S_OK);
  EXPECT_EQ(Stored(p), 5);  // the value after the previous entry's
  // A write from elsewhere moves the selection; a value no entry carries selects nothing.
  p->SetIntegerValue(1);
  EXPECT_EQ(combo->GetSelect(), 0);
  p->SetIntegerValue(3);
  EXPECT_EQ(combo->GetSelect(), -1);
}

TEST_F(Integral1Test, MalformedEntriesAreLeftOutAndNamed) {
  TraceCapture capture;
  KEPRshUICtlParameterIntegral1* control = Control(
      Param(0, {{".Widget", "combo"}, {".ComboConfiguration", "x:Bad;0:Off;1:;0:Again;On"}}));
  auto* combo = PartOf<KEPVidCtlImageCombo>(control, "ValueCombo");
  ASSERT_EQ(combo->GetItemCount(), 2);
  EXPECT_EQ(combo->GetItemLabel(1).ToUTF8(), "On");
  std::vector<std::string> warnings;
  for (const KEPTraceEntry& e : capture.Entries())
    if (e.channel == "KEPVidStyle" && e.level == KEPTraceLevel::Warning) warnings.push_back(e.text);
  ASSERT_EQ(warnings.size(), 3u);
  EXPECT_NE(warnings[0].find("parameter = p,"), std::string::npos) << warnings[0];
  EXPECT_NE(warnings[0].find("entry = \"x:Bad\""), std::string::npos) << warnings[0];
  EXPECT_NE(warnings[1].find("entry = \"1:\""), std::string::npos) << warnings[1];
  EXPECT_NE(warnings[2].find("entry = \"0:Again\""), std::string::npos) << warnings[2];
}

TEST_F(Integral1Test, ComboItemsText) {
  struct Row {
    const char* text;
    std::vector<int> values;
    std::vector<std::string> labels;
    std::size_t faults;
  };
  for (const Row& row : {
           Row{"Draft;Medium;High", {0, 1, 2}, {"Draft", "Medium", "High"}, 0},
           Row{"-2:Low;High;;", {-2, -1}, {"Low", "High"}, 0},
           Row{"Logo=C:/logo.png", {0}, {"Logo"}, 0},
           Row{"7 : Seven = s.png", {7}, {"Seven"}, 0},
           Row{"2147483647:Top;Over", {2147483647}, {"Top"}, 1},
           Row{"99999999999:Big;1.5:Half;:Empty", {}, {}, 3},
           Row{"", {}, {}, 0},
       }) {
    SCOPED_TRACE(row.text);
    std::vector<KEPVidStyleValues::ComboFault> faults;
    const auto entries = KEPVidStyleValues::ParseComboItems(row.text, faults);
    std::vector<int> values;
    std::vector<std::string> labels;
    for (const auto& e : entries) {
      values.push_back(e.value);
      labels.push_back(e.label);
    }
    EXPECT_EQ(values, row.values);
    EXPECT_EQ(labels, row.labels);
    EXPECT_EQ(faults.size(), row.faults);
  }
}

TEST_F(Integral1Test, CheckSliderAndSpinnerEditTheValueWithinTheRange) {
  KEPHostParameter* c = Param(0, {{".Widget", "check"}});
  KEPRshUICtlParameterIntegral1* check = Control(c);
  ASSERT_EQ(Act(check, "ValueCheck", KEPVidAction::Toggle, "on"), S_OK);
  EXPECT_EQ(Stored(c), 1);
  c->SetIntegerValue(0);
  EXPECT_FALSE(PartOf<KEPVidCtlCheckBox>(check, "ValueCheck")->IsChecked());

  for (const char* kind : {"slider", "wheel"}) {
    SCOPED_TRACE(kind);
    KEPHostParameter* s =
        Param(10, {{".Widget", kind}, {".Min", "-5"}, {".Max", "250"}, {".Step", "5"}});
    KEPRshUICtlParameterIntegral1* slider = Control(s);
    auto* bar = PartOf<KEPVidCtlSlider>(slider, "IntegerSlider/ValueSlider");
    auto* box = PartOf<KEPVidCtlSpinBox>(slider, "IntegerSlider/ValueSpinner");
    EXPECT_EQ(bar->GetMinimum(), -5);
    EXPECT_EQ(bar->GetMaximum(), 250);
    EXPECT_EQ(box->GetSingleStep(), 5);
    ASSERT_EQ(Act(slider, "IntegerSlider/ValueSlider", KEPVidAction::Set, "200"), S_OK);
    EXPECT_EQ(Stored(s), 200);
    EXPECT_EQ(box->GetValue(), 200);  // the other part follows the parameter
  }

  // An unknown widget name and no widget at all both get a spin box; without a configured range
  // it spans -100000..100000.
  for (const std::optional<std::string>& widget :
       {std::optional<std::string>("knob"), std::optional<std::string>()}) {
    Keys config;
    if (widget) config.emplace_back(".Widget", *widget);
    KEPHostParameter* n = Param(150, config);
    KEPRshUICtlParameterIntegral1* spinner = Control(n);
    auto* box = PartOf<KEPVidCtlSpinBox>(spinner, "ValueSpinner");
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->GetValue(), 150);
    EXPECT_EQ(box->GetMinimum(), -100000);
    ASSERT_EQ(Act(spinner, "ValueSpinner", KEPVidAction::Set, "-7"), S_OK);
    EXPECT_EQ(Stored(n), -7);
  }
}

TEST_F(Integral1Test, ControlOutlivingItsModelAnswersNothing) {
  KEPRshUICtlParameterIntegral1* control =
      Control(Param(3, {{".Widget", "combo"}, {".ComboConfiguration", "Zero;One;Two;Three"}}));
  world_.reset();  // the control keeps its parameter: the value stays readable
  EXPECT_EQ(PartOf<KEPVidCtlImageCombo>(control, "ValueCombo")->GetSelect(), 3);
  EXPECT_EQ(Act(control, "ValueCombo", KEPVidAction::Select, "One"), S_OK);
  EXPECT_EQ(Stored(control->GetParameter().Get()), 1);
}

}  // namespace
}  // namespace keptest

// The scalar layout's builder: the control each kind gets, the ratio's sibling, the styles, the
// traces of the kind and of the outcome, and the failures.
#include "ImmWidgetTestSupport.h"
#include "KEPRshParameterScalarImmLayout.h"
#include "KEPRshUIScalarRatio.h"
#include "KEPRshUIScalarSoftHardRange.h"

namespace keptest {
namespace {

class ScalarBuilderTest : public ImmWidgetTest {
 protected:
  /// Builds the control of `parameter` under the root; `widget` starts as a non-null sentinel.
  HRESULT Build(KEPIRshParameter* parameter, KEPVidWidget*& widget) {
    widget = Root();
    return KEPQueryVar<KEPIRshParameterImmLayout>(parameter)->BuildWidget(Root(), "Row3", widget);
  }
  /// The entries of the layout's channel.
  static std::vector<KEPTraceEntry> Traced(const TraceCapture& capture) {
    std::vector<KEPTraceEntry> entries;
    for (const KEPTraceEntry& e : capture.Entries())
      if (e.channel == "KEPRshParameterConfiguration") entries.push_back(e);
    return entries;
  }
};

TEST_F(ScalarBuilderTest, ScalarWidgetForEveryKindButTheIntrospectableOnes) {
  // Kinds are compared as written ("Slider" is no "slider"); the widget lower-cases them itself.
  const std::pair<std::optional<std::string>, const char*> rows[] = {
      {"slider", "slider"},      {"wheel", "wheel"},   {"spinner", "spinner"},
      {"no-value", "no-value"},  {"Slider", "slider"}, {"Dynamic-Slider", "dynamic-slider"},
      {std::nullopt, "no-value"}};
  for (const auto& [configured, widgetKind] : rows) {
    SCOPED_TRACE(widgetKind);
    Keys config = {{".Min", "0"}, {".Max", "1"}};
    if (configured) config.emplace_back(".Widget", *configured);
    KEPHostParameter* p = Param(0.5f, config);
    TraceCapture capture;
    KEPVidWidget* widget = nullptr;
    ASSERT_EQ(Build(p, widget), S_OK);
    const auto* scalar = dynamic_cast<KEPRshParameterScalarImmWidget*>(widget);
    ASSERT_NE(scalar, nullptr);
    EXPECT_EQ(scalar->GetKind(), widgetKind);
    EXPECT_EQ(widget->GetName(), "Row3");
    EXPECT_EQ(widget->GetFather(), Root());
    EXPECT_TRUE(widget->IsAKindOf("KEPRshParameterImmWidget"));
    // The kind once (the widget reads it again silently), then the outcome.
    const std::string kind = configured.value_or("no-value");
    const auto entries = Traced(capture);
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries[0].level, configured ? KEPTraceLevel::Info : KEPTraceLevel::Warning);
    EXPECT_EQ(entries[0].text, (configured ? "Parameter p's widget is " + kind
                                           : "Parameter p's widget defaulted to " + kind) +
                                   " { type = KEPRmaScalar }");
    EXPECT_EQ(entries[1].level, KEPTraceLevel::Info);
    EXPECT_EQ(entries[1].text, "Widget successfully built");
  }
  const KEPMetaClass* meta = KEPRshParameterImmWidget::MetaObject();
  EXPECT_EQ(std::string(meta->SecondName()) + "/" + meta->Framework(), "KEPNull/RenderingShader");
  EXPECT_STREQ(meta->Base()->Name(), "KEPVidLayGrid");
}

TEST_F(ScalarBuilderTest, DynamicSliderAndRatioAreStyledIntrospectableControls) {
  KEPVidWidget* range = nullptr;
  ASSERT_EQ(
      Build(Param(0.5f, {{".Widget", "dynamic-slider"}, {".Min", "0"}, {".Max", "1"}}), range),
      S_OK);
  EXPECT_DOUBLE_EQ(dynamic_cast<KEPRshUIScalarSoftHardRange&>(*range).GetValue(), 0.5);
  KEPHostShaderNode* node =
      Node({{"scale_u", Scalar(2.0f)}, {"scale_v", Scalar(3.0f)}},
           {{"scale_u.Widget", "ratio"}, {"scale_u.SecondaryParameter", "scale_v"}});
  KEPVidWidget* ratio = nullptr;
  ASSERT_EQ(Build(ParamOf(node, "scale_u"), ratio), S_OK);
  EXPECT_EQ(dynamic_cast<KEPRshUIScalarRatio&>(*ratio).GetValues(), (KEPMathPoint2D{2.0, 3.0}));
  for (const auto& [widget, kind] :
       {std::pair(range, "dynamic-slider"), std::pair(ratio, "ratio")}) {
    SCOPED_TRACE(kind);
    const auto& control = dynamic_cast<const KEPVidCtl&>(*widget);
    EXPECT_EQ(control.GetStyleSheet() + "/" + control.GetStyleName() + "/" +
                  control.GetStyleClass().ToUTF8(),
              std::string("KEPRshUI.sypstyle/Default/") + kind);
    EXPECT_EQ(widget->GetName(), "Row3");
    EXPECT_EQ(widget->GetFather(), Root());
  }
}

TEST_F(ScalarBuilderTest, RatioWithoutItsSiblingBuildsNothing) {
  for (const Keys& config :
       {Keys{{"scale_u.Widget", "ratio"}},
        Keys{{"scale_u.Widget", "ratio"}, {"scale_u.SecondaryParameter", "scale_w"}}}) {
    KEPHostShaderNode* node = Node({{"scale_u", Scalar(2.0f)}, {"scale_v", Scalar(3.0f)}}, config);
    TraceCapture capture;
    KEPVidWidget* widget = nullptr;
    EXPECT_EQ(Build(ParamOf(node, "scale_u"), widget), E_FAIL);
    EXPECT_EQ(widget, nullptr);
    EXPECT_EQ(Root()->GetChildCount(), 0u);
    const auto entries = Traced(capture);
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries[1].level, KEPTraceLevel::Error);
    EXPECT_EQ(entries[1].text, "Widget successfully built");
    EXPECT_EQ(entries[1].file, "RenderingShader/KEPRshView.m/src/KEPRshParameterScalarImmLayout");
    EXPECT_EQ(entries[1].line, 165);
  }
}

TEST_F(ScalarBuilderTest, MissingParentOrParameterFailsBeforeAnyTrace) {
  const auto layout = KEPQueryVar<KEPIRshParameterImmLayout>(Param(0.5f, {{".Widget", "slider"}}));
  // A behaviour that extends no parameter.
  const auto detached =
      KEP_var<KEPBaseUnknown>::Adopt(KEPRshParameterScalarImmLayout::CreateItself());
  const auto lonely = KEPQueryVar<KEPIRshParameterImmLayout>(detached);
  TraceCapture capture;
  KEPVidWidget* widget = Root();
  EXPECT_EQ(layout->BuildWidget(nullptr, "w", widget), E_FAIL);
  EXPECT_EQ(widget, nullptr);
  widget = Root();
  EXPECT_EQ(lonely->BuildWidget(Root(), "w", widget), E_NOINTERFACE);
  EXPECT_EQ(widget, nullptr);
  EXPECT_EQ(lonely->BuildWidget(nullptr, "w", widget), E_FAIL);  // the parent is checked first
  EXPECT_TRUE(capture.Entries().empty());
  EXPECT_EQ(Root()->GetChildCount(), 0u);
}

}  // namespace
}  // namespace keptest

// The scalar layout's builder: which control each kind gets, the ratio's sibling, the styles, the
// traces of the kind and of the outcome, and the failures.
#include "ImmWidgetTestSupport.h"
#include "KEPIRshParameterImmLayout.h"
#include "KEPRshParameterScalarImmLayout.h"
#include "KEPRshUIScalarRatio.h"
#include "KEPRshUIScalarSoftHardRange.h"

namespace keptest {
namespace {

constexpr const char* kChannel = "KEPRshParameterConfiguration";
constexpr const char* kSource = "RenderingShader/KEPRshView.m/src/KEPRshParameterScalarImmLayout";

class ScalarBuilderTest : public ImmWidgetTest {
 protected:
  /// Builds the control of `parameter` under the root as "ParameterWidget3".
  HRESULT Build(KEPIRshParameter* parameter, KEPVidWidget*& widget) {
    const auto layout = KEPQueryVar<KEPIRshParameterImmLayout>(parameter);
    EXPECT_TRUE(layout);
    widget = Root();  // must be overwritten
    return layout ? layout->BuildWidget(Root(), "ParameterWidget3", widget) : E_NOINTERFACE;
  }
  static std::vector<const KEPTraceEntry*> OnChannel(const TraceCapture& capture) {
    std::vector<const KEPTraceEntry*> entries;
    for (const KEPTraceEntry& e : capture.Entries())
      if (e.channel == kChannel) entries.push_back(&e);
    return entries;
  }
};

TEST_F(ScalarBuilderTest, ScalarWidgetForEveryKindButTheIntrospectableOnes) {
  struct Row {
    std::optional<std::string> configured;
    KEPTraceLevel kindLevel;
    std::string kindTrace;
    const char* widgetKind;  // as the widget itself reads it
  };
  const Row rows[] = {
      {"slider", KEPTraceLevel::Info, "Parameter p's widget is slider { type = KEPRmaScalar }",
       "slider"},
      {"wheel", KEPTraceLevel::Info, "Parameter p's widget is wheel { type = KEPRmaScalar }",
       "wheel"},
      {"spinner", KEPTraceLevel::Info, "Parameter p's widget is spinner { type = KEPRmaScalar }",
       "spinner"},
      {"no-value", KEPTraceLevel::Info, "Parameter p's widget is no-value { type = KEPRmaScalar }",
       "no-value"},
      // Compared as written: "Slider" is no "slider" for the builder (the widget lower-cases).
      {"Slider", KEPTraceLevel::Info, "Parameter p's widget is Slider { type = KEPRmaScalar }",
       "slider"},
      {"Ratio", KEPTraceLevel::Info, "Parameter p's widget is Ratio { type = KEPRmaScalar }",
       "ratio"},
      {std::nullopt, KEPTraceLevel::Warning,
       "Parameter p's widget defaulted to no-value { type = KEPRmaScalar }", "no-value"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.kindTrace);
    Keys config = {{".Min", "0"}, {".Max", "1"}};
    if (row.configured) config.emplace_back(".Widget", *row.configured);
    KEPHostParameter* p = Param(0.5f, config);
    const std::size_t before = Root()->GetChildCount();
    TraceCapture capture;
    KEPVidWidget* widget = nullptr;
    ASSERT_EQ(Build(p, widget), S_OK);
    auto* scalar = dynamic_cast<KEPRshParameterScalarImmWidget*>(widget);
    ASSERT_NE(scalar, nullptr);
    EXPECT_EQ(scalar->GetKind(), row.widgetKind);
    EXPECT_EQ(widget->GetName(), "ParameterWidget3");
    EXPECT_EQ(widget->GetFather(), Root());
    EXPECT_EQ(Root()->GetChildCount(), before + 1);
    // The kind once (the widget reads it again without tracing), then the outcome.
    const auto entries = OnChannel(capture);
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries[0]->level, row.kindLevel);
    EXPECT_EQ(entries[0]->text, row.kindTrace);
    EXPECT_EQ(entries[1]->level, KEPTraceLevel::Info);
    EXPECT_EQ(entries[1]->text, "Widget successfully built");
  }
}

TEST_F(ScalarBuilderTest, WidgetClassesAreRegisteredUnderTheirNames) {
  KEPVidWidget* widget = nullptr;
  ASSERT_EQ(Build(Param(0.5f, {{".Widget", "slider"}}), widget), S_OK);
  const KEPMetaClass* meta = KEPRshParameterImmWidget::MetaObject();
  EXPECT_STREQ(meta->Name(), "KEPRshParameterImmWidget");
  EXPECT_STREQ(meta->SecondName(), "KEPNull");
  EXPECT_STREQ(meta->Framework(), "RenderingShader");
  EXPECT_TRUE(widget->IsA("KEPRshParameterScalarImmWidget"));
  EXPECT_TRUE(widget->IsAKindOf("KEPRshParameterImmWidget"));
  EXPECT_TRUE(widget->IsAKindOf("KEPVidLayGrid"));
}

TEST_F(ScalarBuilderTest, DynamicSliderAndRatioAreStyledIntrospectableControls) {
  KEPVidWidget* range = nullptr;
  ASSERT_EQ(
      Build(Param(0.5f, {{".Widget", "dynamic-slider"}, {".Min", "0"}, {".Max", "1"}}), range),
      S_OK);
  auto* rangeControl = dynamic_cast<KEPRshUIScalarSoftHardRange*>(range);
  ASSERT_NE(rangeControl, nullptr);
  EXPECT_DOUBLE_EQ(rangeControl->GetValue(), 0.5);

  KEPHostShaderNode* node =
      Node({{"scale_u", Scalar(2.0f)}, {"scale_v", Scalar(3.0f)}},
           {{"scale_u.Widget", "ratio"}, {"scale_u.SecondaryParameter", "scale_v"}});
  KEPVidWidget* ratio = nullptr;
  ASSERT_EQ(Build(ParamOf(node, "scale_u"), ratio), S_OK);
  auto* ratioControl = dynamic_cast<KEPRshUIScalarRatio*>(ratio);
  ASSERT_NE(ratioControl, nullptr);
  EXPECT_EQ(ratioControl->GetValues(), (KEPMathPoint2D{2.0, 3.0}));

  const std::pair<KEPVidWidget*, const char*> styled[] = {{range, "dynamic-slider"},
                                                          {ratio, "ratio"}};
  for (const auto& [widget, kind] : styled) {
    SCOPED_TRACE(kind);
    const auto* control = dynamic_cast<KEPVidCtl*>(widget);
    ASSERT_NE(control, nullptr);
    EXPECT_EQ(control->GetStyleSheet(), "KEPRshUI.sypstyle");
    EXPECT_EQ(control->GetStyleName(), "Default");
    EXPECT_EQ(control->GetStyleClass().ToUTF8(), kind);
    EXPECT_EQ(widget->GetName(), "ParameterWidget3");
    EXPECT_EQ(widget->GetFather(), Root());
  }
}

TEST_F(ScalarBuilderTest, RatioWithoutItsSiblingBuildsNothing) {
  const std::pair<const char*, Keys> cases[] = {
      {"no SecondaryParameter key", {{"scale_u.Widget", "ratio"}}},
      {"names a parameter the shader lacks",
       {{"scale_u.Widget", "ratio"}, {"scale_u.SecondaryParameter", "scale_w"}}},
  };
  for (const auto& [what, config] : cases) {
    SCOPED_TRACE(what);
    KEPHostShaderNode* node = Node({{"scale_u", Scalar(2.0f)}, {"scale_v", Scalar(3.0f)}}, config);
    TraceCapture capture;
    KEPVidWidget* widget = nullptr;
    EXPECT_EQ(Build(ParamOf(node, "scale_u"), widget), E_FAIL);
    EXPECT_EQ(widget, nullptr);
    EXPECT_EQ(Root()->GetChildCount(), 0u);
    const auto entries = OnChannel(capture);
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries[1]->level, KEPTraceLevel::Error);
    EXPECT_EQ(entries[1]->text, "Widget successfully built");
    EXPECT_EQ(entries[1]->file, kSource);
    EXPECT_EQ(entries[1]->line, 165);
  }
}

TEST_F(ScalarBuilderTest, MissingParentOrParameterFailsBeforeAnyTrace) {
  KEPHostParameter* p = Param(0.5f, {{".Widget", "slider"}});
  const auto layout = KEPQueryVar<KEPIRshParameterImmLayout>(p);
  // A behaviour that extends no parameter.
  const auto detached =
      KEP_var<KEPBaseUnknown>::Adopt(KEPRshParameterScalarImmLayout::CreateItself());
  const auto detachedLayout = KEPQueryVar<KEPIRshParameterImmLayout>(detached);
  ASSERT_TRUE(detachedLayout);

  TraceCapture capture;
  KEPVidWidget* widget = Root();
  EXPECT_EQ(layout->BuildWidget(nullptr, "w", widget), E_FAIL);
  EXPECT_EQ(widget, nullptr);
  widget = Root();
  EXPECT_EQ(detachedLayout->BuildWidget(Root(), "w", widget), E_NOINTERFACE);
  EXPECT_EQ(widget, nullptr);
  EXPECT_EQ(detachedLayout->BuildWidget(nullptr, "w", widget), E_FAIL);  // the parent first
  EXPECT_TRUE(capture.Entries().empty());
  EXPECT_EQ(Root()->GetChildCount(), 0u);
}

}  // namespace
}  // namespace keptest

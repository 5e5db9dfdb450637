// The colour layout's builder: the control each kind gets, the spinner's style and its parts, the
// traces of the kind and of the outcome, a build without a parent, and the missing interfaces.
#include "ImmWidgetTestSupport.h"
#include "KEPRshParameterColorImmLayout.h"
#include "KEPRshUICtlParameterColor.h"
#include "KEPRshUICtlScalarSpinner.h"

namespace keptest {
namespace {

class ColorBuilderTest : public ImmWidgetTest {
 protected:
  /// A colour parameter "c" alone in a node; `config` holds keys after the name (".Widget").
  KEPHostParameter* ColorParam(const Keys& config, float grey = 0.25f) {
    Keys keys;
    for (const auto& [suffix, text] : config) keys.emplace_back("c" + suffix, text);
    return ParamOf(Node({{"c", Color(grey, grey, grey)}}, keys), "c");
  }
  /// Builds the control of `parameter` under `parent`; `widget` starts as a non-null sentinel.
  HRESULT Build(KEPIRshParameter* parameter, KEPVidWidget* parent, KEPVidWidget*& widget) {
    widget = Root();
    return KEPQueryVar<KEPIRshParameterImmLayout>(parameter)->BuildWidget(parent, "Row2", widget);
  }
  /// The entries of the layout's channel.
  static std::vector<KEPTraceEntry> Traced(const TraceCapture& capture) {
    std::vector<KEPTraceEntry> entries;
    for (const KEPTraceEntry& e : capture.Entries())
      if (e.channel == "KEPRshParameterConfiguration") entries.push_back(e);
    return entries;
  }
};

TEST_F(ColorBuilderTest, ColourWidgetForColorAndEveryOtherKind) {
  // Kinds are compared as written: "Scalar-Spinner" is no "scalar-spinner".
  for (const std::optional<std::string>& configured :
       {std::optional<std::string>("color"), std::optional<std::string>("slider"),
        std::optional<std::string>("Scalar-Spinner"), std::optional<std::string>()}) {
    SCOPED_TRACE(configured.value_or("(none)"));
    Keys config;
    if (configured) config.emplace_back(".Widget", *configured);
    KEPHostParameter* c = ColorParam(config);
    TraceCapture capture;
    KEPVidWidget* widget = nullptr;
    ASSERT_EQ(Build(c, Root(), widget), S_OK);
    auto* colour = dynamic_cast<KEPRshUICtlParameterColor*>(widget);
    ASSERT_NE(colour, nullptr);
    EXPECT_EQ(widget->GetName(), "Row2");
    EXPECT_EQ(widget->GetFather(), Root());
    EXPECT_EQ(colour->GetHSL().lightness, 0.25f);
    // The kind, or the default it fell back to, then the outcome.
    const auto entries = Traced(capture);
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries[0].level, configured ? KEPTraceLevel::Info : KEPTraceLevel::Warning);
    EXPECT_EQ(entries[0].text,
              (configured ? "Parameter c's widget is " + *configured
                          : std::string("Parameter c's widget defaulted to color")) +
                  " { type = KEPRmaColor }");
    EXPECT_EQ(entries[1].level, KEPTraceLevel::Info);
    EXPECT_EQ(entries[1].text, "Widget successfully built");
  }
}

TEST_F(ColorBuilderTest, ScalarSpinnerIsStyledAndItsPartEditsTheGrey) {
  KEPHostParameter* c =
      ColorParam({{".Widget", "scalar-spinner"}, {".Min", "0"}, {".Max", "2"}, {".Step", "0.1"}});
  ASSERT_EQ(c->SetColorValue(0.2f, 0.4f, 0.6f, 0.5f), S_OK);
  TraceCapture capture;
  KEPVidWidget* widget = nullptr;
  ASSERT_EQ(Build(c, Root(), widget), S_OK);
  const auto* spinner = dynamic_cast<KEPRshUICtlScalarSpinner*>(widget);
  ASSERT_NE(spinner, nullptr);
  EXPECT_EQ(spinner->GetStyleSheet() + "/" + spinner->GetStyleName() + "/" +
                spinner->GetStyleClass().ToUTF8(),
            "KEPRshUI.sypstyle/Default/scalar-spinner");
  EXPECT_EQ(widget->GetName(), "Row2");
  EXPECT_EQ(widget->GetFather(), Root());
  EXPECT_EQ(Traced(capture).back().text, "Widget successfully built");
  EXPECT_TRUE(capture.Texts("KEPVidStyle").empty());

  // The style's spin box shows the grey level within the hard range, by steps of the precision
  // (".Step" 0.1: two decimals, a step of 0.01), and a person's value is written as a grey.
  auto* part = dynamic_cast<KEPVidCtlDoubleSpinBox*>(widget->FindNamedChild("ValueSpinner"));
  ASSERT_NE(part, nullptr);
  EXPECT_NEAR(part->GetValue(), 0.4, 1e-6);
  EXPECT_EQ(part->GetMinimum(), 0.0);
  EXPECT_EQ(part->GetMaximum(), 2.0);
  EXPECT_DOUBLE_EQ(part->GetSingleStep(), 0.01);
  EXPECT_EQ(part->GetDecimals(), 2);
  int writes = 0;
  const int token = KEPRshModelEvents::AddParameterObserver(
      [&](KEPIRshParameter* p, KEPRshParameterChangeKind) { writes += p == c ? 1 : 0; });
  Act(part, KEPVidAction::Set, "1.5");
  KEPRshModelEvents::RemoveObserver(token);
  float rgba[4] = {};
  c->GetColorValue(rgba[0], rgba[1], rgba[2], &rgba[3]);
  EXPECT_EQ((std::vector<float>(rgba, rgba + 4)), (std::vector<float>{1.5f, 1.5f, 1.5f, 1.0f}));
  EXPECT_EQ(writes, 1);
  EXPECT_DOUBLE_EQ(part->GetValue(), 1.5);
}

TEST_F(ColorBuilderTest, WithoutParentTheCallerOwnsTheControl) {
  for (const char* kind : {"color", "scalar-spinner"}) {
    SCOPED_TRACE(kind);
    KEPHostParameter* c = ColorParam({{".Widget", kind}});
    KEPVidWidget* widget = nullptr;
    ASSERT_EQ(Build(c, nullptr, widget), S_OK);
    ASSERT_NE(widget, nullptr);
    const auto owned = KEP_var<KEPVidWidget>::Adopt(widget);
    EXPECT_EQ(owned->GetFather(), nullptr);
    EXPECT_EQ(owned->GetName(), "Row2");
    EXPECT_EQ(Root()->GetChildCount(), 0u);
  }
}

TEST_F(ColorBuilderTest, MissingParameterFailsBeforeAnyTrace) {
  const auto detached =
      KEP_var<KEPBaseUnknown>::Adopt(KEPRshParameterColorImmLayout::CreateItself());
  const auto lonely = KEPQueryVar<KEPIRshParameterImmLayout>(detached);
  ASSERT_TRUE(lonely);
  TraceCapture capture;
  KEPVidWidget* widget = Root();
  EXPECT_EQ(lonely->BuildWidget(Root(), "w", widget), E_NOINTERFACE);
  EXPECT_EQ(widget, nullptr);
  widget = Root();
  EXPECT_EQ(lonely->BuildWidget(nullptr, "w", widget), E_NOINTERFACE);
  EXPECT_EQ(widget, nullptr);
  EXPECT_TRUE(capture.Entries().empty());
  EXPECT_EQ(Root()->GetChildCount(), 0u);
}

}  // namespace
}  // namespace keptest

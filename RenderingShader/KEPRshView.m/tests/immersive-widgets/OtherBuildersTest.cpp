// The builders of the vector, boolean, texture and connection-only layouts: the widget each
// makes, its name and father, the traces, the failures; and the boolean default's value texts.
#include "ImmWidgetTestSupport.h"
#include "KEPRshParameterBooleanImmLayout.h"
#include "KEPRshParameterBooleanImmWidget.h"
#include "KEPRshParameterShaderImmLayout.h"
#include "KEPRshParameterShaderImmWidget.h"
#include "KEPRshParameterTextureImmLayout.h"
#include "KEPRshParameterTextureImmWidget.h"
#include "KEPRshParameterVectorImmLayout.h"
#include "KEPRshParameterVectorImmWidget.h"

namespace keptest {
namespace {

using OtherBuildersTest = ImmWidgetTest;

TEST_F(OtherBuildersTest, EachTypeBuildsItsWidgetNamedAndFatheredWithTraces) {
  KEPHostShaderNode* node = Node(
      {{"v", Vector({1.0f, 2.0f, 3.0f})}, {"b", Boolean(true)}, {"t", Texture()}, {"s", Void()}},
      {{"v.Widget", "sliderx2"}});
  struct Row {
    const char *name, *type, *kindTrace, *widgetClass;
  } const rows[] = {
      {"v", "KEPRmaVector", "Parameter v's widget is sliderx2 { type = KEPRmaVector }",
       "KEPRshParameterVectorImmWidget"},
      {"b", "KEPRmaBoolean", "Parameter b's widget defaulted to check { type = KEPRmaBoolean }",
       "KEPRshParameterBooleanImmWidget"},
      {"t", "KEPRmaTexture", "Parameter t's widget defaulted to texture { type = KEPRmaTexture }",
       "KEPRshParameterTextureImmWidget"},
      {"s", "KEPRmaVoid", "Parameter s's widget defaulted to shader { type = KEPRmaVoid }",
       "KEPRshParameterShaderImmWidget"},
  };
  for (const Row& r : rows) {
    SCOPED_TRACE(r.name);
    const auto layout = KEPQueryVar<KEPIRshParameterImmLayout>(ParamOf(node, r.name));
    ASSERT_TRUE(layout);
    KEPVidWidget* widget = Root();
    EXPECT_EQ(layout->BuildWidget(nullptr, "Row7", widget), E_FAIL);
    EXPECT_EQ(widget, nullptr);

    TraceCapture capture;
    ASSERT_EQ(layout->BuildWidget(Root(), "Row7", widget), S_OK);
    ASSERT_NE(widget, nullptr);
    EXPECT_TRUE(widget->IsAKindOf(r.widgetClass));
    EXPECT_TRUE(widget->IsAKindOf("KEPRshParameterImmWidget"));
    EXPECT_EQ(widget->GetName(), "Row7");
    EXPECT_EQ(widget->GetFather(), Root());
    EXPECT_EQ(capture.Texts("KEPRshParameterConfiguration"),
              std::vector<std::string>({r.kindTrace, "Widget successfully built"}));
  }
}

TEST_F(OtherBuildersTest, DetachedLayoutsLackTheirParameter) {
  const KEP_var<KEPBaseUnknown> detached[] = {
      KEP_var<KEPBaseUnknown>::Adopt(KEPRshParameterVectorImmLayout::CreateItself()),
      KEP_var<KEPBaseUnknown>::Adopt(KEPRshParameterBooleanImmLayout::CreateItself()),
      KEP_var<KEPBaseUnknown>::Adopt(KEPRshParameterTextureImmLayout::CreateItself()),
      KEP_var<KEPBaseUnknown>::Adopt(KEPRshParameterShaderImmLayout::CreateItself()),
  };
  for (const auto& object : detached) {
    const auto layout = KEPQueryVar<KEPIRshParameterImmLayout>(object);
    ASSERT_TRUE(layout);
    TraceCapture capture;
    KEPVidWidget* widget = Root();
    EXPECT_EQ(layout->BuildWidget(Root(), "w", widget), E_NOINTERFACE);
    EXPECT_EQ(widget, nullptr);
    EXPECT_TRUE(capture.Entries().empty());
    EXPECT_EQ(layout->BuildWidget(nullptr, "w", widget), E_FAIL);
  }
  EXPECT_EQ(Root()->GetChildCount(), 0u);
}

TEST_F(OtherBuildersTest, BooleanDefaultTexts) {
  struct Row {
    const char* text;  // nullptr: no default configured
    HRESULT result;
    bool value;
  } const rows[] = {
      {"on", S_OK, true},    {"TRUE", S_OK, true}, {"OFF", S_OK, false},  {"false", S_OK, false},
      {"0", S_OK, false},    {"2", S_OK, true},    {"-1", S_OK, true},    {" 7 ", S_OK, true},
      {"Yes", E_FAIL, true}, {"", E_FAIL, true},   {nullptr, S_OK, true},
  };
  for (const Row& r : rows) {
    SCOPED_TRACE(r.text ? r.text : "(missing)");
    Keys config;
    if (r.text) config.emplace_back("b.Default", r.text);
    const auto layout =
        KEPQueryVar<KEPIRshParameterImmLayout>(ParamOf(Node({{"b", Boolean(false)}}, config), "b"));
    // The sentinel shows that a failure leaves the output as it was.
    bool value = !r.value;
    if (r.result == E_FAIL) value = true;
    EXPECT_EQ(layout->GetTypedDefault(value), r.result);
    EXPECT_EQ(value, r.value);
  }
}

}  // namespace
}  // namespace keptest

// The tree from outside: paths, injection by path, the JSON document and the readable text.
#include <gtest/gtest.h>

#include <cmath>
#include <nlohmann/json.hpp>
#include <string>

#include "KEPParmDictionary.h"
#include "KEPSYPMetaClass.h"
#include "KEPTestSupport.h"
#include "KEPVidCtlButton.h"
#include "KEPVidCtlEditor.h"
#include "KEPVidCtlExpander.h"
#include "KEPVidCtlLabel.h"
#include "KEPVidCtlSlider.h"
#include "KEPVidLayGrid.h"
#include "KEPVidTree.h"
#include "KEP_var.h"

namespace immjson {

// A control whose class registers introspected properties of every kind.
class Swatch : public KEPVidCtl {
  KEP_DECLARE_CLASS
 public:
  using KEPVidCtl::KEPVidCtl;
};
KEP_IMPLEMENT_CLASS(Swatch, KEPVidCtl, "Test")

}  // namespace immjson

namespace {

using Root = KEP_var<KEPVidWidget>;
using immjson::Swatch;

// The shape the editor builds for one group with one scalar row.
struct EditorTree {
  Root root = Root::Adopt(new KEPVidLayGrid(nullptr, "Editor"));
  KEPVidCtlExpander* group = new KEPVidCtlExpander(root.Get(), "ParameterGroup0");
  KEPVidLayGrid* layout = new KEPVidLayGrid(group, "ParameterGroup0Layout");
  KEPVidCtlLabel* label = new KEPVidCtlLabel(layout, "ParameterLabel0");
  KEPVidWidget* row = new KEPVidWidget(layout, "ParameterWidget0");
  KEPVidLayGrid* scalar = new KEPVidLayGrid(row, "ScalarLayout");
  KEPVidCtlSlider* slider = new KEPVidCtlSlider(scalar, "scalarSlider");
  KEPVidCtlEditor* editor = new KEPVidCtlEditor(scalar, "scalarEditor");

  EditorTree() {
    group->SetLabel(u"Diffuse");
    layout->SetColumnWeight(1, 1.0);
    label->SetText(u"Color weight");
    row->SetGridCell({0, 1, 1, 1, KEPVidAttach_All});
    scalar->SetCellSpacing(2, 2);
    slider->SetGridCell({0, 0, 1, 1, KEPVidAttach_Left | KEPVidAttach_Right});
    slider->SetValue(50);
    slider->SetTooltip(u"Value ranges from 0.00 to 1.00");
    slider->SetTooltipInitialDelay(0.1);
    editor->SetGridCell({0, 1, 1, 1, KEPVidAttach_None});
    editor->SetDataType(KEPVidEditor_Double);
    editor->SetValue(0.5);
  }
};

class ImmPaths : public keptest::Fixture {};

TEST_F(ImmPaths, PathsMayLeaveOutIntermediateLayouts) {
  EditorTree tree;
  std::string error;
  const struct {
    const char* path;
    KEPVidWidget* expected;
  } cases[] = {
      {"", tree.root.Get()},
      {"ParameterGroup0", tree.group},
      {"ParameterGroup0/ParameterWidget0/scalarSlider", tree.slider},
      {"ParameterGroup0/ParameterGroup0Layout/ParameterWidget0/ScalarLayout/scalarSlider",
       tree.slider},
      {"scalarEditor", tree.editor},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(KEPVidFindByPath(tree.root.Get(), c.path, error), c.expected) << c.path << error;
    if (c.expected != tree.root.Get()) {
      // The path the tree reports for a widget leads back to it.
      EXPECT_EQ(KEPVidFindByPath(tree.root.Get(), KEPVidPathOf(tree.root.Get(), c.expected), error),
                c.expected);
    }
  }
  EXPECT_EQ(KEPVidPathOf(tree.root.Get(), tree.editor),
            "ParameterGroup0/ParameterGroup0Layout/ParameterWidget0/ScalarLayout/scalarEditor");
  EXPECT_EQ(KEPVidPathOf(tree.group, tree.root.Get()), "") << "not below the root";
}

TEST_F(ImmPaths, SiblingsOfOneNameAreToldApartByIndexInPathsAndJson) {
  // A vector's sliders share a name; the second and third get "[1]" and "[2]" in their paths,
  // and those paths lead back to them, also through an unnamed layout in between.
  Root root = Root::Adopt(new KEPVidLayGrid(nullptr, "Editor"));
  auto* frame = new KEPVidLayGrid(root.Get(), "parameterDialog1");
  auto* unnamed = new KEPVidLayGrid(frame, "");
  KEPVidCtlSlider* sliders[3] = {new KEPVidCtlSlider(unnamed, "scalarSlider"),
                                 new KEPVidCtlSlider(unnamed, "scalarSlider"),
                                 new KEPVidCtlSlider(unnamed, "scalarSlider")};
  // A deeper widget of that name does not count among the shallower ones.
  new KEPVidCtlLabel(new KEPVidLayGrid(unnamed, ""), "scalarSlider");
  const std::string expected[] = {"parameterDialog1/scalarSlider",
                                  "parameterDialog1/scalarSlider[1]",
                                  "parameterDialog1/scalarSlider[2]"};
  const nlohmann::json json = nlohmann::json::parse(KEPVidToJsonText(root.Get()));
  std::string error;
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(KEPVidPathOf(root.Get(), sliders[i]), expected[i]);
    EXPECT_EQ(json["children"][0]["children"][0]["children"][i]["path"], expected[i]);
    EXPECT_EQ(KEPVidFindByPath(root.Get(), expected[i], error), sliders[i]) << error;
  }
  EXPECT_EQ(KEPVidFindByPath(root.Get(), "scalarSlider[0]", error), sliders[0]);

  const struct {
    const char* path;
    const char* message;
  } refused[] = {
      {"parameterDialog1/scalarSlider[3]", "segment 2 \"scalarSlider[3]\" names no widget"},
      {"parameterDialog1/scalarSlider[x]", "has an index that is no whole number"},
      {"parameterDialog1/scalarSlider[]", "has an index that is no whole number"},
      {"[1]", "has an index that is no whole number"},
  };
  for (const auto& c : refused) {
    EXPECT_EQ(KEPVidFindByPath(root.Get(), c.path, error), nullptr) << c.path;
    EXPECT_NE(error.find(c.message), std::string::npos) << error;
  }
}

TEST_F(ImmPaths, AnUnresolvedPathSaysWhichSegmentAndWhatIsThere) {
  EditorTree tree;
  const struct {
    const char* path;
    const char* message;
  } cases[] = {
      {"ParameterGroup0/Nope/scalarSlider",
       "widget path \"ParameterGroup0/Nope/scalarSlider\": segment 2 \"Nope\" names no widget "
       "below KEPVidCtlExpander \"ParameterGroup0\" (available: ParameterGroup0Layout)"},
      {"Missing",
       "segment 1 \"Missing\" names no widget below the root (available: "
       "ParameterGroup0)"},
      {"ParameterGroup0//scalarSlider", "segment 2 is empty"},
      {"/ParameterGroup0", "segment 1 is empty"},
      {"ParameterGroup0/", "segment 2 is empty"},
      {"ParameterGroup0/ParameterWidget0/scalarSlider/deeper",
       "segment 4 \"deeper\" names no widget below KEPVidCtlSlider \"scalarSlider\" "
       "(available: none: it has no named descendants)"},
  };
  for (const auto& c : cases) {
    std::string error;
    EXPECT_EQ(KEPVidFindByPath(tree.root.Get(), c.path, error), nullptr) << c.path;
    EXPECT_NE(error.find(c.message), std::string::npos) << error;
  }
}

TEST_F(ImmPaths, InjectionByPathActsAsAPersonAndNamesThePathWhenRefused) {
  EditorTree tree;
  int changed = 0;
  tree.slider->AddHandler(KEPVidEvent::ValueChanged,
                          [&](KEPVidWidget*, KEPVidEvent) { ++changed; });
  std::string error;
  EXPECT_EQ(KEPVidInject(tree.root.Get(), "ParameterWidget0/scalarSlider", KEPVidAction::Set, "75",
                         error),
            S_OK);
  EXPECT_EQ(tree.slider->GetValue(), 75);
  EXPECT_EQ(changed, 1);

  tree.group->SetSensitivity(false);
  EXPECT_EQ(KEPVidInject(tree.root.Get(), "ParameterWidget0/scalarSlider", KEPVidAction::Set, "10",
                         error),
            E_INVALIDARG);
  EXPECT_EQ(error.rfind("ParameterWidget0/scalarSlider: KEPVidCtlSlider \"scalarSlider\": ", 0), 0u)
      << error;
  EXPECT_EQ(KEPVidInject(tree.root.Get(), "nowhere", KEPVidAction::Press, "", error), E_INVALIDARG);
  EXPECT_NE(error.find("segment 1 \"nowhere\""), std::string::npos);
  EXPECT_EQ(tree.slider->GetValue(), 75);
}

TEST_F(ImmPaths, ActionWordsReadBothWays) {
  const char* words[] = {"set",      "type",  "press",  "toggle", "select", "expand",
                         "collapse", "color", "choose", "open",   "close"};
  for (int i = 0; i < 11; ++i) {
    KEPVidAction action = KEPVidAction::Set;
    ASSERT_TRUE(KEPVidParseAction(words[i], action)) << words[i];
    EXPECT_EQ(static_cast<int>(action), i) << words[i];
  }
  KEPVidAction action = KEPVidAction::Set;
  EXPECT_TRUE(KEPVidParseAction(" Press ", action));
  EXPECT_EQ(action, KEPVidAction::Press);
  EXPECT_FALSE(KEPVidParseAction("push", action));
  EXPECT_FALSE(KEPVidParseAction("", action));
}

// --- Serialised forms

TEST_F(ImmPaths, JsonCarriesTheCommonStateAndEachClasssOwn) {
  EditorTree tree;
  tree.editor->SetBackgroundColor({255, 255, 255, 50});
  const nlohmann::json json = KEPVidToJson(tree.root.Get());
  EXPECT_EQ(json["class"], "KEPVidLayGrid");
  EXPECT_EQ(json["path"], "");
  const nlohmann::json& group = json["children"][0];
  EXPECT_EQ(group["class"], "KEPVidCtlExpander");
  EXPECT_EQ(group["state"]["label"], "Diffuse");
  EXPECT_EQ(group["state"]["expanded"], false);

  const nlohmann::json& scalar = group["children"][0]["children"][1]["children"][0];
  EXPECT_EQ(scalar["state"]["horizontalSpacing"], 2);
  const nlohmann::json& slider = scalar["children"][0];
  EXPECT_EQ(slider["path"],
            "ParameterGroup0/ParameterGroup0Layout/ParameterWidget0/ScalarLayout/scalarSlider");
  EXPECT_EQ(slider["cell"], nlohmann::json::parse(R"({"row":0,"column":0,"rowSpan":1,
            "columnSpan":1,"attach":["left","right"]})"));
  EXPECT_EQ(slider["visible"], true);
  EXPECT_EQ(slider["layoutWhenInvisible"], true);
  EXPECT_EQ(slider["tooltip"], "Value ranges from 0.00 to 1.00");
  EXPECT_EQ(slider["tooltipDelay"], 0.1);
  EXPECT_EQ(slider["state"]["value"], 50);
  EXPECT_EQ(slider["state"]["magnifier"], true);
  EXPECT_FALSE(slider.contains("background")) << "only when set";
  const nlohmann::json& editor = scalar["children"][1];
  EXPECT_EQ(editor["background"], nlohmann::json::parse("[255,255,255,50]"));
  EXPECT_EQ(editor["state"]["text"], "0.5");
  EXPECT_EQ(editor["state"]["dataType"], 6);
  EXPECT_FALSE(editor.contains("tooltip"));
  EXPECT_EQ(json["children"][0]["children"][0]["children"][0]["state"]["text"], "Color weight");
}

TEST_F(ImmPaths, JsonTextIsTheSameDocumentAndSurvivesBadInput) {
  EditorTree tree;
  tree.editor->SetValue(std::nan(""));
  tree.label->SetName("bad\xff\xfe name");
  tree.label->SetText(KEPUnicodeString(std::u16string(u"half \xD800 pair")));
  tree.slider->SetTooltip(u"quote \" backslash \\ tab \t end");
  tree.slider->SetTooltipInitialDelay(INFINITY);
  const std::string text = KEPVidToJsonText(tree.root.Get());
  nlohmann::json parsed;
  ASSERT_NO_THROW(parsed = nlohmann::json::parse(text)) << text;
  const nlohmann::json dom = KEPVidToJson(tree.root.Get());
  EXPECT_EQ(parsed, dom);
  EXPECT_NO_THROW((void)dom.dump());
  const nlohmann::json& label = dom["children"][0]["children"][0]["children"][0];
  EXPECT_EQ(label["name"], "bad\xEF\xBF\xBD\xEF\xBF\xBD name");
  EXPECT_EQ(label["state"]["text"], "half \xEF\xBF\xBD pair");
  const nlohmann::json& scalar = dom["children"][0]["children"][0]["children"][1]["children"][0];
  EXPECT_TRUE(scalar["children"][1]["state"]["value"].is_null()) << "NaN is null";
  EXPECT_TRUE(scalar["children"][0]["tooltipDelay"].is_null());
  EXPECT_EQ(scalar["children"][0]["tooltip"], "quote \" backslash \\ tab \t end");
  EXPECT_EQ(KEPVidToJsonText(nullptr), "null");
}

TEST_F(ImmPaths, JsonListsTheIntrospectedPropertiesOfAControl) {
  static const KEPSYPPropertyEntry kProperties[] = {
      {"On", "bool", [](KEPBaseUnknown*) -> KEPSYPValue { return true; }, nullptr},
      {"Count", "int", [](KEPBaseUnknown*) -> KEPSYPValue { return 3; }, nullptr},
      {"Ratio", "double", [](KEPBaseUnknown*) -> KEPSYPValue { return NAN; }, nullptr},
      {"Title", "string", [](KEPBaseUnknown*) -> KEPSYPValue { return KEPString("ok"); }, nullptr},
      {"Point", "KEPMathPoint2D",
       [](KEPBaseUnknown*) -> KEPSYPValue {
         return KEPMathPoint2D{0.5, -1.0};
       },
       nullptr},
      {"Unit", "KEPICkeUnit",
       [](KEPBaseUnknown*) -> KEPSYPValue {
         KEPICkeUnit* unit = KEPParmDictionary::FindUnit(u"cm");
         unit->AddRef();
         return KEPSYPBoxInterface(unit);
       },
       nullptr},
      {"Nothing", "KEPICkeUnit", [](KEPBaseUnknown*) -> KEPSYPValue { return {}; }, nullptr},
  };
  KEPSYPRegistry::RegisterBuilder("Swatch", [](KEPSYPMetaClassBuilder& builder) -> HRESULT {
    builder.SetClass("Swatch", nullptr, nullptr);
    return builder.AddProperties(kProperties, 7);
  });
  Root root = Root::Adopt(new KEPVidLayGrid(nullptr, "root"));
  new Swatch(root.Get(), "swatch");
  new KEPVidCtlLabel(root.Get(), "label");
  const nlohmann::json json = KEPVidToJson(root.Get());
  EXPECT_EQ(json["children"][0]["properties"],
            nlohmann::json::parse(R"({"On":true,"Count":3,"Ratio":null,"Title":"ok",
              "Point":{"x":0.5,"y":-1.0},"Unit":"cm","Nothing":null})"));
  EXPECT_FALSE(json["children"][1].contains("properties")) << "a class without a metaclass";
  EXPECT_EQ(nlohmann::json::parse(KEPVidToJsonText(root.Get())), json);
  KEPSYPRegistry::Clear();
}

TEST_F(ImmPaths, TextShowsOneWidgetALine) {
  EditorTree tree;
  tree.label->SetSensitivity(false);
  tree.editor->SetVisibility(false);
  tree.row->SetName("");
  EXPECT_EQ(KEPVidToText(tree.root.Get()),
            "KEPVidLayGrid Editor [0,0] rows=1 horizontalSpacing=0 verticalSpacing=0\n"
            "  KEPVidCtlExpander ParameterGroup0 [0,0] label=Diffuse expanded=false\n"
            "    KEPVidLayGrid ParameterGroup0Layout [0,0] rows=1 columnWeights=[0,1] "
            "horizontalSpacing=0 verticalSpacing=0\n"
            "      KEPVidCtlLabel ParameterLabel0 [0,0] (disabled) text=\"Color weight\"\n"
            "      KEPVidWidget - [0,1]\n"
            "        KEPVidLayGrid ScalarLayout [0,0] rows=1 horizontalSpacing=2 "
            "verticalSpacing=2\n"
            "          KEPVidCtlSlider scalarSlider [0,0] minimum=0 maximum=100 value=50 "
            "singleStep=1 pageStep=10 tickInterval=0 tickPosition=0 barSize=1 "
            "squareHeightRatio=0 magnifier=true\n"
            "          KEPVidCtlEditor scalarEditor [0,1] (hidden) dataType=6 value=0.5 "
            "text=0.5 characterWidth=0\n");
}

}  // namespace

// The editor stops the process, with the assertion's text and the editor's source path, when the
// node breaks what it relies on: list entries that are no named parameters, a grouped parameter
// without an immersive behaviour in a sorted group, a texture node that is not a KEPISpecObject or
// whose father is no shader.
#include <string>
#include <vector>

#include "EditorTestSupport.h"
#include "KEPListP.h"

namespace keptest {
namespace {

/// A shader that is not a KEPISpecObject, with the parameter list it is given (null entries
/// included); it takes over a reference of each entry.
class ListedShader : public KEPBaseUnknown, public KEPIRshShader {
 public:
  ListedShader(std::string configurationId, const std::vector<KEPIRshParameter*>& entries)
      : configurationId_(std::move(configurationId)) {
    for (KEPIRshParameter* entry : entries)
      entries_.push_back(KEP_var<KEPIRshParameter>::Adopt(entry));
  }
  HRESULT GetId(KEPString& id) override {
    id = "listed";
    return S_OK;
  }
  HRESULT GetTypeName(KEPString& type) override {
    type = configurationId_;
    return S_OK;
  }
  HRESULT GetConfigurationId(KEPString& id) override {
    id = configurationId_;
    return S_OK;
  }
  HRESULT GetParameters(KEPListP<KEPIRshParameter>*& parameters) override {
    parameters = new KEPListP<KEPIRshParameter>;
    for (const KEP_var<KEPIRshParameter>& entry : entries_) {
      if (entry) entry->AddRef();
      parameters->Append(entry.Get());
    }
    return S_OK;
  }
  HRESULT GetParameter(const KEPString&, KEPIRshParameter*&) override { return E_FAIL; }
  HRESULT GetPointingComponents(std::vector<KEP_var<KEPIRshParameter>>&) override { return E_FAIL; }

 private:
  KEPString configurationId_;
  std::vector<KEP_var<KEPIRshParameter>> entries_;
};

/// A parameter that cannot tell its name (nor anything else).
class NamelessParameter : public KEPBaseUnknown, public KEPIRshParameter {
 public:
  HRESULT GetName(KEPString&) override { return E_FAIL; }
  HRESULT GetTypeName(KEPString&) override { return E_FAIL; }
  HRESULT GetBooleanValue(unsigned char&) override { return E_FAIL; }
  HRESULT SetBooleanValue(unsigned char) override { return E_FAIL; }
  HRESULT GetIntegerValue(int&) override { return E_FAIL; }
  HRESULT SetIntegerValue(int) override { return E_FAIL; }
  HRESULT GetScalarValue(float&) override { return E_FAIL; }
  HRESULT SetScalarValue(float) override { return E_FAIL; }
  HRESULT GetColorValue(float&, float&, float&, float*) override { return E_FAIL; }
  HRESULT SetColorValue(float, float, float, float) override { return E_FAIL; }
  HRESULT GetVectorValue(float (&)[4]) override { return E_FAIL; }
  HRESULT SetVectorValue(const float (&)[4]) override { return E_FAIL; }
  int GetVectorDimension() override { return 0; }
  HRESULT GetTextureValue(KEPIPLMDmtDocument*&) override { return E_FAIL; }
  HRESULT SetTextureValue(KEPIPLMDmtDocument*) override { return E_FAIL; }
  HRESULT GetConnectedShader(KEPIRshShader*&) override { return E_FAIL; }
  HRESULT SetConnectedShader(KEPIRshShader*) override { return E_FAIL; }
};

class AssertionDeathTest : public EditorTest {
 protected:
  /// A listed shader with `entries`, whose references it takes over.
  static KEP_var<ListedShader> Listed(const std::string& configurationId,
                                      const std::vector<KEPIRshParameter*>& entries) {
    return KEP_var<ListedShader>::Adopt(new ListedShader(configurationId, entries));
  }
};

TEST_F(AssertionDeathTest, EveryListEntryMustBeANamedParameter) {
  KEPHostShaderNode* node = Node("t", {"a"});
  KEPIRshParameter* named = TheWorld().Param(node, "a");
  // Asserted whether or not groups are configured: the first walk meets the entry.
  for (const char* count : {"0", "2"}) {
    KEPHostConfiguration::SetValue("listed", "GroupCount", count);
    named->AddRef();
    const KEP_var<ListedShader> withNull = Listed("listed", {named, nullptr});
    EXPECT_DEATH(Edit(withNull.Get()),
                 Fatal("( parameter != NULL_var ) && \"parameter from parameter list is not a "
                       "KEPIRshParameter\""));
    named->AddRef();
    const KEP_var<ListedShader> withNameless = Listed("listed", {named, new NamelessParameter()});
    EXPECT_DEATH(Edit(withNameless.Get()),
                 Fatal("SUCCEEDED( result_fetch_name ) && \"parameter from parameter list has "
                       "no name\""));
  }
}

TEST_F(AssertionDeathTest, ASortedGroupNeedsABehaviourForEachOfItsParameters) {
  const Keys config = {{"GlobalShaderSortingOrder.Status", "yes"},
                       {"GroupCount", "1"},
                       {"a.Group", "Group0"},
                       {"profile.Group", "Group0"}};
  Type first("first");
  first.Param("profile", LightProfile()).Param("a", Scalar(1));
  KEPHostShaderNode* profileFirst = Node(first, config);
  Type second("second");
  second.Param("a", Scalar(1)).Param("profile", LightProfile());
  KEPHostShaderNode* profileSecond = Node(second, config);
  // Which side the parameter is on depends on where the sort meets it first.
  EXPECT_DEATH(Edit(profileFirst),
               Fatal("( parameter_lhs != NULL_var ) && \"lhs from parameter list is not a "
                     "KEPIRshParameterImmLayout\""));
  EXPECT_DEATH(Edit(profileSecond),
               Fatal("( parameter_rhs != NULL_var ) && \"rhs from parameter list is not a "
                     "KEPIRshParameterImmLayout\""));
}

TEST_F(AssertionDeathTest, UnsortedGroupsShowTheirParametersWithABehaviour) {
  // The same nodes without sorting: the parameter without a behaviour is merely not shown.
  Type type("t");
  type.Param("profile", LightProfile()).Param("a", Scalar(1));
  KEPRshShaderImmLayout* editor =
      Edit(Node(type, {{"GroupCount", "1"}, {"a.Group", "Group0"}, {"profile.Group", "Group0"}}));
  EXPECT_EQ(Labels(At(editor, "ParameterGroup0/ParameterGroup0Layout")),
            (std::vector<std::string>{"a"}));
}

TEST_F(AssertionDeathTest, ATextureNodeMustBeASpecObjectWithAShaderForFather) {
  const KEP_var<ListedShader> unspecified = Listed("kep_phen_bump", {});
  EXPECT_DEATH(Edit(unspecified.Get()),
               Fatal("( spec != NULL_var ) && \"KEPIRshShader is not a spec feature\""));

  const std::string fatherless =
      "( father_shader != NULL_var ) && "
      "\"KEPIRshShader's father is not a spec feature\"";
  // A node of the document: its father is the document, no shader.
  TheWorld().Add(Type("kep_phen_scalar").Param("scale_u", Scalar(1)));
  KEPHostShaderNode* inDocument = TheWorld().Node("kep_phen_scalar");
  EXPECT_DEATH(Edit(inDocument), Fatal(fatherless));
  // A node without any father.
  const auto orphan = KEP_var<KEPHostShaderNode>::Adopt(KEPHostShaderNode::Create(
      *TheWorld().library->FindType("kep_phen_scalar"), "orphan", nullptr));
  EXPECT_DEATH(Edit(orphan.Get()), Fatal(fatherless));
  // Other nodes never ask for their father.
  const KEP_var<ListedShader> material = Listed("kep_phen_texture2", {});
  EXPECT_EQ(Edit(material.Get())->GetChildCount(), 0u);
}

}  // namespace
}  // namespace keptest

// The shader model's side of connections: the refusal of a connection that would make a cycle,
// the exclusion tests the editors ask of the support, the sub-shaders a node holds and how they
// are saved, and the begin/end notifications sent through KEPIModelEvents.
#include <gtest/gtest.h>

#include <random>

#include "KEPConnectionFixture.h"
#include "KEPHostShaderDocument.h"
#include "KEPIModelEvents.h"
#include "KEPIRshSubShaders.h"
#include "KEPRshModelEvents.h"
#include "KEPRshParameterServices.h"
#include "KEPShaderDocumentWriter.h"

namespace keptest {
namespace {

class ConnectionModelTest : public Fixture {
 protected:
  void SetUp() override {
    Fixture::SetUp();
    d_ = BuildConnectionDocument(world_);
  }
  KEPHostParameter* P(KEPHostShaderNode* node, const std::string& name) {
    return world_.Param(node, name);
  }
  World world_;
  ConnectionDocument d_;
};

TEST_F(ConnectionModelTest, ConnectionsThatWouldCloseACycleAreRefusedAndChangeNothing) {
  struct Case {
    const char* what;
    KEPHostShaderNode* ConnectionDocument::*from;
    const char* parameter;
    KEPHostShaderNode* ConnectionDocument::*to;
    HRESULT expected;
  };
  const Case cases[] = {
      {"a node to its own parameter", &ConnectionDocument::mixed, "input",
       &ConnectionDocument::mixed, E_FAIL},
      {"the material to a node that reaches it", &ConnectionDocument::glass, "extra",
       &ConnectionDocument::outer, E_FAIL},
      {"two steps back up a chain", &ConnectionDocument::inner, "input", &ConnectionDocument::outer,
       E_FAIL},
      {"a shared node, no cycle", &ConnectionDocument::glass, "extra", &ConnectionDocument::tiles,
       S_OK},
      {"down a chain, no cycle", &ConnectionDocument::metal, "amount", &ConnectionDocument::inner,
       S_OK},
  };
  for (const Case& c : cases) {
    KEPHostParameter* parameter = P(d_.*c.from, c.parameter);
    KEP_var<KEPIRshShader> before;
    parameter->GetConnectedShader(*before.Out());
    const unsigned long long generation = KEPRshParameterServices::GetConnectionGeneration();
    int announced = 0;
    const int token = KEPRshModelEvents::AddParameterObserver(
        [&](KEPIRshParameter*, KEPRshParameterChangeKind) { ++announced; });
    EXPECT_EQ(parameter->SetConnectedShader(d_.*c.to), c.expected) << c.what;
    KEPRshModelEvents::RemoveObserver(token);
    if (c.expected == S_OK) continue;
    KEP_var<KEPIRshShader> after;
    parameter->GetConnectedShader(*after.Out());
    EXPECT_EQ(after.Get(), before.Get()) << c.what;
    EXPECT_EQ(announced, 0) << c.what;
    EXPECT_EQ(KEPRshParameterServices::GetConnectionGeneration(), generation) << c.what;
    EXPECT_FALSE(HasConnectionCycle(*world_.Document())) << c.what;
  }
}

TEST_F(ConnectionModelTest, TheSupportExcludesTheOwnerAndEveryNodeThatReachesTheParameter) {
  KEPHostShaderDocument* document = world_.Document();
  KEPHostParameter* tint = P(d_.glass, "tint");
  struct Case {
    KEPHostShaderNode* node;
    bool excluded;
  };
  const Case cases[] = {{d_.glass, true},  {d_.inner, true},  {d_.outer, true},  {d_.metal, true},
                        {d_.mixed, false}, {d_.tiles, false}, {d_.lonely, false}};
  for (const Case& c : cases) {
    bool excluded = !c.excluded;
    ASSERT_EQ(document->IsConnectionExcluded(tint, c.node, excluded), S_OK) << c.node->Id();
    EXPECT_EQ(excluded, c.excluded) << c.node->Id();
  }
  bool excluded = false;
  EXPECT_EQ(document->IsConnectionExcluded(nullptr, d_.glass, excluded), E_INVALIDARG);
  EXPECT_EQ(document->IsConnectionExcluded(tint, nullptr, excluded), E_INVALIDARG);
}

TEST_F(ConnectionModelTest, NoSequenceOfRandomConnectionsMakesACycle) {
  std::vector<KEPHostParameter*> parameters;
  std::vector<KEPHostShaderNode*> nodes;
  for (const auto& node : world_.Document()->Nodes()) {
    nodes.push_back(node.Get());
    for (const auto& parameter : node->Parameters()) parameters.push_back(parameter.Get());
  }
  std::mt19937 random(20261123);
  int refused = 0;
  for (int step = 0; step < 2000; ++step) {
    KEPHostParameter* parameter = parameters[random() % parameters.size()];
    KEPHostShaderNode* node = random() % 8 == 0 ? nullptr : nodes[random() % nodes.size()];
    if (FAILED(parameter->SetConnectedShader(node))) ++refused;
    std::vector<std::string> cycle;
    ASSERT_FALSE(HasConnectionCycle(*world_.Document(), &cycle))
        << "step " << step << ": " << ::testing::PrintToString(cycle);
  }
  EXPECT_GT(refused, 0);  // the walk did meet connections that had to be refused
}

TEST_F(ConnectionModelTest, ANodeHoldsTheSubShadersAddedToItAndRefusesItsHolders) {
  const KEP_var<KEPIRshSubShaders> glass =
      KEPQueryVar<KEPIRshSubShaders>(static_cast<KEPIRshShader*>(d_.glass));
  ASSERT_TRUE(glass);
  std::vector<KEP_var<KEPIRshShader>> held;
  ASSERT_EQ(glass->GetSubShaders(held), S_OK);
  EXPECT_TRUE(held.empty());

  EXPECT_EQ(glass->AddSubShader(d_.mixed), S_OK);
  EXPECT_EQ(glass->AddSubShader(d_.lonely), S_OK);
  ASSERT_EQ(glass->GetSubShaders(held), S_OK);
  ASSERT_EQ(held.size(), 2u);
  EXPECT_EQ(held[0].Get(), static_cast<KEPIRshShader*>(d_.mixed));
  EXPECT_EQ(held[1].Get(), static_cast<KEPIRshShader*>(d_.lonely));

  // A node cannot hold itself nor the node that holds it.
  EXPECT_EQ(glass->AddSubShader(d_.glass), E_FAIL);
  const KEP_var<KEPIRshSubShaders> mixed =
      KEPQueryVar<KEPIRshSubShaders>(static_cast<KEPIRshShader*>(d_.mixed));
  EXPECT_EQ(mixed->AddSubShader(d_.glass), E_FAIL);
  EXPECT_EQ(glass->AddSubShader(nullptr), E_INVALIDARG);

  // A node of another document is none of this one's.
  World other;
  other.Add(Type("KEPRmaColor").Param("input", Color(0, 0, 0)));
  EXPECT_EQ(glass->AddSubShader(other.Node("KEPRmaColor", "Far")), E_INVALIDARG);
}

TEST_F(ConnectionModelTest, AHeldNodeIsSavedUnderItsHolderWhereverItIsConnected) {
  // Lonely is used by Metal only, but was made for Glass: it is saved under Glass.
  ASSERT_EQ(P(d_.metal, "amount")->SetConnectedShader(d_.lonely), S_OK);
  const KEP_var<KEPIRshSubShaders> glass =
      KEPQueryVar<KEPIRshSubShaders>(static_cast<KEPIRshShader*>(d_.glass));
  ASSERT_EQ(glass->AddSubShader(d_.lonely), S_OK);
  const std::string text = KEPShaderDocumentWriter::Format(*world_.Document(), "/tmp/doc.json");
  const auto glassAt = text.find("\"id\": \"Glass\"");
  const auto metalAt = text.find("\"id\": \"Metal\"");
  const auto lonelyAt = text.find("\"id\": \"Lonely\"");
  ASSERT_NE(glassAt, std::string::npos);
  ASSERT_NE(metalAt, std::string::npos);
  ASSERT_NE(lonelyAt, std::string::npos);
  EXPECT_LT(glassAt, lonelyAt);
  EXPECT_LT(lonelyAt, metalAt) << text;
  // Still connected from Metal.
  EXPECT_NE(text.find("\"amount\": \"Lonely\""), std::string::npos) << text;
}

TEST_F(ConnectionModelTest, TheDocumentPassesBeginAndEndNotificationsToTheObservers) {
  const KEP_var<KEPIModelEvents> events =
      KEPQueryVar<KEPIModelEvents>(static_cast<KEPIRshShaderSupport*>(world_.Document()));
  ASSERT_TRUE(events);
  std::vector<std::string> heard;
  const int token = KEPRshModelEvents::AddShaderModifyObserver(
      [&](const KEPRbaShaderModifyNotification& n, bool begin) {
        heard.push_back(std::string(begin ? "begin " : "end ") + n.changeClass + " " +
                        std::to_string(n.attributeKind) + " " + std::to_string(n.flag) +
                        (n.shader == static_cast<KEPIRshShader*>(d_.glass) ? " Glass" : " ?"));
      });
  KEPRbaBeginShaderModifyNotification begin;
  begin.shader = d_.glass;
  begin.changeClass = "KEPIGraphicMaterial";
  begin.attributeKind = 2;
  KEPRbaEndShaderModifyNotification end;
  end.shader = d_.glass;
  end.changeClass = "KEPIRshParameter";
  end.attributeKind = 2;
  end.flag = 1;
  EXPECT_EQ(events->SendBeginShaderModify(begin), S_OK);
  EXPECT_EQ(events->SendEndShaderModify(end), S_OK);
  KEPRshModelEvents::RemoveObserver(token);
  EXPECT_EQ(heard, (std::vector<std::string>{"begin KEPIGraphicMaterial 2 0 Glass",
                                             "end KEPIRshParameter 2 1 Glass"}));
}

}  // namespace
}  // namespace keptest

// Shared set-up of the classic frame tests: a registered module, parameters made in one line
// (each alone in a node of its own type, configured with keys after its name), frames built
// through the parameters' classic behaviours under a root frame, and what a person does.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "KEPDlgFrame.h"
#include "KEPHostConfiguration.h"
#include "KEPIRshParameterDialog.h"
#include "KEPRshModelEvents.h"
#include "KEPRshViewModule.h"
#include "KEPTestSupport.h"
#include "KEP_var.h"

namespace keptest {

using Keys = std::vector<std::pair<std::string, std::string>>;

/// The float shader-modify notifications sent while alive.
struct FloatModifyLog {
  FloatModifyLog()
      : token(KEPRshModelEvents::AddFloatShaderModifyObserver(
            [this](const KEPRbaFloatShaderModifyNotification& n) { sent.push_back(n); })) {}
  ~FloatModifyLog() { KEPRshModelEvents::RemoveObserver(token); }
  FloatModifyLog(const FloatModifyLog&) = delete;
  FloatModifyLog& operator=(const FloatModifyLog&) = delete;
  std::vector<KEPRbaFloatShaderModifyNotification> sent;
  int token;
};

class FrameTest : public Fixture {
 protected:
  void SetUp() override {
    Fixture::SetUp();
    KEPRshViewRegister();
    world_.emplace();
    root_ = KEP_var<KEPDialog>::Adopt(new KEPDlgFrame(nullptr, "root", 0));
  }
  void TearDown() override {
    root_.Reset();  // frames go before the model they edit
    world_.reset();
    Fixture::TearDown();
  }

  /// Parameter "p" holding `value`, alone in a node of a new type; `config` holds keys after the
  /// parameter's name (".Widget").
  KEPHostParameter* Param(const KEPHostValue& value, const Keys& config = {}) {
    const std::string type = "t" + std::to_string(++types_);
    world_->Add(Type(type).Param("p", value));
    for (const auto& [suffix, text] : config)
      KEPHostConfiguration::SetValue(type, "p" + suffix, text);
    return world_->Param(world_->Node(type), "p");
  }
  KEPHostShaderDocument* Document() { return world_->Document(); }
  World& TheModel() { return *world_; }
  /// Every node and parameter goes; the frames stay.
  void DropModel() { world_.reset(); }

  /// The frame that the parameter's classic behaviour builds under the root, or null.
  template <class Frame>
  Frame* Build(KEPIRshParameter* parameter, const char* name = "parameterDialog") {
    const KEP_var<KEPIRshParameterDialog> behaviour =
        KEPQueryVar<KEPIRshParameterDialog>(parameter);
    EXPECT_TRUE(behaviour);
    if (!behaviour) return nullptr;
    KEPDialog* frame = nullptr;
    EXPECT_EQ(behaviour->BuildFrame(root_.Get(), name, &frame), S_OK);
    EXPECT_NE(dynamic_cast<Frame*>(frame), nullptr);
    return dynamic_cast<Frame*>(frame);
  }
  KEPDialog* Root() const { return root_.Get(); }

  /// What a person does to `control`; the action must be accepted.
  static void Act(KEPVidWidget* control, KEPVidAction action, const std::string& argument = "") {
    ASSERT_NE(control, nullptr);
    std::string error;
    ASSERT_EQ(control->InjectUserEvent(action, argument, error), S_OK) << error;
  }
  static float Scalar(KEPIRshParameter* p) {
    float v = -1.0f;
    p->GetScalarValue(v);
    return v;
  }
  static int Integer(KEPIRshParameter* p) {
    int v = -1;
    p->GetIntegerValue(v);
    return v;
  }

 private:
  std::optional<World> world_;
  KEP_var<KEPDialog> root_;
  int types_ = 0;
};

}  // namespace keptest

// Shared set-up of the classic editor's tests: a registered module, nodes made in a few lines,
// editors built under a free parent dialog, and sub-shader chains.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "KEPDlgFrame.h"
#include "KEPRshShaderFrame.h"
#include "KEPRshShaderRootFrame.h"
#include "KEPRshViewModule.h"
#include "KEPTestSupport.h"
#include "KEP_var.h"

namespace keptest {

class ClassicTest : public Fixture {
 protected:
  void SetUp() override {
    Fixture::SetUp();
    KEPRshViewRegister();
    world_.emplace();
    parent_ = KEP_var<KEPDlgFrame>::Adopt(new KEPDlgFrame(nullptr, "parent"));
  }
  void TearDown() override {
    parent_.Reset();
    world_.reset();
    Fixture::TearDown();
  }

  /// A node of a new type `type` with one connection slot "slot" and a scalar "amount", aliased
  /// `alias`.
  KEPHostShaderNode* Aliased(const std::string& type, const std::string& alias) {
    Type definition(type);
    definition.Param("slot", Void()).Param("amount", Scalar(0.5f));
    world_->Add(definition);
    KEPHostShaderNode* node = world_->Node(type);
    node->SetAlias(KEPUnicodeString::FromUTF8(alias));
    return node;
  }
  /// Connects `child` to the "slot" parameter of `node`.
  void Connect(KEPHostShaderNode* node, KEPHostShaderNode* child) {
    world_->Param(node, "slot")->SetConnectedShader(child);
  }

  /// A root frame of `shader` under a parent dialog named `parentName` (the parent owns it).
  KEPRshShaderRootFrame* Root(KEPIRshShader* shader, const std::string& parentName = "parent") {
    parent_->SetName(parentName);
    return new KEPRshShaderRootFrame(parent_.Get(), "rootFrame", 0, shader);
  }
  /// Edits the sub-shader of row `i` of the frame the root shows, as the edit item does.
  static void EditRow(KEPRshShaderRootFrame* root, int i) {
    KEPRshShaderFrame* frame = root->GetShaderFrame();
    ASSERT_NE(frame, nullptr);
    frame->EditCB(frame, nullptr, i);
  }
  static std::string Title(const KEPDialog* dialog) { return dialog->GetTitle().ToUTF8(); }

  World& TheWorld() { return *world_; }
  KEPDlgFrame* Parent() { return parent_.Get(); }

 private:
  std::optional<World> world_;
  KEP_var<KEPDlgFrame> parent_;
};

}  // namespace keptest

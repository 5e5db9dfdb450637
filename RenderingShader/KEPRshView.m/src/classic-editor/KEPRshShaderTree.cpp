#include "KEPRshShaderTree.h"

#include <unordered_set>
#include <vector>

#include "KEPBaseUnknown.h"
#include "KEPIAlias.h"
#include "KEPIRshShaderOutput.h"
#include "KEPISpecObject.h"
#include "KEPListP.h"

namespace {
constexpr int kMaxFathers = 64;
constexpr std::size_t kMaxWalkedNodes = 100000;

KEP_var<KEPIUnknown> Father(KEPIUnknown* object) {
  const KEP_var<KEPISpecObject> specObject = KEPQueryVar<KEPISpecObject>(object);
  if (!specObject) return {};
  KEPBaseUnknown* father = nullptr;
  if (FAILED(specObject->GetFather(father)) || !father) return {};
  return KEP_var<KEPIUnknown>::Adopt(father);
}
}  // namespace

KEP_var<KEPIRshShader> KEPRshShaderTree::OwningShader(KEPIRshParameter* parameter) {
  return KEPQueryVar<KEPIRshShader>(Father(parameter));
}

KEP_var<KEPIRshShaderSupport> KEPRshShaderTree::FindShaderSupport(KEPIUnknown* from) {
  KEP_var<KEPIUnknown> current(from);
  for (int depth = 0; current && depth < kMaxFathers; ++depth) {
    if (auto support = KEPQueryVar<KEPIRshShaderSupport>(current)) return support;
    current = Father(current.Get());
  }
  return {};
}

KEP_var<KEPIRshShader> KEPRshShaderTree::RootShader(KEPIRshShader* shader) {
  KEP_var<KEPIRshShader> root(shader);
  for (int depth = 0; root && depth < kMaxFathers; ++depth) {
    KEP_var<KEPIRshShader> up = KEPQueryVar<KEPIRshShader>(Father(root.Get()));
    if (!up) break;
    root = up;
  }
  return root;
}

bool KEPRshShaderTree::Reaches(KEPIRshShader* from, KEPIRshParameter* target) {
  if (!from || !target) return false;
  std::unordered_set<KEPIRshShader*> walked;
  std::vector<KEP_var<KEPIRshShader>> pending{KEP_var<KEPIRshShader>(from)};
  while (!pending.empty() && walked.size() < kMaxWalkedNodes) {
    const KEP_var<KEPIRshShader> node = pending.back();
    pending.pop_back();
    if (!walked.insert(node.Get()).second) continue;
    KEPListP<KEPIRshParameter>* list = nullptr;
    if (FAILED(node->GetParameters(list)) || !list) continue;
    bool found = false;
    for (int i = 1; i <= list->Size(); ++i) {
      const auto parameter = KEP_var<KEPIRshParameter>::Adopt((*list)[i]);
      if (!parameter || found) continue;
      if (parameter.Get() == target) {
        found = true;
        continue;
      }
      KEPIRshShader* connected = nullptr;
      const HRESULT hr = parameter->GetConnectedShader(connected);
      auto next = KEP_var<KEPIRshShader>::Adopt(connected);
      if (SUCCEEDED(hr) && next && !walked.count(next.Get())) pending.push_back(std::move(next));
    }
    delete list;
    if (found) return true;
  }
  return false;
}

KEPString KEPRshShaderTree::ConnectionType(KEPIRshShader* node) {
  if (!node) return {};
  KEPString type;
  if (const KEP_var<KEPIRshShaderOutput> output = KEPQueryVar<KEPIRshShaderOutput>(node))
    if (SUCCEEDED(output->GetOutputType(type))) return type;
  if (FAILED(node->GetTypeName(type))) type.clear();
  return type;
}

KEPUnicodeString KEPRshShaderTree::Alias(KEPIUnknown* object, const KEPUnicodeString& fallback) {
  if (const KEP_var<KEPIAlias> alias = KEPQueryVar<KEPIAlias>(object)) {
    KEPUnicodeString text;
    if (SUCCEEDED(alias->GetAlias(text)) && !text.IsEmpty()) return text;
  }
  return fallback;
}

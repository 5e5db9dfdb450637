#include "KEPTestSupport.h"
#include "KEPHostConfiguration.h"
#include "KEPHostShaderManager.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>

#include "KEPHostContext.h"
#include "KEPParmDictionary.h"
#include "KEPSysPreferenceRepository.h"
#include "KEPTextureDocument.h"

namespace keptest {

TraceCapture::TraceCapture(int moduleLevel) : previousLevel_(KEPModuleTrace::GetLevel()) {
  previous_ = KEPTraceSink::Set([this](const KEPTraceEntry& e) { entries_.push_back(e); });
  KEPModuleTrace::SetLevel(moduleLevel);
}

TraceCapture::~TraceCapture() {
  KEPTraceSink::Set(std::move(previous_));
  KEPModuleTrace::SetLevel(previousLevel_);
}

std::vector<std::string> TraceCapture::Texts(const std::string& channel) const {
  std::vector<std::string> texts;
  for (const auto& e : entries_)
    if (channel.empty() || e.channel == channel) texts.push_back(e.text);
  return texts;
}

bool TraceCapture::Contains(const std::string& fragment) const {
  for (const auto& e : entries_)
    if (e.text.find(fragment) != std::string::npos) return true;
  return false;
}

void Config(const std::string& id, std::initializer_list<std::pair<std::string, std::string>> kv) {
  for (const auto& [key, value] : kv) KEPHostConfiguration::SetValue(id, key, value);
}

KEPHostValue Boolean(bool v) {
  return KEPHostValue::Boolean(v);
}
KEPHostValue Integer(int v) {
  return KEPHostValue::Integer(v);
}
KEPHostValue Scalar(float v) {
  return KEPHostValue::Scalar(v);
}
KEPHostValue Color(float r, float g, float b, float a) {
  return KEPHostValue::Color(r, g, b, a);
}
KEPHostValue Vector(std::initializer_list<float> components) {
  return KEPHostValue::Vector(components);
}
KEPHostValue Texture(const std::string& imagePath) {
  if (imagePath.empty()) return KEPHostValue::Texture(nullptr);
  auto document = KEP_var<KEPTextureDocument>::Adopt(
      KEPTextureDocument::Create(KEPUnicodeString::FromUTF8(imagePath)));
  return KEPHostValue::Texture(document.Get());
}
KEPHostValue Void() {
  return KEPHostValue::Void();
}

Type::Type(std::string name, std::string configurationId) {
  definition_.name = std::move(name);
  definition_.configurationId = std::move(configurationId);
}

Type& Type::Param(std::string name, KEPHostValue value) {
  definition_.parameters.push_back({std::move(name), std::move(value), {}});
  return *this;
}

Type& Type::Resource(const std::string& parameter, const std::string& key,
                     const std::string& value) {
  definition_.hasResources = true;
  for (auto& p : definition_.parameters)
    if (p.name == parameter) {
      p.resources[key] = value;
      return *this;
    }
  ADD_FAILURE() << "no parameter " << parameter << " in type " << definition_.name;
  return *this;
}

Type& Type::Resources(bool offered) {
  definition_.hasResources = offered;
  return *this;
}

Type& Type::TextureShader() {
  definition_.isTexture = true;
  return *this;
}

Type& Type::Output(std::string featureType) {
  definition_.output = std::move(featureType);
  return *this;
}

World::World() : library(std::make_shared<KEPHostShaderLibrary>()) {
  Rebuild();
}

World::~World() {
  document_.Reset();
  KEPHostShaderManager::Install(nullptr);
}

void World::Rebuild() {
  KEPHostShaderManager::Install(library);
  if (!document_)
    document_ = KEP_var<KEPHostShaderDocument>::Adopt(KEPHostShaderDocument::Create(library));
}

World& World::Add(const Type& type) {
  EXPECT_TRUE(library->AddType(type.Definition())) << "type added twice";
  return *this;
}

World& World::Connectable(const std::string& parameterType,
                          std::initializer_list<std::pair<std::string, std::string>> typeAndLabel) {
  std::vector<KEPHostConnectableEntry> entries;
  for (const auto& [type, label] : typeAndLabel) entries.push_back({type, label, 0});
  library->SetConnectable(parameterType, std::move(entries));
  return *this;
}

KEPHostShaderNode* World::Node(const std::string& type, const std::string& id) {
  KEPIRshShader* shader = nullptr;
  if (FAILED(document_->CreateShader(type, id, shader))) {
    ADD_FAILURE() << "cannot create node of type " << type;
    return nullptr;
  }
  shader->Release();  // the document keeps its own reference
  return document_->FindNode(id.empty() ? document_->Nodes().back()->Id() : id);
}

KEPHostParameter* World::Param(KEPHostShaderNode* node, const std::string& name) {
  if (node)
    for (const auto& p : node->Parameters()) {
      KEPString pname;
      p->GetName(pname);
      if (pname == name) return p.Get();
    }
  ADD_FAILURE() << "no parameter " << name;
  return nullptr;
}

KEPHostShaderDocument* World::Document() {
  return document_.Get();
}

void Reset() {
  // Preferences go to a file of this test process, empty at the start of every test (never the
  // user's own file); everything else is as a new session finds it.
  static const std::string preferences =
      (std::filesystem::temp_directory_path() /
       ("keprsh-test-" + std::to_string(::getpid()) + "-preferences.json"))
          .string();
  ::setenv("KEPRSH_PREFERENCES", preferences.c_str(), 1);
  std::error_code ec;
  std::filesystem::remove(preferences, ec);
  KEPHostContext::Reset();
}

std::string SourcePath(const std::string& relative) {
  return std::string(KEPRSH_SOURCE_ROOT) + "/" + relative;
}

}  // namespace keptest

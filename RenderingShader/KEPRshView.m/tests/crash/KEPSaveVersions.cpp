#include "KEPSaveVersions.h"

#include "KEPShaderDocumentWriter.h"
#include "KEPSysPreferenceRepository.h"

namespace keptest {

namespace {
constexpr int kNodes[SaveVersions::kCount] = {1, 8, 60};
constexpr std::size_t kPayload[SaveVersions::kCount] = {8, 3000, 40000};
}  // namespace

SaveVersions::SaveVersions() {
  for (int version = 0; version < kCount; ++version) {
    // One type per version: the nodes' default values tell the versions apart.
    const std::string type = "kill_test_v" + std::to_string(version);
    const auto v = static_cast<float>(version);
    world_.Add(Type(type)
                   .Param("gloss", Scalar(0.25f + v))
                   .Param("tint", Color(v, 0.5f, 1.0f - v / 4))
                   .Param("count", Integer(version * 7))
                   .Param("on", Boolean(version % 2 == 0)));
    auto document =
        KEP_var<KEPHostShaderDocument>::Adopt(KEPHostShaderDocument::Create(world_.library));
    for (int n = 0; n < kNodes[version]; ++n) {
      KEPIRshShader* shader = nullptr;
      if (SUCCEEDED(document->CreateShader(type, "node" + std::to_string(n), shader)))
        shader->Release();  // the document keeps its own reference
    }
    document->materials = {"node0"};
    documents_.push_back(std::move(document));
  }
}

bool SaveVersions::SaveDocument(int version, const std::string& path, std::string& error) {
  const KEPLoadResult result =
      KEPShaderDocumentWriter::Save(*documents_.at(static_cast<std::size_t>(version)), path);
  error = result.Text();
  return result.Ok();
}

bool SaveVersions::CommitPreferences(int version, std::string& error) {
  KEPSysPreferenceRepository* repository = KEPSysPreferenceRepository::GetRepository("KillTest");
  if (!repository) {
    error = "no repository";
    return false;
  }
  const auto index = static_cast<std::size_t>(version);
  repository->SetValue("version", std::to_string(version));
  repository->SetValue("payload", std::string(kPayload[index], static_cast<char>('a' + version)));
  const short shorts[] = {1, 2, 3};
  repository->WriteSetting("shorts", shorts, version + 1);
  if (SUCCEEDED(repository->Commit())) return true;
  error = "cannot commit the preferences (see the trace)";
  return false;
}

}  // namespace keptest

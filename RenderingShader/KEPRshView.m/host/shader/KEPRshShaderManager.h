// The process-wide shader manager: which shader types connect to a parameter type, and the
// creation of new nodes. It answers from the shader library installed by the application.
#pragma once

#include <memory>
#include <vector>

#include "KEPRshShaderLibrary.h"
#include "KEPString.h"
#include "KEPTypes.h"

class KEPIRshShader;
class KEPIRshShaderSupport;

class KEPRshShaderManager {
 public:
  /// The manager, or null when no library has been installed.
  static KEPRshShaderManager* GetManager();
  /// Installs `library` as the process's shader library (null removes the manager).
  static void Install(std::shared_ptr<const KEPRshShaderLibrary> library);

  /// Fills `names` with the shader types connectable to feature type `parameterType` and
  /// `labels` with their display names, in library order. `requestKind` 2 asks for the types
  /// that can be created and connected; any other kind answers an empty list.
  HRESULT GetConnectableShaders(const KEPString& parameterType, std::vector<KEPString>& names,
                                std::vector<KEPUnicodeString>& labels, int requestKind) const;
  /// Creates a node of `typeName` in `support` with its default values.
  HRESULT CreateShader(const KEPString& typeName, KEPIRshShaderSupport* support,
                       KEPIRshShader*& shader) const;

  const KEPRshShaderLibrary& Library() const { return *library_; }

 private:
  explicit KEPRshShaderManager(std::shared_ptr<const KEPRshShaderLibrary> library)
      : library_(std::move(library)) {}
  std::shared_ptr<const KEPRshShaderLibrary> library_;
};

// The process-wide shader manager: which shader types connect to a parameter type, and the
// creation of new nodes.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include <vector>

#include "KEPString.h"
#include "KEPTypes.h"

class KEPIRshShader;
class KEPIRshShaderSupport;

class KEPRshShaderManager {
 public:
  /// The manager, or null when the host has none (no shader library is loaded).
  static KEPRshShaderManager* GetManager();

  /// Fills `names` with the shader types connectable to feature type `parameterType` and
  /// `labels` with their display names, in the library's order. `requestKind` 2 asks for the
  /// types that can be created and connected; any other kind answers an empty list.
  virtual HRESULT GetConnectableShaders(const KEPString& parameterType,
                                        std::vector<KEPString>& names,
                                        std::vector<KEPUnicodeString>& labels,
                                        int requestKind) const = 0;
  /// Creates a node of `typeName` in `support` with its default values; E_INVALIDARG without a
  /// support.
  virtual HRESULT CreateShader(const KEPString& typeName, KEPIRshShaderSupport* support,
                               KEPIRshShader*& shader) const = 0;

 protected:
  KEPRshShaderManager() = default;
  virtual ~KEPRshShaderManager() = default;
};

#pragma GCC visibility pop

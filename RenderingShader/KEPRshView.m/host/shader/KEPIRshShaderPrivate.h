#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include "KEPIUnknown.h"
#include "KEPString.h"

/// What a shader node tells of its configuration beyond KEPIRshShader.
class KEPIRshShaderPrivate : public virtual KEPIUnknown {
  KEP_DECLARE_INTERFACE(KEPIRshShaderPrivate)
  /// The identifier of the configuration in which the node's keys are looked up (the same that
  /// KEPIRshShader::GetConfigurationId answers); pass it to KEPRbaConfiguration.
  virtual HRESULT GetConfiguration(KEPString& configurationId) = 0;
};

#pragma GCC visibility pop

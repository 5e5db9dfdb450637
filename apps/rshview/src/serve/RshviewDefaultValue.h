// A parameter's default: the value its node's type declares in the shader library (the value a
// new node of the type starts with), and writing such a value back through the parameter.
#pragma once

#include <string>

#include "KEPHostShaderLibrary.h"
#include "KEPHostShaderNode.h"

/// The library's definition of `parameter` in type `type`, or null when the library has no such
/// type or the type no such parameter (a parameter added to a node by hand has no default).
const KEPHostParameterDefinition* RshviewFindDefinition(const KEPHostShaderLibrary& library,
                                                        const std::string& type,
                                                        const std::string& parameter);

/// Writes `value` into `parameter` through the parameter's typed setter, so that the write takes
/// the render lock and is announced to the model's observers like any other. E_FAIL for a value
/// of type Void (a parameter that only takes a connection has no value to write) or of a type the
/// parameter does not take.
HRESULT RshviewWriteValue(KEPHostParameter& parameter, const KEPHostValue& value);

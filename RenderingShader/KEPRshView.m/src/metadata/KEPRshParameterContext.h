// The lazily resolved context of a parameter behaviour, and the metadata reads that the classic
// and immersive behaviour bases share.
//
// A behaviour is a data extension of a parameter feature. On the first read it resolves, once and
// for good, the owning shader's configuration identifier and its optional shader resources (through
// the feature's father) and the parameter's name; every read then asks either the resources, by
// (parameter name, lower-case key), or the configuration store, by parameter name + dotted suffix.
#pragma once

#include <vector>

#include "KEPBaseUnknown.h"
#include "KEPIRshShaderResources.h"
#include "KEPString.h"
#include "KEPTypes.h"

class KEPICkeUnit;
class KEPICkeMagnitude;

class KEPRshParameterContext {
 public:
  KEPRshParameterContext() = default;
  ~KEPRshParameterContext() { ReleaseResources(); }
  KEPRshParameterContext(const KEPRshParameterContext&) = delete;
  KEPRshParameterContext& operator=(const KEPRshParameterContext&) = delete;

  /// Resolves the context from the feature `extended` on the first call; later calls do nothing,
  /// whatever the first one found.
  void Resolve(KEPBaseUnknown* extended);
  /// Drops the reference to the shader resources (destruction, move to the deleted state).
  void ReleaseResources();

  bool IsResolved() const { return resolved_; }
  const KEPString& ConfigurationId() const { return configurationId_; }
  const KEPString& ParameterName() const { return parameterName_; }
  /// Borrowed; null when the shader offers no resources (or after the release).
  KEPIRshShaderResources* Resources() const { return resources_; }

  // --- Primitive reads; each leaves its output untouched on failure.
  /// Configuration value of parameter name + `suffix`.
  HRESULT Config(const KEPString& suffix, KEPString& out) const;
  HRESULT Config(const KEPString& suffix, KEPUnicodeString& out) const;
  HRESULT Config(const KEPString& suffix, int& out) const;
  /// Resource `key` of this parameter; E_FAIL when the extended object is no parameter.
  HRESULT Resource(const KEPString& key, KEPUnicodeString& out) const;
  /// Resource `key` when the shader has resources, else configuration `suffix` (narrow text).
  HRESULT ResourceOrConfig(const KEPString& key, const KEPString& suffix, KEPString& out) const;
  HRESULT ResourceOrConfig(const KEPString& key, const KEPString& suffix,
                           KEPUnicodeString& out) const;

  // --- Shared algorithms
  /// Range texts. `hardFallback` selects the immersive form, in which ".HardMin"/".HardMax" stand
  /// in for a missing ".Min"/".Max".
  HRESULT Range(bool hardFallback, KEPString& min, KEPString& max, KEPString& step) const;
  /// Two keys per end, first found wins, both ends parsed "%le".
  HRESULT DoubleRange(const char* minFirst, const char* minSecond, const char* maxFirst,
                      const char* maxSecond, double& min, double& max) const;
  /// Resource "enumvalue" + index ("%d"); else ".EnumVal" + index as an integer, else
  /// ".Enum" + index read "%d".
  HRESULT EnumValue(int index, int& value) const;
  /// Resource "enumindex" + value ("%d"); else the smallest index i of the range ("%d" texts)
  /// whose ".EnumVal" + i reads `value`, or failing that whose ".Enum" + i reads it with "%d".
  HRESULT EnumIndex(bool hardFallback, int value, int& index) const;
  /// ".Unit" / ".Magnitude" looked up as written, then in upper case; a reference for the caller.
  HRESULT Unit(KEPICkeUnit*& unit) const;
  HRESULT Magnitude(KEPICkeMagnitude*& magnitude) const;
  HRESULT ConnectableState(KEPBaseUnknown* extended, KEPString& state) const;

  // --- Text conversions with the C library's scanf semantics.
  static bool ParseDouble(const KEPString& text, double& value);
  static bool ParseInt(const KEPString& text, int& value);
  /// An integer range from its texts: min and max must parse ("%d"), the step is optional and
  /// keeps its value when it does not. False, with the outputs untouched, otherwise.
  static bool ParseIntRange(const KEPString& minText, const KEPString& maxText,
                            const KEPString& stepText, int& min, int& max, int& step);
  /// Two to four numbers separated by blanks or commas (brackets allowed around them); components
  /// not given keep their value. False, with `value` untouched, when fewer than two are read.
  static bool ParseFourFloats(const KEPString& text, float (&value)[4]);
  /// "on"/"true" -> true, "off"/"false" -> false (any case), else a "%d" number (0 is false).
  static bool ParseBoolean(const KEPString& text, bool& value);
  /// Key with a plain decimal integer appended ("label" + 0 -> "label0", ".Enum" + -1 ->
  /// ".Enum-1").
  static KEPString Indexed(const char* stem, long long index);

 private:
  bool resolved_ = false;
  bool isParameter_ = false;
  KEPString configurationId_;
  KEPString parameterName_;
  KEPIRshShaderResources* resources_ = nullptr;

  /// The indices in [min, max] named by the ".EnumVal" and ".Enum" keys of this parameter in its
  /// configuration and the parents, ascending, each once.
  std::vector<int> EnumIndicesBetween(int min, int max) const;
};

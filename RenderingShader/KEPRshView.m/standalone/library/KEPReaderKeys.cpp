#include "KEPReaderKeys.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <climits>
#include <string_view>
#include <utility>

#include "KEPParmDictionary.h"
#include "KEPString.h"

namespace {
using Finding = std::optional<KEPValueFinding>;

// Per-parameter configuration keys: the parameter's name, a dot and one of these words (the
// indexed ones followed by an index, as in roughness.Label0).
constexpr std::string_view kRangeWords[] = {"Min",     "Max",     "Step",   "SoftMin",
                                            "SoftMax", "HardMin", "HardMax"};
constexpr std::string_view kCheckedWords[] = {"Unit", "Magnitude", "SortingOrder"};
// Texts shown or compared as written: nothing to check in their values.
constexpr std::string_view kTextWords[] = {"Widget",
                                           "Description",
                                           "Group",
                                           "Default",
                                           "LayerGroupName",
                                           "ConnectableState",
                                           "TooltipText",
                                           "TooltipImage",
                                           "ComboConfiguration",
                                           "SecondaryParameter"};
constexpr std::string_view kIndexedWords[] = {"Label", "Enum", "EnumVal"};
// Keys of a group: "Group" and the group number, a dot and one of these.
constexpr std::string_view kGroupWords[] = {"Name", "Order", "CollapsedByDefault"};
// Keys of the whole node.
constexpr std::string_view kNodeKeys[] = {"GroupCount", "GlobalShaderSortingOrder.Status"};
// Shader resources of a parameter.
constexpr std::string_view kResourceWords[] = {"min", "max", "step", "widget", "default"};
constexpr std::string_view kIndexedResourceWords[] = {"label", "enum", "enumvalue", "enumindex"};

constexpr const char* kUnreadRange =
    "the range readers that parse it fail (they do not fall back to another key)";
constexpr const char* kUnreadStep = "the editors keep their default step";

template <std::size_t N>
bool In(const std::string_view (&words)[N], std::string_view word) {
  return std::find(std::begin(words), std::end(words), word) != std::end(words);
}

/// A known word that differs from `word` only in case: the one most likely meant.
template <std::size_t... N>
std::string Meant(std::string_view word, const std::string_view (&... lists)[N]) {
  const std::string lower = KEPToLower(word);
  std::string meant;
  const auto look = [&](const auto& list) {
    for (std::string_view candidate : list)
      if (meant.empty() && KEPToLower(candidate) == lower) meant = candidate;
  };
  (look(lists), ...);
  return meant;
}

/// "EnumVal12" -> ("EnumVal", "12").
std::pair<std::string_view, std::string_view> SplitIndex(std::string_view word) {
  std::size_t letters = 0;
  while (letters < word.size() && std::isalpha(static_cast<unsigned char>(word[letters])))
    ++letters;
  return {word.substr(0, letters), word.substr(letters)};
}

/// `index` as the readers write it (plain decimal, no leading zeros, "-" where negative), or
/// nothing when it is no integer the readers could ask for: a 32-bit integer, or an unsigned
/// 64-bit group number when `group`.
std::optional<std::string> Canonical(std::string_view index, bool group) {
  const bool minus = !group && index.starts_with('-');
  const std::string_view digits = index.substr(minus ? 1 : 0);
  if (digits.empty() || !std::all_of(digits.begin(), digits.end(), [](char c) {
        return std::isdigit(static_cast<unsigned char>(c)) != 0;
      }))
    return std::nullopt;
  unsigned long long value = 0;
  const auto [end, fault] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  (void)end;
  if (fault != std::errc()) return std::nullopt;
  if (!group && value > static_cast<unsigned long long>(INT_MAX) + (minus ? 1 : 0))
    return std::nullopt;
  return (minus && value != 0 ? "-" : "") + std::to_string(value);
}

KEPValueFinding Unknown(const std::string& message, const std::string& meant) {
  return {message, "never read: no reader asks for it" +
                       (meant.empty() ? std::string() : " (did you mean '" + meant + "'?)")};
}

/// The index of an indexed key (".Label01"), when the readers would ask for it otherwise.
Finding IndexFinding(const std::string& prefix, std::string_view word, std::string_view index,
                     const std::string& canonical) {
  if (canonical == index) return std::nullopt;
  return KEPValueFinding{
      "index '" + std::string(index) + "' is not how the readers write " + canonical,
      "never read: the readers ask for " + prefix + std::string(word) + canonical};
}

Finding Unit(const std::string& value) {
  const KEPUnicodeString name = KEPUnicodeString::FromUTF8(value);
  if (KEPParmDictionary::FindUnit(name) || KEPParmDictionary::FindUnit(name.ToUpper()))
    return std::nullopt;
  std::string known;
  for (const KEPICkeMagnitude* magnitude : KEPParmDictionary::Magnitudes())
    for (const KEPICkeUnit* unit : KEPParmDictionary::UnitsOf(magnitude))
      known += (known.empty() ? "" : ", ") + unit->Name().ToUTF8();
  return KEPValueFinding{value.empty() ? "empty value" : "unknown unit '" + value + "'",
                         "the unit reader fails and values are not scaled to model units "
                         "(units: " +
                             known + ")"};
}

Finding Magnitude(const std::string& value) {
  const KEPUnicodeString name = KEPUnicodeString::FromUTF8(value);
  if (KEPParmDictionary::FindMagnitude(name) || KEPParmDictionary::FindMagnitude(name.ToUpper()))
    return std::nullopt;
  std::string known;
  for (const KEPICkeMagnitude* magnitude : KEPParmDictionary::Magnitudes())
    known += (known.empty() ? "" : ", ") + magnitude->Name().ToUTF8();
  return KEPValueFinding{value.empty() ? "empty value" : "unknown magnitude '" + value + "'",
                         "the magnitude reader fails (magnitudes: " + known + ")"};
}

Finding GroupCount(const std::string& value) {
  if (Finding finding = KEPValueCheck::Unsigned(value, 64, "the node has no configured groups"))
    return finding;
  unsigned long long count = 0;
  std::from_chars(value.data(), value.data() + value.size(), count);
  if (count <= KEPReaderKeys::kMaxGroupCount) return std::nullopt;
  return KEPValueFinding{
      "more than " + std::to_string(KEPReaderKeys::kMaxGroupCount) + " groups",
      "read as " + std::to_string(count) + ": the editor makes a record for each group"};
}

// "Group<i>.Name", "Group<i>.Order", "Group<i>.CollapsedByDefault".
Finding GroupEntry(const std::string& key, const std::string& stem, std::string_view word,
                   const std::string& value) {
  const std::optional<std::string> number =
      stem.starts_with("Group") ? Canonical(std::string_view(stem).substr(5), true) : std::nullopt;
  if (!number)
    return KEPValueFinding{"'." + std::string(word) + "' follows a group key (Group0, Group1, ...)",
                           "never read: no reader asks for " + key};
  if (*number != std::string_view(stem).substr(5))
    return KEPValueFinding{
        "group number '" + stem.substr(5) + "' is not how the readers write " + *number,
        "never read: the readers ask for Group" + *number + "." + std::string(word)};
  if (word == "Order") return KEPValueCheck::Unsigned(value, 64, "the group gets no order from it");
  if (word == "CollapsedByDefault") return KEPValueCheck::Switch(value, "collapsed", "expanded");
  return std::nullopt;
}

// "<parameter>.<word>" and "<parameter>.<word><index>".
Finding ParameterEntry(const std::string& stem, std::string_view suffix, const std::string& value) {
  const auto [word, index] = SplitIndex(suffix);
  const std::string prefix = stem + ".";
  if (In(kIndexedWords, word)) {
    if (index.empty())
      return KEPValueFinding{"'." + std::string(word) + "' without an index",
                             "never read: the readers ask for " + prefix + std::string(word) +
                                 "0, " + prefix + std::string(word) + "1, ..."};
    const std::optional<std::string> canonical = Canonical(index, false);
    if (!canonical) return Unknown("unknown key suffix '." + std::string(suffix) + "'", "");
    if (Finding finding = IndexFinding(prefix, word, index, *canonical)) return finding;
    if (word == "EnumVal")
      return KEPValueCheck::Integer(value, "entry " + *canonical + " takes its value from " +
                                               prefix + "Enum" + *canonical +
                                               " read as a number instead");
    return std::nullopt;
  }
  const bool known = In(kRangeWords, word) || In(kCheckedWords, word) || In(kTextWords, word);
  if (known && Canonical(index, false))
    return KEPValueFinding{"'." + std::string(word) + "' takes no index",
                           "never read: the readers ask for " + prefix + std::string(word)};
  if (!known || !index.empty()) {
    // A known word in another case ("min") is most likely a typing mistake.
    std::string meant = Meant(word, kRangeWords, kCheckedWords, kTextWords, kIndexedWords);
    if (meant == word || !(index.empty() || Canonical(index, false))) meant.clear();
    if (!meant.empty()) meant = "." + meant + std::string(index);
    return Unknown("unknown key suffix '." + std::string(suffix) + "'", meant);
  }
  if (In(kRangeWords, word))
    return KEPValueCheck::Number(value, word == "Step" ? kUnreadStep : kUnreadRange);
  if (word == "SortingOrder")
    return KEPValueCheck::Unsigned(value, 32,
                                   "the parameter is ordered by name against its neighbours");
  if (word == "Unit") return Unit(value);
  if (word == "Magnitude") return Magnitude(value);
  return std::nullopt;
}
}  // namespace

std::optional<KEPValueFinding> KEPReaderKeys::ConfigurationEntry(const std::string& key,
                                                                 const std::string& value,
                                                                 std::string& parameter) {
  parameter.clear();
  if (key == "GroupCount") return GroupCount(value);
  if (key == "GlobalShaderSortingOrder.Status")
    return KEPValueCheck::Switch(value, "sorting on", "sorting off");
  const auto dot = key.rfind('.');
  if (dot == std::string::npos || dot == 0 || dot + 1 == key.size())
    return Unknown("unknown key", Meant(key, kNodeKeys));
  const std::string stem = key.substr(0, dot);
  const std::string_view suffix = std::string_view(key).substr(dot + 1);
  if (stem == "GlobalShaderSortingOrder") return Unknown("unknown key", Meant(key, kNodeKeys));
  if (In(kGroupWords, suffix)) {
    // "roughness.Name" is most likely meant for the parameter: name it so that tools can point
    // at the parameter.
    if (!stem.starts_with("Group") || !Canonical(std::string_view(stem).substr(5), true))
      parameter = stem;
    return GroupEntry(key, stem, suffix, value);
  }
  parameter = stem;
  return ParameterEntry(stem, suffix, value);
}

std::optional<KEPValueFinding> KEPReaderKeys::ResourceEntry(const std::string& key,
                                                            const std::string& value) {
  const auto [word, index] = SplitIndex(key);
  if (index.empty() && In(kResourceWords, word)) {
    if (word == "min" || word == "max") return KEPValueCheck::Number(value, kUnreadRange);
    if (word == "step") return KEPValueCheck::Number(value, kUnreadStep);
    return std::nullopt;
  }
  if (!In(kIndexedResourceWords, word)) {
    std::string meant = Meant(word, kResourceWords, kIndexedResourceWords);
    if (!meant.empty()) meant += std::string(index);
    return Unknown("unknown resource key", meant);
  }
  if (index.empty())
    return KEPValueFinding{"resource '" + key + "' without an index",
                           "never read: the readers ask for " + key + "0, " + key + "1, ..."};
  const std::optional<std::string> canonical = Canonical(index, false);
  if (!canonical) return Unknown("unknown resource key", "");
  if (Finding finding = IndexFinding("", word, index, *canonical)) return finding;
  if (word == "enumvalue")
    return KEPValueCheck::Integer(value, "entry " + *canonical + " has no value");
  if (word == "enumindex")
    return KEPValueCheck::Integer(value, "value " + *canonical + " finds no entry");
  return std::nullopt;
}

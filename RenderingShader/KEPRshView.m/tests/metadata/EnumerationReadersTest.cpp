// Enumeration readers: the value of an entry and the search for the entry of a value.
#include "MetadataTestSupport.h"

namespace keptest {
namespace {

class EnumerationTest : public MetadataTest {};

using Answer = std::pair<HRESULT, int>;  // the output from the preset -99
const Answer kNone{E_FAIL, -99};

/// The immersive and the classic answer of `read` (one of the two enumeration readers).
template <class Read>
std::pair<Answer, Answer> Both(KEPHostParameter* parameter, Read read) {
  std::pair<Answer, Answer> answers{kNone, kNone};
  const Behaviours b = Behave(parameter);
  answers.first.first = read(b.imm.Get(), answers.first.second);
  answers.second.first = read(b.dlg.Get(), answers.second.second);
  return answers;
}

TEST_F(EnumerationTest, ValueOfEntryThreeFromEnumValElseTheLabelReadAsANumber) {
  const std::pair<Keys, Answer> rows[] = {
      {{{".EnumVal3", "5"}, {".Enum3", "99"}}, {S_OK, 5}},
      {{{".Enum3", " 7 apples"}}, {S_OK, 7}},
      {{{".Enum3", "Seven"}}, kNone},
      // ".EnumVal" reads as "%d" reads it: trailing text is ignored, not a reason to fall back.
      {{{".EnumVal3", "7abc"}, {".Enum3", "99"}}, {S_OK, 7}},
      {{{".EnumVal3", "abc"}, {".Enum3", "8"}}, {S_OK, 8}},
      {{{".EnumVal03", "5"}, {".Enum03", "5"}, {".EnumVal2", "5"}}, kNone},
      {{}, kNone}};
  for (const auto& [config, expected] : rows) {
    const auto answers = Both(Param(Integer(0), config), [](auto* behaviour, int& out) {
      return behaviour->GetEnumValue(3, out);
    });
    EXPECT_EQ(answers, std::make_pair(expected, expected));
  }
  int value = -99;
  EXPECT_EQ(Imm(Param(Integer(0), {}, Keys{{"enumvalue3", "x"}}))->GetEnumValue(3, value), E_FAIL);
  EXPECT_EQ(value, -99);
}

TEST_F(EnumerationTest, IndexOfAValueIsTheSmallestMatchingIndexOfTheRange) {
  const Keys range = {{".Min", "0"}, {".Max", "3"}};
  const Keys wide = {{".Min", "-2147483648"}, {".Max", "2147483647"}};
  const std::tuple<const char*, Keys, int, Answer> rows[] = {
      {"enum value", With(range, {{".EnumVal1", "10"}}), 10, {S_OK, 1}},
      {"label", With(range, {{".Enum2", "20"}}), 20, {S_OK, 2}},
      {"smallest",
       With(range, {{".Enum2", "2"}, {".EnumVal1", "5"}, {".EnumVal3", "2"}}),
       2,
       {S_OK, 2}},
      {"unequal value, label", With(range, {{".EnumVal2", "5"}, {".Enum2", "20"}}), 20, {S_OK, 2}},
      {"trailing text", With(range, {{".Enum1", "4 x"}, {".EnumVal2", "5 x"}}), 5, {S_OK, 2}},
      {"ends", With(range, {{".Enum0", "7"}, {".EnumVal3", "8"}}), 8, {S_OK, 3}},
      {"lower end", With(range, {{".Enum0", "7"}}), 7, {S_OK, 0}},
      {"outside", With(range, {{".Enum4", "40"}, {".Enum-1", "40"}}), 40, kNone},
      {"-1 unset", range, -1, kNone},
      {"word", With(range, {{".Enum1", "Seven"}}), 0, kNone},
      {"index texts",
       {{".Min", "-1"}, {".Max", "9"}, {".Enum07", "7"}, {".Enum+7", "7"}},
       7,
       kNone},
      {"minus zero", {{".Min", "-1"}, {".Max", "9"}, {".EnumVal-0", "7"}}, 7, kNone},
      {"past 65536", {{".Min", "0"}, {".Max", "100000"}, {".EnumVal70000", "7"}}, 7, {S_OK, 70000}},
      {"far from min", {{".Min", "-70000"}, {".Max", "3"}, {".Enum0", "9"}}, 9, {S_OK, 0}},
      {"int max",
       With(wide, {{".Enum2147483647", "9"}, {".EnumVal-2147483648", "8"}}),
       9,
       {S_OK, 2147483647}},
      {"int min", With(wide, {{".EnumVal-2147483648", "8"}}), 8, {S_OK, -2147483647 - 1}},
      {"empty range", {{".Min", "3"}, {".Max", "0"}, {".Enum1", "1"}}, 1, kNone},
      {"bad minimum", {{".Min", "low"}, {".Max", "3"}, {".Enum0", "0"}}, 0, kNone},
      {"no maximum", {{".Min", "0"}, {".Enum0", "0"}}, 0, kNone}};
  for (const auto& [what, config, value, expected] : rows) {
    const int wanted = value;
    const auto answers = Both(Param(Integer(0), config), [&](auto* behaviour, int& out) {
      return behaviour->GetEnumIndex(wanted, out);
    });
    EXPECT_EQ(answers, std::make_pair(expected, expected)) << what;
  }
  // Only the immersive search stands in ".HardMin" for a missing ".Min".
  const auto answers =
      Both(Param(Integer(0), {{".HardMin", "0"}, {".Max", "3"}, {".Enum1", "5"}}),
           [](auto* behaviour, int& out) { return behaviour->GetEnumIndex(5, out); });
  EXPECT_EQ(answers, std::make_pair(Answer{S_OK, 1}, kNone));
}

TEST_F(EnumerationTest, IndexSearchSeesTheParentsKeysUnlessTheChildShadowsThem) {
  std::string id;
  KEPHostParameter* parameter = Param(Integer(0), {{".EnumVal1", "3"}}, std::nullopt, &id);
  KEPHostConfiguration::SetParent(id, "base");
  Config("base", {{"p.Min", "0"}, {"p.Max", "9"}, {"p.EnumVal1", "9"}, {"p.Enum5", "9"}});
  for (const auto& [value, expected] :
       {std::pair{3, Answer{S_OK, 1}}, std::pair{9, Answer{S_OK, 5}}, std::pair{4, kNone}}) {
    int index = -99;
    const HRESULT hr = Imm(parameter)->GetEnumIndex(value, index);
    EXPECT_EQ(Answer(hr, index), expected) << value;
  }
}

TEST_F(EnumerationTest, IndexFromTheResourcesWhenOffered) {
  const std::pair<Keys, Answer> rows[] = {{{{"enumindex7", "3"}}, {S_OK, 3}},
                                          {{{"enumindex7", " 4x"}}, {S_OK, 4}},
                                          {{{"enumindex7", "x"}}, kNone},
                                          {{{"enumindex3", "3"}}, kNone}};
  for (const auto& [resources, expected] : rows) {
    KEPHostParameter* parameter =
        Param(Integer(0), {{".Min", "0"}, {".Max", "9"}, {".Enum3", "7"}}, resources);
    const auto answers =
        Both(parameter, [](auto* behaviour, int& out) { return behaviour->GetEnumIndex(7, out); });
    EXPECT_EQ(answers, std::make_pair(expected, expected));
  }
}

}  // namespace
}  // namespace keptest

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "KEPHostUnits.h"
#include "KEPParmDictionary.h"
#include "KEP_var.h"

namespace {

KEPUnicodeString U(const char* text) {
  return KEPUnicodeString::FromUTF8(text);
}

class ParmDictionaryTest : public ::testing::Test {
 protected:
  void TearDown() override {
    KEPHostUnits::RestoreUnitsForTest();
    KEPHostUnits::ResetCurrentUnits();
  }
};

struct UnitRow {
  const char* name;
  const char* magnitude;
  double oneInBase;  // 1 of this unit, in the magnitude's base unit
};

TEST_F(ParmDictionaryTest, EveryUnitIsFoundInBothCasesWithItsExactFactor) {
  const UnitRow rows[] = {
      {"mm", "LENGTH", 1.0},   {"cm", "LENGTH", 10.0},
      {"m", "LENGTH", 1000.0}, {"km", "LENGTH", 1.0e6},
      {"in", "LENGTH", 25.4},  {"ft", "LENGTH", 304.8},
      {"rad", "ANGLE", 1.0},   {"deg", "ANGLE", std::numbers::pi / 180.0},
  };
  for (const UnitRow& row : rows) {
    SCOPED_TRACE(row.name);
    KEPICkeUnit* unit = KEPParmDictionary::FindUnit(U(row.name));
    ASSERT_NE(unit, nullptr);
    EXPECT_EQ(KEPParmDictionary::FindUnit(U(row.name).ToUpper()), unit);
    EXPECT_EQ(unit->Name().ToUTF8(), row.name);
    EXPECT_EQ(unit->Symbol().ToUTF8(), row.name);
    ASSERT_NE(unit->Magnitude(), nullptr);
    EXPECT_EQ(unit->Magnitude()->Name().ToUTF8(), row.magnitude);
    EXPECT_EQ(unit->ToBase(1.0), row.oneInBase);
    EXPECT_DOUBLE_EQ(unit->FromBase(row.oneInBase), 1.0);
    EXPECT_DOUBLE_EQ(unit->FromBase(unit->ToBase(-3.75)), -3.75);
  }
}

TEST_F(ParmDictionaryTest, LookupIsExactOtherwise) {
  // Only the registered spelling and its upper-case form are known: readers that want another
  // form convert the name themselves.
  EXPECT_EQ(KEPParmDictionary::FindUnit(U("Mm")), nullptr);
  EXPECT_EQ(KEPParmDictionary::FindUnit(U("mm ")), nullptr);
  EXPECT_EQ(KEPParmDictionary::FindUnit(U("")), nullptr);
  EXPECT_EQ(KEPParmDictionary::FindUnit(U("K")), nullptr);
  EXPECT_EQ(KEPParmDictionary::FindMagnitude(U("length")), nullptr);
  EXPECT_NE(KEPParmDictionary::FindMagnitude(KEPParmDictionary::LengthType), nullptr);
  EXPECT_NE(KEPParmDictionary::FindMagnitude(KEPParmDictionary::AngleType), nullptr);
}

TEST_F(ParmDictionaryTest, ConstantsAreReciprocal) {
  EXPECT_EQ(KEPDegreeToRadian, std::numbers::pi / 180.0);
  EXPECT_DOUBLE_EQ(KEPDegreeToRadian * KEPRadianToDegree, 1.0);
  EXPECT_DOUBLE_EQ(KEPParmDictionary::FindUnit(U("deg"))->ToBase(180.0), std::numbers::pi);
}

TEST_F(ParmDictionaryTest, ConvertingThroughTheBaseUnit) {
  // A value stored in metres shown in millimetres, and back.
  KEPICkeUnit* metre = KEPParmDictionary::FindUnit(U("m"));
  KEPICkeUnit* millimetre = KEPParmDictionary::FindUnit(U("mm"));
  EXPECT_DOUBLE_EQ(millimetre->FromBase(metre->ToBase(0.5)), 500.0);
  EXPECT_DOUBLE_EQ(metre->FromBase(millimetre->ToBase(250.0)), 0.25);
  KEPICkeUnit* foot = KEPParmDictionary::FindUnit(U("ft"));
  KEPICkeUnit* inch = KEPParmDictionary::FindUnit(U("in"));
  EXPECT_DOUBLE_EQ(inch->FromBase(foot->ToBase(1.0)), 12.0);
}

TEST_F(ParmDictionaryTest, CurrentUnitDefaultsToBaseAndFollowsTheUsersChoice) {
  KEPICkeMagnitude* length = KEPParmDictionary::FindMagnitude(KEPParmDictionary::LengthType);
  KEPICkeMagnitude* angle = KEPParmDictionary::FindMagnitude(KEPParmDictionary::AngleType);
  EXPECT_EQ(length->BaseUnit()->Name().ToUTF8(), "mm");
  EXPECT_EQ(angle->BaseUnit()->Name().ToUTF8(), "rad");
  EXPECT_EQ(length->CurrentUnit(), length->BaseUnit());

  EXPECT_EQ(length->SetCurrentUnit(KEPParmDictionary::FindUnit(U("IN"))), S_OK);
  EXPECT_EQ(length->CurrentUnit()->Name().ToUTF8(), "in");
  // The choice of one magnitude leaves the others alone.
  EXPECT_EQ(angle->CurrentUnit(), angle->BaseUnit());

  // A unit of another magnitude, or none, is refused and changes nothing.
  EXPECT_EQ(length->SetCurrentUnit(KEPParmDictionary::FindUnit(U("deg"))), E_INVALIDARG);
  EXPECT_EQ(length->SetCurrentUnit(nullptr), E_INVALIDARG);
  EXPECT_EQ(length->CurrentUnit()->Name().ToUTF8(), "in");

  KEPHostUnits::ResetCurrentUnits();
  EXPECT_EQ(length->CurrentUnit(), length->BaseUnit());
}

TEST_F(ParmDictionaryTest, UnitsOfAMagnitudeListEachUnitOnceBaseFirst) {
  const auto units =
      KEPParmDictionary::UnitsOf(KEPParmDictionary::FindMagnitude(KEPParmDictionary::AngleType));
  ASSERT_EQ(units.size(), 2u);
  EXPECT_EQ(units[0]->Name().ToUTF8(), "rad");
  EXPECT_EQ(units[1]->Name().ToUTF8(), "deg");
  EXPECT_EQ(
      KEPParmDictionary::UnitsOf(KEPParmDictionary::FindMagnitude(KEPParmDictionary::LengthType))
          .size(),
      6u);
  EXPECT_TRUE(KEPParmDictionary::UnitsOf(nullptr).empty());
  EXPECT_EQ(KEPParmDictionary::Magnitudes().size(), 2u);
}

TEST_F(ParmDictionaryTest, ARemovedUnitIsUnknownUntilRestoredAndStaysUsable) {
  KEPICkeUnit* mm = KEPParmDictionary::FindUnit(U("mm"));
  ASSERT_TRUE(KEPHostUnits::RemoveUnitForTest(U("mm")));
  ASSERT_TRUE(KEPHostUnits::RemoveUnitForTest(U("MM")));
  EXPECT_FALSE(KEPHostUnits::RemoveUnitForTest(U("mm")));
  EXPECT_EQ(KEPParmDictionary::FindUnit(U("mm")), nullptr);
  EXPECT_EQ(KEPParmDictionary::FindUnit(U("MM")), nullptr);
  EXPECT_EQ(mm->ToBase(2.0), 2.0);  // a pointer handed out earlier still works
  KEPHostUnits::RestoreUnitsForTest();
  EXPECT_EQ(KEPParmDictionary::FindUnit(U("mm")), mm);
  EXPECT_EQ(KEPParmDictionary::FindUnit(U("MM")), mm);
}

TEST_F(ParmDictionaryTest, ReferencesAreHarmlessOnProcessWideObjects) {
  KEPICkeUnit* cm = KEPParmDictionary::FindUnit(U("cm"));
  {
    KEP_var<KEPICkeUnit> a(cm);
    KEP_var<KEPICkeUnit> b(cm);
  }
  for (int i = 0; i < 5; ++i) cm->Release();
  EXPECT_EQ(cm->ToBase(1.0), 10.0);
  // Units and magnitudes answer their interfaces.
  KEP_var<KEPICkeMagnitude> magnitude = KEPQueryVar<KEPICkeMagnitude>(cm->Magnitude());
  EXPECT_TRUE(magnitude);
  EXPECT_FALSE(KEPQueryVar<KEPICkeMagnitude>(cm));
}

}  // namespace

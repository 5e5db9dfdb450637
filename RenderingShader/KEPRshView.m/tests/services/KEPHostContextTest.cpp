// One reset forgets every store and cache of the process; a context is a session.
#include <gtest/gtest.h>

#include "KEPFileServices.h"
#include "KEPHostConfiguration.h"
#include "KEPHostContext.h"
#include "KEPHostShaderLibrary.h"
#include "KEPHostShaderManager.h"
#include "KEPHostUnits.h"
#include "KEPParmDictionary.h"
#include "KEPProcessReset.h"
#include "KEPRbaConfiguration.h"
#include "KEPRecord.h"
#include "KEPRshShaderManager.h"
#include "KEPSysPreferenceRepository.h"
#include "KEPTestSupport.h"
#include "KEPTrace.h"

namespace {

int gModuleCacheResets = 0;
bool gStoresGoneBeforeHook = false;
void ForgetModuleCache() {
  ++gModuleCacheResets;
  // A hook runs after the host's own state is gone: the session's values no longer answer.
  KEPString value;
  gStoresGoneBeforeHook =
      FAILED(KEPGetEnv("KEPRSH_CONTEXT_TEST", value)) &&
      FAILED(KEPRbaConfiguration::GetHierarchicalValue("Paint", "colour.Min", value));
}

class HostContextTest : public keptest::Fixture {};

TEST_F(HostContextTest, ResetForgetsEveryStoreAndCacheButNotRegistrations) {
  KEPHostConfiguration::SetValue("Paint", "colour.Min", "0");
  KEPHostShaderManager::Install(std::make_shared<KEPHostShaderLibrary>());
  KEPHostContext::SetEnvironment("KEPRSH_CONTEXT_TEST", "set for this session");
  KEPICkeMagnitude* length = KEPParmDictionary::FindMagnitude(KEPParmDictionary::LengthType);
  ASSERT_NE(length, nullptr);
  ASSERT_EQ(length->SetCurrentUnit(KEPParmDictionary::FindUnit(u"cm")), S_OK);
  ASSERT_TRUE(KEPHostUnits::RemoveUnitForTest(u"km"));
  KEPModuleTrace::SetLevel(5);
  int traced = 0;
  KEPTraceSink::Set([&traced](const KEPTraceEntry&) { ++traced; });
  KEPSysPreferenceRepository* preferences = KEPSysPreferenceRepository::GetRepository("Context");
  ASSERT_NE(preferences, nullptr);
  ASSERT_EQ(preferences->SetValue("group", "collapsed"), S_OK);  // never committed
  KEPRegisterProcessResetHook(&ForgetModuleCache);
  KEPRegisterProcessResetHook(&ForgetModuleCache);  // once however often
  gModuleCacheResets = 0;

  KEPHostContext::Reset();

  KEPString text;
  EXPECT_EQ(KEPRbaConfiguration::GetHierarchicalValue("Paint", "colour.Min", text), E_FAIL);
  EXPECT_EQ(KEPRshShaderManager::GetManager(), nullptr);
  EXPECT_EQ(KEPGetEnv("KEPRSH_CONTEXT_TEST", text), E_FAIL);
  EXPECT_EQ(length->CurrentUnit(), length->BaseUnit());
  EXPECT_NE(KEPParmDictionary::FindUnit(u"km"), nullptr);
  EXPECT_EQ(KEPModuleTrace::GetLevel(), 0);
  KEPModuleTrace::SetLevel(1);
  KEPModuleTrace::Trace(1, "(Test) after the reset\n");
  EXPECT_EQ(traced, 0) << "the sink of the last session still receives traces";
  KEPModuleTrace::SetLevel(0);
  EXPECT_NE(KEPSysPreferenceRepository::GetRepository("Context")->GetValue("group", text), S_OK);
  EXPECT_EQ(gModuleCacheResets, 1);
  EXPECT_TRUE(gStoresGoneBeforeHook) << "a reset hook ran while the stores still held state";
  // What loaded code registered stays: a reset host still knows its own extensions.
  KEPHostContext::Reset();
  EXPECT_EQ(gModuleCacheResets, 2);
  KEPUnregisterProcessResetHook(&ForgetModuleCache);
  KEPHostContext::Reset();
  EXPECT_EQ(gModuleCacheResets, 2) << "an unregistered hook still runs";
}

TEST_F(HostContextTest, AnEnvironmentValueOfTheSessionGoesBeforeTheRealOne) {
  ::setenv("KEPRSH_CONTEXT_TEST", "real", 1);
  KEPString value;
  ASSERT_EQ(KEPGetEnv("KEPRSH_CONTEXT_TEST", value), S_OK);
  EXPECT_EQ(value, "real");
  KEPHostContext::SetEnvironment("KEPRSH_CONTEXT_TEST", "");
  ASSERT_EQ(KEPGetEnv("KEPRSH_CONTEXT_TEST", value), S_OK);
  EXPECT_EQ(value, "") << "an empty value is a value";
  {
    KEPHostContext session;  // starts and ends with a reset
    ASSERT_EQ(KEPGetEnv("KEPRSH_CONTEXT_TEST", value), S_OK);
    EXPECT_EQ(value, "real");
    KEPHostContext::SetEnvironment("KEPRSH_CONTEXT_TEST", "session");
  }
  ASSERT_EQ(KEPGetEnv("KEPRSH_CONTEXT_TEST", value), S_OK);
  EXPECT_EQ(value, "real");
  ::unsetenv("KEPRSH_CONTEXT_TEST");
}

TEST(HostContextDeathTest, OnlyOneContextAtATime) {
  EXPECT_DEATH(
      {
        KEPHostContext first;
        KEPHostContext second;
      },
      "only one host context");
}

}  // namespace

// The model tells its views about every write, after the write and outside the render lock.
#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "KEPRdgRenderLock.h"
#include "KEPRshModelEvents.h"
#include "KEPTestSupport.h"

namespace {

class ModelEventsTest : public keptest::Fixture {
 protected:
  void SetUp() override {
    keptest::Fixture::SetUp();
    world_ = std::make_unique<keptest::World>();
    world_->Add(keptest::Type("plain")
                    .Param("gloss", keptest::Scalar(0.5f))
                    .Param("tint", keptest::Color(1, 0, 0))
                    .Param("slot", keptest::Void()));
    node_ = world_->Node("plain", "a");
  }
  void TearDown() override {
    world_.reset();
    keptest::Fixture::TearDown();
  }
  std::unique_ptr<keptest::World> world_;
  KEPHostShaderNode* node_ = nullptr;
};

TEST_F(ModelEventsTest, EveryWriteIsAnnouncedOnceWithItsKind) {
  std::vector<std::pair<KEPIRshParameter*, KEPRshParameterChangeKind>> seen;
  const int token = KEPRshModelEvents::AddParameterObserver(
      [&](KEPIRshParameter* p, KEPRshParameterChangeKind kind) { seen.emplace_back(p, kind); });
  KEPHostParameter* gloss = world_->Param(node_, "gloss");
  KEPHostParameter* tint = world_->Param(node_, "tint");
  KEPHostParameter* slot = world_->Param(node_, "slot");
  ASSERT_EQ(gloss->SetScalarValue(0.25f), S_OK);
  ASSERT_EQ(tint->SetColorValue(0, 1, 0), S_OK);
  // A write the parameter refuses changes nothing and tells nobody.
  ASSERT_NE(tint->SetScalarValue(3.0f), S_OK);
  KEPHostShaderNode* other = world_->Node("plain", "b");
  ASSERT_EQ(slot->SetConnectedShader(other), S_OK);
  ASSERT_EQ(seen.size(), 3u);
  EXPECT_EQ(seen[0].first, static_cast<KEPIRshParameter*>(gloss));
  EXPECT_EQ(seen[0].second, KEPRshParameterChangeKind::Value);
  EXPECT_EQ(seen[1].first, static_cast<KEPIRshParameter*>(tint));
  EXPECT_EQ(seen[2].second, KEPRshParameterChangeKind::Connection);
  KEPRshModelEvents::RemoveObserver(token);
  ASSERT_EQ(gloss->SetScalarValue(0.75f), S_OK);
  EXPECT_EQ(seen.size(), 3u);
}

TEST_F(ModelEventsTest, ObserversRunAfterTheRenderLockIsReleased) {
  bool lockFree = false;
  const int token =
      KEPRshModelEvents::AddParameterObserver([&](KEPIRshParameter*, KEPRshParameterChangeKind) {
        // A renderer thread must be able to take the lock while the views refresh.
        std::thread renderer([&] {
          lockFree = KEPRdgRenderLock::Mutex().try_lock();
          if (lockFree) KEPRdgRenderLock::Mutex().unlock();
        });
        renderer.join();
      });
  ASSERT_EQ(world_->Param(node_, "gloss")->SetScalarValue(0.1f), S_OK);
  EXPECT_TRUE(lockFree);
  KEPRshModelEvents::RemoveObserver(token);
}

TEST_F(ModelEventsTest, ObserversMayRemoveThemselvesAndOthersDuringADispatch) {
  int first = 0, second = 0, late = 0;
  int secondToken = 0, firstToken = 0, lateToken = 0;
  firstToken = KEPRshModelEvents::AddParameterObserver([&](auto*, auto) {
    ++first;
    KEPRshModelEvents::RemoveObserver(firstToken);
    KEPRshModelEvents::RemoveObserver(secondToken);
    // Added during the dispatch: called from the next one on.
    lateToken = KEPRshModelEvents::AddParameterObserver([&](auto*, auto) { ++late; });
  });
  secondToken = KEPRshModelEvents::AddParameterObserver([&](auto*, auto) { ++second; });
  KEPHostParameter* gloss = world_->Param(node_, "gloss");
  ASSERT_EQ(gloss->SetScalarValue(0.2f), S_OK);
  EXPECT_EQ(first, 1);
  EXPECT_EQ(second, 0);
  EXPECT_EQ(late, 0);
  ASSERT_EQ(gloss->SetScalarValue(0.3f), S_OK);
  EXPECT_EQ(first, 1);
  EXPECT_EQ(late, 1);
  KEPRshModelEvents::RemoveObserver(lateToken);
}

TEST_F(ModelEventsTest, BeginAndEndReachShaderModifyObserversOnly) {
  std::vector<std::pair<std::string, bool>> seen;
  int parameterCalls = 0;
  const int parameterToken =
      KEPRshModelEvents::AddParameterObserver([&](auto*, auto) { ++parameterCalls; });
  const int shaderToken = KEPRshModelEvents::AddShaderModifyObserver(
      [&](const KEPRbaShaderModifyNotification& n, bool begin) {
        seen.emplace_back(n.changeClass, begin);
      });
  KEPRbaBeginShaderModifyNotification begin;
  begin.changeClass = "Connection";
  KEPRbaEndShaderModifyNotification end;
  end.changeClass = "Connection";
  KEPRshModelEvents::SendBegin(begin);
  KEPRshModelEvents::SendEnd(end);
  EXPECT_EQ(seen, (std::vector<std::pair<std::string, bool>>{{"Connection", true},
                                                             {"Connection", false}}));
  EXPECT_EQ(parameterCalls, 0);
  KEPRshModelEvents::RemoveObserver(parameterToken);
  KEPRshModelEvents::RemoveObserver(shaderToken);
}

TEST_F(ModelEventsTest, ANodeGoingAwayAnnouncesNothingOfItsOwnParameters) {
  KEPHostShaderNode* other = world_->Node("plain", "b");
  ASSERT_EQ(world_->Param(node_, "slot")->SetConnectedShader(other), S_OK);
  int calls = 0;
  const int token = KEPRshModelEvents::AddParameterObserver([&](auto*, auto) { ++calls; });
  world_.reset();
  EXPECT_EQ(calls, 0);
  KEPRshModelEvents::RemoveObserver(token);
}

}  // namespace

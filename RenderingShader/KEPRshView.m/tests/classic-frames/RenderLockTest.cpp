// Every classic frame writes under the render lock, so that a render thread never reads a value
// while a person's change is being written.
#include <future>
#include <mutex>
#include <vector>

#include "FramesTestSupport.h"
#include "KEPHostValueJson.h"
#include "KEPRdgRenderLock.h"
#include "KEPRshParameterFrame.h"
#include "KEPVidTree.h"

namespace keptest {
namespace {

class RenderLockTest : public FrameTest {
 protected:
  static bool RenderThreadCanLock() {
    return std::async(std::launch::async,
                      [] {
                        const bool got = KEPRdgRenderLock::Mutex().try_lock();
                        if (got) KEPRdgRenderLock::Mutex().unlock();
                        return got;
                      })
        .get();
  }
};

TEST_F(RenderLockTest, EveryFrameHoldsTheLockAroundItsWrite) {
  struct Row {
    const char* name;
    KEPHostValue value;
    Keys keys;
    const char* control;
    KEPVidAction action;
    const char* argument;
  } const rows[] = {
      {"scalar spinner",
       KEPHostValue::Scalar(0.5f),
       {{".Widget", "spinner"}},
       "scalarSpinner",
       KEPVidAction::Set,
       "0.25"},
      {"scalar slider",
       KEPHostValue::Scalar(0.5f),
       {{".Widget", "slider"}},
       "scalarSlider",
       KEPVidAction::Set,
       "0.25"},
      {"integer spinner",
       KEPHostValue::Integer(1),
       {{".Widget", "spinner"}},
       "integerSpinner",
       KEPVidAction::Set,
       "5"},
      {"integer check",
       KEPHostValue::Integer(0),
       {{".Widget", "check"}},
       "integerCheck",
       KEPVidAction::Toggle,
       "on"},
      {"boolean", KEPHostValue::Boolean(false), {}, "booleanCheck", KEPVidAction::Toggle, "on"},
      {"vector", KEPHostValue::Vector({1, 2, 3}), {}, "ySpinner", KEPVidAction::Set, "5"},
      {"vector slider",
       KEPHostValue::Vector({1, 2, 3}),
       {{".Widget", "sliderx3"}},
       "scalarSlider[2]",
       KEPVidAction::Set,
       "0.5"},
      {"colour",
       KEPHostValue::Color(0.2f, 0.2f, 0.2f),
       {},
       "blueSpinner",
       KEPVidAction::Set,
       "0.7"},
  };
  const auto text = [](KEPHostParameter* p) { return KEPHostValueJson::Write(p->Value(), ""); };
  for (const Row& r : rows) {
    SCOPED_TRACE(r.name);
    KEPHostParameter* p = Param(r.value, r.keys);
    auto* frame = Build<KEPRshParameterFrame>(p);
    ASSERT_NE(frame, nullptr);
    std::string error;
    KEPVidWidget* control = KEPVidFindByPath(frame, r.control, error);
    ASSERT_NE(control, nullptr) << error;
    const std::string before = text(p);
    // The model announces a write after its own hold on the lock ends: a render thread that can
    // still not take the lock then is kept out by the frame's hold.
    std::vector<bool> renderThreadCouldLock;
    const int token = KEPRshModelEvents::AddParameterObserver(
        [&](KEPIRshParameter* changed, KEPRshParameterChangeKind) {
          if (changed == p) renderThreadCouldLock.push_back(RenderThreadCanLock());
        });
    Act(control, r.action, r.argument);
    KEPRshModelEvents::RemoveObserver(token);
    EXPECT_EQ(renderThreadCouldLock, std::vector<bool>{false});
    EXPECT_NE(text(p), before) << "the change was written afterwards";
  }
}

}  // namespace
}  // namespace keptest

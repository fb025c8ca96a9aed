#include "host/LOOPEVENT.h"

#include "host_fixture.h"

namespace quelmark::test {

class LoopEventTest : public HostTest {};

TEST_F(LoopEventTest, TheLoopWaitsNoLongerThanUntilTheTimedHandlerIsDue) {
    Run([this] {
        EXPECT_EQ(LoopEventWait(40), 40);
        window.clock = 0xFFFFFFF0;  // about to turn over
        SetTimedHandler(NoteHandler(), 32);
        EXPECT_EQ(LoopEventWait(40), 32);
        EXPECT_EQ(LoopEventWait(20), 20);
        window.clock += 31;
        EXPECT_EQ(LoopEventWait(40), 1);
        LoopEventCall();
        EXPECT_TRUE(called.empty());
        window.clock += 1;
        EXPECT_EQ(LoopEventWait(40), 0);
        LoopEventCall();
        EXPECT_EQ(called.size(), 1U);
        EXPECT_EQ(LoopEventWait(40), 32);
        SetTimedHandler(-1, 0);
        window.clock += 1000;
        EXPECT_EQ(LoopEventWait(40), 40);
        LoopEventCall();
        EXPECT_EQ(called.size(), 1U);
    });
}

TEST_F(LoopEventTest, NothingIsDueWhileAButtonIsHeld) {
    Run([this] {
        SetTimedHandler(NoteHandler(), 1);
        SetDropHandler(NoteHandler());
        DropPut("/tmp/a");
        window.clock += 100;
        Input.right = true;
        EXPECT_EQ(LoopEventWait(40), 40);
        LoopEventCall();
        EXPECT_TRUE(called.empty());
        Input.right = false;
        EXPECT_EQ(LoopEventWait(40), 0);
        LoopEventCall();
        EXPECT_EQ(called.size(), 2U);
    });
}

TEST_F(LoopEventTest, TheTimeOfAHandlerItselfDoesNotCount) {
    Run([this] {
        look = [this] { window.clock += 500; };
        SetTimedHandler(FunctionFind("Look"), 100);
        window.clock += 100;
        LoopEventCall();
        EXPECT_EQ(LoopEventWait(1000), 100);
    });
}

TEST_F(LoopEventTest, FilesWithoutAHandlerAreForgotten) {
    Run([this] {
        EXPECT_FALSE(DropWanted());
        DropPut("/tmp/a");
        SetDropHandler(NoteHandler());
        EXPECT_TRUE(DropWanted());
        EXPECT_EQ(LoopEventWait(40), 40);
        DropPut("/tmp/b");
        SetDropHandler(-1);
        LoopEventCall();
        EXPECT_TRUE(called.empty());
        EXPECT_EQ(LoopEventWait(40), 40);
        EXPECT_EQ(window.beeps, 0);
    });
}

TEST_F(LoopEventTest, AFileThatFallsOnAHeldButtonIsNotLost) {
    Run([this] {
        SetDropHandler(NoteHandler());
        InputState state = Pointer(1, 1, 1);
        state.dropped = {"/tmp/a"};
        Hand({state});
        HostDeliverHeld();
        EXPECT_TRUE(Input.left);
        Input.left = false;
        LoopEventCall();
        EXPECT_EQ(called.size(), 1U);
    });
}

}  // namespace quelmark::test

#include "host/INPUT.h"

#include <cmath>

#include "ML/ERROR.h"
#include "host_fixture.h"
#include "view/VIEW.h"

namespace quelmark::test {
namespace {

using Calls = std::vector<std::vector<std::int32_t>>;

int PulseColour(int index) {
    return static_cast<int>((127 - 127 * std::cos(2 * 3.14159265358979 * index / 128)) / 6 + 212.5);
}

}  // namespace

class InputTest : public HostTest {};

TEST_F(InputTest, KeyConstantsAreFiftySevenWithTheirCodes) {
    EXPECT_EQ(KeyNames().size(), 57U);
    EXPECT_STREQ(KeyNames().front().name, "ESC");
    EXPECT_STREQ(KeyNames().back().name, "KEY_NUMPAD_PERIOD");
    EXPECT_EQ(KeyNames().back().code, 0x802D);
}

TEST_F(InputTest, EverythingIsEmptyAtTheStart) {
    Run([] {
        for (const std::int32_t handler : Handlers.character) {
            EXPECT_EQ(handler, -1);
        }
        for (const std::int32_t handler : Handlers.special) {
            EXPECT_EQ(handler, -1);
        }
        EXPECT_EQ(Handlers.input, -1);
        EXPECT_EQ(Mode.wait, 1);
        EXPECT_EQ(Mode.tracking, 2);
        EXPECT_EQ(Input.keyCode, 0);
    });
}

TEST_F(InputTest, NumberFortySixIsTheInputHandlerAndOthersOutsideAreIgnored) {
    Run([] {
        BindSpecialKey(0, 1);
        BindSpecialKey(45, 2);
        BindSpecialKey(46, 3);
        BindSpecialKey(47, 4);
        BindSpecialKey(-1, 5);
        EXPECT_EQ(Handlers.special[0], 1);
        EXPECT_EQ(Handlers.special[45], 2);
        EXPECT_EQ(Handlers.input, 3);
        EXPECT_EQ(Handlers.press, -1);
        EXPECT_EQ(Handlers.character[127], -1);
    });
}

TEST_F(InputTest, AWaitStepEndsWithAKeyAButtonOrADrag) {
    Run([this] {
        Hand({Pointer(5, 5, 0), Pointer(6, 5, 0), Key('a', 3), Pointer(6, 5, 1), Pointer(6, 5, 1),
              Pointer(7, 5, 1), Pointer(7, 5, 0)});
        WaitStep();
        EXPECT_EQ(Input.keyCode, 'a');
        EXPECT_EQ(Input.shift, 3);
        WaitStep();
        EXPECT_TRUE(Input.left);
        EXPECT_EQ(Input.keyCode, 0);
        WaitStep();
        EXPECT_EQ(Input.x, 7);
        EXPECT_TRUE(Input.moved);
        WaitStep();
        EXPECT_FALSE(Input.left);
        EXPECT_FALSE(Input.moved);
        EXPECT_TRUE(window.hand.empty());
    });
}

TEST_F(InputTest, MovedComparesWithTheStepBefore) {
    Run([this] {
        InputState key = Key('a');
        key.x = 9;
        Hand({Pointer(5, 5, 0), Pointer(9, 0, 0), key, key});
        WaitStep();
        EXPECT_TRUE(Input.moved);
        WaitStep();
        EXPECT_FALSE(Input.moved);
    });
}

TEST_F(InputTest, ThePulseSwellsAndFades) {
    Run([this] {
        EXPECT_EQ(PulseColour(0), 212);
        EXPECT_EQ(PulseColour(64), 254);
        for (const int steps : {1, 16, 63, 64, 96, 127}) {
            HandlersReset();
            window.palette.clear();
            window.clock += static_cast<std::uint32_t>(5 * steps) + 1;
            Hand({Key('a')});
            WaitStep();
            const int p = PulseColour(steps);
            EXPECT_EQ(window.palette, (std::vector<std::array<int, 4>>{{14, p, 0, p}}));
        }
    });
}

TEST_F(InputTest, ThePulseRestsForFiveMilliseconds) {
    Run([this] {
        HandlersReset();
        window.palette.clear();
        window.clock += 5;
        Hand({Key('a'), Key('a')});
        WaitStep();
        EXPECT_TRUE(window.palette.empty());
        window.clock += 1;
        WaitStep();
        EXPECT_EQ(window.palette.size(), 1U);
    });
}

TEST_F(InputTest, ThePulseRestsOverAnotherProgramsPictureUntilTheViewsAreDrawn) {
    Run([this] {
        HandlersReset();
        window.palette.clear();
        Hand({Key('a'), Key('a'), Key('a')});
        PulseRest();
        for (int i = 0; i < 2; ++i) {
            window.clock += 100;
            WaitStep();
        }
        EXPECT_TRUE(window.palette.empty());
        ViewEnableDrawing(true);
        ViewRedraw(WHOLE_AREA, true);
        WaitStep();
        EXPECT_EQ(window.palette.size(), 1U);
    });
}

TEST_F(InputTest, KeysReachTheHandlerOfTheirLowBits) {
    Run([] {
        Handlers.character[1] = Handlers.special[45] = NoteHandler();
        Input.shift = 2;
        for (const std::int32_t code : {1, 129, 0x802D, 0xFF2D, 2, 0x8001}) {
            Input.keyCode = code;
            const bool bound = code != 2 && code != 0x8001;
            EXPECT_EQ(DispatchKey(), bound);
        }
        EXPECT_EQ(called, (Calls{{1, 2}, {1, 2}, {0x802D, 2}, {0xFF2D, 2}}));
        Input.keyCode = 0x802E;
        EXPECT_THROW(DispatchKey(), ScriptAbort);
    });
}

TEST_F(InputTest, WaitModeOneWantsTheLeftButtonAndItsRelease) {
    Run([this] {
        Mode = {1, 0};
        Hand({Key('a'), Pointer(1, 1, 2), Pointer(1, 1, 0), Pointer(1, 1, 1), Key(32), Pointer(1, 1, 3),
              Pointer(1, 1, 0)});
        EXPECT_FALSE(InputStep());
        EXPECT_FALSE(InputStep());
        EXPECT_FALSE(InputStep());
        EXPECT_TRUE(InputStep());
        EXPECT_FALSE(Input.left);
    });
}

TEST_F(InputTest, OtherWaitModesNeverCome) {
    Run([this] {
        for (const std::int32_t mode : {0, 3, 4, -1}) {
            Mode = {mode, 0};
            Hand({Pointer(1, 1, 1), Pointer(1, 1, 3), Pointer(1, 1, 0), Key(32)});
            while (!window.hand.empty()) {
                EXPECT_FALSE(InputStep());
            }
        }
    });
}

TEST_F(InputTest, TheEventLoopDispatchesTheKeyAndThenTheInput) {
    Write("t.qms", "Look(); function Both() { Note(9); } ");
    Hand({Key(32, 1), Key('x'), Pointer(3, 3, 1), Pointer(3, 3, 0)});
    EXPECT_EQ(Run([] {
                  Mode = {32, 0};
                  Handlers.character[32] = Handlers.input = NoteHandler();
              }),
              0);
    EXPECT_EQ(called, (Calls{{32, 1}, {1}}));
}

TEST_F(InputTest, AMenuCodeIsNoKey) {
    Run([this] {
        for (std::int32_t& handler : Handlers.character) {
            handler = NoteHandler();
        }
        Hand({Key(0x7000), Key(0x7BFF), Key(0x7C00)});
        InputStep();
        EXPECT_EQ(Input.keyCode, 0);
        InputStep();
        EXPECT_EQ(Input.keyCode, 0);
        InputStep();
        EXPECT_EQ(Input.keyCode, 0x7C00);
    });
}

TEST_F(InputTest, TheWindowMayCloseWithoutAHandler) {
    InputState close;
    close.closeRequested = true;
    Hand({close, Key('a')});
    EXPECT_EQ(Run([] { Handlers.character[97] = NoteHandler(); }), 0);
    EXPECT_TRUE(called.empty());
    EXPECT_EQ(window.hand.size(), 1U);
}

TEST_F(InputTest, ACloseHandlerIsAskedWithZero) {
    InputState close;
    close.closeRequested = true;
    Hand({close, Key('a')});
    EXPECT_EQ(Run([] { PaneEvents.canClose = NoteHandler(); }), 0);
    EXPECT_EQ(called, (Calls{{0}}));
    EXPECT_EQ(window.hand.size(), 1U);
}

}  // namespace quelmark::test

#include "host/PANES.h"

#include "MODEL/ATR.h"
#include "MODEL/OBJ.h"
#include "MODEL/POLY.h"
#include "host/BUTTONS.h"
#include "host_fixture.h"
#include "text/sjis.h"

namespace quelmark::test {
namespace {

using Calls = std::vector<std::vector<std::int32_t>>;

void Places(const PixelRect& rect, std::int32_t left, std::int32_t top, std::int32_t right,
            std::int32_t bottom) {
    EXPECT_EQ((std::array{rect.left, rect.top, rect.right, rect.bottom}),
              (std::array{left, top, right, bottom}));
}

std::string RowText(std::int32_t row) {
    std::string text;
    for (const PaneRow& shown : ListRows()) {
        text += shown.row == row ? shown.text + (shown.current ? "*" : "") : "";
    }
    return text;
}

}  // namespace

class PanesTest : public HostTest {
  protected:
    // A press and its release at a row of the list panel, through the input step.
    void PressRow(std::int32_t row) {
        Hand({Pointer(1000, row * 16, 1), Pointer(1000, row * 16, 0)});
        EXPECT_FALSE(InputStep());
    }
};

TEST_F(PanesTest, PanesLieAlongTheRightEdgeAndTheBottom) {
    Run([this] {
        Places(ListRect(), 1024 - 79, 0, 1024, 746);
        Places(StatusRect(), 0, 746, 1024, 768);
        Places(ViewsRect(), 0, 0, 945, 768);
        EXPECT_EQ(ListTextLeft(), 1024 - 71);
        ButtonAreaSet(80);
        Places(ButtonsRect(), 865, 0, 945, 746);
        Places(ViewsRect(), 0, 0, 865, 768);
        window.width = 100;
        window.height = 10;
        HostResized();
        Places(ViewsRect(), 0, 0, 0, 10);
    });
}

TEST_F(PanesTest, StatusFieldsAreLaidFromTheRight) {
    Run([] {
        StatusSetWidth(7, 10);
        StatusSetWidth(3, 5);
        const PixelRect last = StatusFieldRect(7);
        const PixelRect third = StatusFieldRect(3);
        const PixelRect first = StatusFieldRect(0);
        EXPECT_EQ(last.right - last.left, 10 * 8 + 2);
        EXPECT_EQ(third.right - third.left, 5 * 8 + 2);
        EXPECT_EQ(last.left - third.right, 5);
        EXPECT_EQ(third.left - first.right, 5);
        EXPECT_EQ(first.left, 8);
        Places(StatusFieldRect(5), 0, 0, 0, 0);
    });
}

TEST_F(PanesTest, AStatusFieldThatLeavesNoRoomForTheFirstIsNotShown) {
    Run([this] {
        StatusSetWidth(7, 12);
        StatusSetWidth(3, 30);
        StatusSetWidth(1, 4);
        window.width = 300;
        HostResized();
        Places(StatusFieldRect(7), 201, 748, 299, 767);
        Places(StatusFieldRect(3), 0, 0, 0, 0);
        Places(StatusFieldRect(1), 162, 748, 196, 767);
        Places(StatusFieldRect(0), 8, 748, 157, 767);
        window.width = 40;
        HostResized();
        Places(StatusFieldRect(7), 0, 0, 0, 0);
        Places(StatusFieldRect(0), 8, 748, 39, 767);
    });
}

TEST_F(PanesTest, AFieldOutsideIsIgnoredAndItsWidthStillDrawsTheBar) {
    Run([this] {
        window.shown.clear();
        StatusSet(8, "x");
        StatusSet(-1, "x");
        EXPECT_TRUE(window.shown.empty());
        StatusSetWidth(8, 5);
        StatusSetWidth(-1, 5);
        EXPECT_EQ(window.shown, (std::vector<Pane>{Pane::Status, Pane::Status}));
        for (const StatusField& field : StatusFields()) {
            EXPECT_EQ(field.text, "");
            EXPECT_EQ(field.width, 0);
        }
    });
}

TEST_F(PanesTest, AStatusTextHas255BytesAndNoHalfCharacter) {
    Run([] {
        StatusSet(2, std::string(300, 'a'));
        EXPECT_EQ(StatusFields()[2].text, std::string(255, 'a'));
        StatusSet(2, std::string(254, 'a') + "表"_sjis);
        EXPECT_EQ(StatusFields()[2].text, std::string(254, 'a'));
    });
}

TEST_F(PanesTest, AMessageIsShownUntilTheNextKeyOrPress) {
    Run([this] {
        MessageShow("one\ntwo\n");
        EXPECT_EQ(MessageLines(), (std::vector<std::string>{"one", "two"}));
        Places(MessageRect(), 0, 746 - 3 * 16, 945, 746);
        Hand({Pointer(5, 5, 0), Key('a')});
        WaitStep();
        EXPECT_TRUE(MessageLines().empty());
        MessageShow("three");
        Hand({Pointer(5, 5, 2), Pointer(5, 5, 0)});
        WaitStep();
        EXPECT_TRUE(MessageLines().empty());
    });
}

TEST_F(PanesTest, WarningsStayBelowEachOtherTheLastTenLines) {
    Run([] {
        for (int i = 0; i < 13; ++i) {
            MessageAdd(std::to_string(i));
        }
        EXPECT_EQ(MessageLines().size(), 10U);
        EXPECT_EQ(MessageLines().front(), "3");
        MessageShow("alone");
        EXPECT_EQ(MessageLines(), (std::vector<std::string>{"alone"}));
    });
}

TEST_F(PanesTest, TheListShowsNamesHeadingsAndTheCursor) {
    Run([] {
        AttrAlloc("first");
        AttrAlloc("a name of more than ten");
        AttrCurrent = 1;
        EXPECT_EQ(RowText(0), "ｱﾄﾘﾋﾞｭｰﾄ"_sjis);
        EXPECT_EQ(RowText(2), "first     ");
        EXPECT_EQ(RowText(3).back(), '*');
        EXPECT_EQ(RowText(4), "");
        EXPECT_EQ(RowText(48 - 13), "ｵﾌﾞｼﾞｪｸﾄ"_sjis);
        EXPECT_EQ(RowText(43), "X:     0");
        EXPECT_EQ(RowText(44), "Y:     0");
        EXPECT_EQ(RowText(45), "Z:     0");
    });
}

TEST_F(PanesTest, TheListScrollsToTheCurrentAttributeWhenThatChanges) {
    Run([] {
        for (int i = 0; i < 60; ++i) {
            AttrAlloc("a" + std::to_string(i));
        }
        AttrCurrent = 50;
        ++AttrRevision;
        PanesRefresh();
        EXPECT_EQ(RowText(32), "a50       *");  // the last row of 31
        AttrCurrent = 40;
        ++AttrRevision;
        PanesRefresh();
        EXPECT_EQ(RowText(32), "a50       ");
        AttrCurrent = 3;
        ++AttrRevision;
        PanesRefresh();
        EXPECT_EQ(RowText(2), "a3        *");
    });
}

TEST_F(PanesTest, PressesReachTheHandlersOfTheirRows) {
    Run([this] {
        PaneEvents = {NoteHandler(), -1, -1, -1};
        PressRow(42);
        EXPECT_TRUE(called.empty());
        for (const std::int32_t row : {43, 44, 45, 46}) {
            PressRow(row);
        }
        EXPECT_EQ(called, (Calls{{0}, {1}, {2}, {3}}));
    });
}

TEST_F(PanesTest, APressOnANameChoosesItOrAsksTheHandler) {
    Run([this] {
        AttrAlloc("a");
        AttrAlloc("b");
        AttrCurrent = 0;
        PressRow(3);
        EXPECT_EQ(AttrCurrent, 1);
        PressRow(4);
        EXPECT_EQ(AttrCurrent, 1);
        PaneEvents.attribute = PaneEvents.object = NoteHandler();
        PressRow(2);
        PressRow(20);
        EXPECT_EQ(AttrCurrent, 1);
        PressRow(36);
        EXPECT_EQ(called, (Calls{{0}, {-1}}));
    });
}

TEST_F(PanesTest, AScrollMarkRepeatsEvery200Milliseconds) {
    Run([this] {
        for (int i = 0; i < 60; ++i) {
            AttrAlloc("a" + std::to_string(i));
        }
        AttrCurrent = 0;
        PanesRefresh();
        window.tick = 50;
        Hand({});
        for (int i = 0; i < 10; ++i) {
            window.hand.push_back(Pointer(1000, 33 * 16, 1));
        }
        window.hand.push_back(Pointer(1000, 33 * 16, 0));
        EXPECT_FALSE(InputStep());
        EXPECT_EQ(RowText(2), "a3        ");  // at once, after 200 and after 400 of 450 milliseconds
    });
}

TEST_F(PanesTest, TheWheelScrollsTheListUnderThePointerAndIsNotTheScripts) {
    Run([this] {
        for (int i = 0; i < 60; ++i) {
            AttrAlloc("a" + std::to_string(i));
        }
        for (int i = 0; i < 9; ++i) {
            ObjAlloc("o" + std::to_string(i));
        }
        AttrCurrent = ObjCurrent = 0;
        PanesRefresh();
        const auto wheel = [this](std::int32_t x, std::int32_t row, std::int32_t turns) {
            InputState turned = Pointer(x, row * 16, 0);
            turned.wheel = turns;
            Hand({turned});
            EXPECT_FALSE(InputStep());
            return Input.wheel;
        };
        EXPECT_EQ(wheel(1000, 10, -2), 0);
        EXPECT_EQ(RowText(2), "a6        ");
        EXPECT_EQ(wheel(1000, 10, 1), 0);
        EXPECT_EQ(RowText(2), "a3        ");
        EXPECT_EQ(wheel(1000, 36, INT32_MIN), 0);
        EXPECT_EQ(RowText(36), "o3        ");  // the last six
        EXPECT_EQ(wheel(1000, 36, INT32_MAX), 0);
        EXPECT_EQ(RowText(36), "o0        *");
        EXPECT_EQ(RowText(2), "a3        ");
        EXPECT_EQ(wheel(1000, 44, 1), 0);  // the cursor's position scrolls nothing
        EXPECT_EQ(RowText(2), "a3        ");
        EXPECT_EQ(wheel(100, 10, 1), 1);
    });
}

TEST_F(PanesTest, APressOnTheStatusBarOrTheHeadingOnlyWaits) {
    Run([this] {
        PaneEvents = {NoteHandler(), NoteHandler(), NoteHandler(), -1};
        Handlers.press = NoteHandler();
        PressRow(0);
        Hand({Pointer(10, 746, 3), Pointer(10, 100, 1), Pointer(10, 100, 0)});
        EXPECT_FALSE(InputStep());
        EXPECT_TRUE(window.hand.empty());
        EXPECT_TRUE(called.empty());
    });
}

}  // namespace quelmark::test

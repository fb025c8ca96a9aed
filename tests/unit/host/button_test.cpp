#include "host/BUTTONS.h"

#include "host_fixture.h"
#include "text/sjis.h"

namespace quelmark::test {
namespace {

std::array<std::uint16_t, 16> rows;

std::string Digits(char digit, int count) {
    return std::string(static_cast<std::size_t>(count), digit);
}

}  // namespace

TEST(ButtonPicture, FourDigitsAreARow) {
    EXPECT_TRUE(ReadButtonPicture("80010F0A" + Digits('0', 56), rows));
    EXPECT_EQ(rows[0], 0x8001);
    EXPECT_EQ(rows[1], 0x0F0A);
    EXPECT_EQ(rows[2], 0);
}

TEST(ButtonPicture, CharactersThatAreNoDigitsAreSkipped) {
    EXPECT_TRUE(ReadButtonPicture("12 34,\nzG" + Digits('0', 60), rows));
    EXPECT_EQ(rows[0], 0x1234);
}

TEST(ButtonPicture, FewerDigitsAreALabel) {
    EXPECT_FALSE(ReadButtonPicture(Digits('F', 63), rows));
    EXPECT_FALSE(ReadButtonPicture("", rows));
}

TEST(ButtonPicture, SmallFsMakeAnEmptyPictureAndLargeOnesAFullOne) {
    EXPECT_TRUE(ReadButtonPicture(Digits('f', 64), rows));
    EXPECT_EQ(rows[15], 0);
    EXPECT_TRUE(ReadButtonPicture(Digits('F', 64), rows));
    EXPECT_EQ(rows[15], 0xFFFF);
}

TEST(ButtonPicture, OnlyASmallAKeepsItsValue) {
    EXPECT_TRUE(ReadButtonPicture("abcdefAB" + Digits('9', 56), rows));
    EXPECT_EQ(rows[0], 0xA000);
    EXPECT_EQ(rows[1], 0x00AB);
    EXPECT_EQ(rows[15], 0x9999);
}

TEST(ButtonPicture, DigitsBehindTheSixtyFourthDoNotCount) {
    EXPECT_TRUE(ReadButtonPicture(Digits('1', 64) + "FFFF", rows));
    EXPECT_EQ(rows[15], 0x1111);
}

class ButtonTest : public HostTest {};

TEST_F(ButtonTest, TheFirstFreeSlotTakesAButton) {
    Run([] {
        EXPECT_EQ(ButtonCreate(0, 0, "a", -1, 1), 0);
        EXPECT_EQ(ButtonCreate(20, 0, "b", -1, 1), 1);
        EXPECT_EQ(ButtonCreate(0, 20, "c", -1, 1), 2);
        EXPECT_EQ(ButtonCreate(1, 1, "d", -1, 1), 0);  // closer than 20 to the first alone
        EXPECT_EQ(ButtonAt(0)->label, "d");
        EXPECT_EQ(ButtonAt(3), nullptr);
    });
}

TEST_F(ButtonTest, AButtonReplacesEveryOneCloserThanTwentyPixels) {
    Run([] {
        ButtonCreate(0, 0, "a", -1, 1);
        ButtonCreate(20, 0, "b", -1, 1);
        ButtonCreate(0, 20, "c", -1, 1);
        ButtonCreate(20, 20, "d", -1, 1);
        EXPECT_EQ(ButtonCreate(10, 10, "e", -1, 1), 0);
        EXPECT_EQ(ButtonFaces().size(), 1U);
    });
}

TEST_F(ButtonTest, TheFortyFirstFindsNoSlot) {
    Run([] {
        for (int i = 0; i < 40; ++i) {
            EXPECT_EQ(ButtonCreate(0, 20 * i, "a", -1, 1), i);
        }
        EXPECT_EQ(ButtonCreate(0, 800, "a", -1, 1), -1);
        EXPECT_EQ(ButtonCreate(0, 5, "a", -1, 1), 0);
        ButtonsClear();
        EXPECT_EQ(ButtonAt(39), nullptr);
        EXPECT_EQ(ButtonCreate(0, 800, "a", -1, 1), 0);
    });
}

TEST_F(ButtonTest, ALabelHasSixBytesAndNoHalfCharacter) {
    Run([] {
        ButtonCreate(0, 0, "abcdefg", -1, 1);
        ButtonCreate(20, 0, "a表示面"_sjis, -1, 1);
        EXPECT_EQ(ButtonAt(0)->label, "abcdef");
        EXPECT_EQ(ButtonAt(1)->label, "a表示"_sjis);
        EXPECT_EQ(ButtonAt(0)->kind, ButtonKind::Label);
    });
}

TEST_F(ButtonTest, FacesStandInClientPixels) {
    Run([] {
        ButtonAreaSet(60);
        ButtonCreate(5, 30, "a", -1, 0);
        const ButtonFace face = ButtonFaces().at(0);
        EXPECT_EQ(face.rect.left, 1024 - 79 - 60 + 5);
        EXPECT_EQ(face.rect.right, face.rect.left + 20);
        EXPECT_EQ(face.rect.top, 30);
        EXPECT_EQ(face.rect.bottom, 50);
        EXPECT_FALSE(face.enabled);
        EXPECT_FALSE(face.picture);
    });
}

TEST_F(ButtonTest, AWidthOutsideZeroToEightyIsIgnoredAndEverythingShownAgain) {
    Run([this] {
        ButtonAreaSet(80);
        for (const std::int32_t width : {81, -1, 1000}) {
            window.shown.clear();
            ButtonAreaSet(width);
            EXPECT_EQ(ButtonAreaWidth(), 80);
            EXPECT_FALSE(window.shown.empty());
        }
        ButtonAreaSet(0);
        EXPECT_EQ(ButtonAreaWidth(), 0);
    });
}

TEST_F(ButtonTest, ClearingDoesNotShowThePanelAgain) {
    Run([this] {
        ButtonCreate(0, 0, "a", -1, 1);
        window.shown.clear();
        ButtonsClear();
        EXPECT_TRUE(window.shown.empty());
    });
}

TEST_F(ButtonTest, APressIsDrawnPressedUntilTheRelease) {
    Run([this] {
        ButtonAreaSet(40);
        ButtonCreate(0, 0, "a", NoteHandler(), BUTTON_ENABLE);
        Hand({Pointer(910, 5, 1), Pointer(911, 6, 1), Pointer(0, 0, 0)});
        Handlers.input = NoteHandler();
        EXPECT_FALSE(InputStep());
        EXPECT_FALSE(ButtonAt(0)->pressed);
        EXPECT_EQ(called, (std::vector<std::vector<std::int32_t>>{{0}}));
    });
}

TEST_F(ButtonTest, ARepeatingButtonIsCalledEverySixtySixMilliseconds) {
    Run([this] {
        ButtonAreaSet(40);
        ButtonCreate(0, 0, "a", NoteHandler(), BUTTON_ENABLE | BUTTON_REPEAT);
        window.tick = 20;
        Hand({});
        for (int i = 0; i < 20; ++i) {
            window.hand.push_back(Pointer(910, 5, 2));
        }
        window.hand.push_back(Pointer(910, 5, 0));
        const std::uint32_t begin = window.clock;
        EXPECT_FALSE(InputStep());
        EXPECT_EQ(window.clock - begin, 420U);
        EXPECT_EQ(called.size(), 1U + 380 / 66);
    });
}

}  // namespace quelmark::test

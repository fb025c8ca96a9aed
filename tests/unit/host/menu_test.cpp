#include "host/MENUBAR.h"

#include "ML/ERROR.h"
#include "host_fixture.h"
#include "text/sjis.h"

namespace quelmark::test {
namespace {

struct Item {
    const char* text;
    std::int32_t function;
    std::int32_t query = -1;
    std::int32_t flags = 0;
};

MenuRecord MakeMenu(const char* title, std::initializer_list<Item> items) {
    MenuRecord menu{};
    menu.title = MakeMenuText(title);
    for (const Item& item : items) {
        const auto at = static_cast<std::size_t>(menu.count++);
        menu.texts[at] = MakeMenuText(item.text);
        menu.functions[at] = item.function;
        menu.queries[at] = item.query;
        menu.flags[at] = item.flags;
    }
    return menu;
}

}  // namespace

class MenuTest : public HostTest {};

TEST(MenuText, HasThirtyNineBytesAndNoHalfCharacter) {
    const std::string text(45, 'a');
    EXPECT_EQ(std::string(MakeMenuText(text).data()), std::string(39, 'a'));
    const std::string wide = std::string(38, 'a') + "表"_sjis;
    EXPECT_EQ(std::string(MakeMenuText(wide).data()), std::string(38, 'a'));
}

TEST_F(MenuTest, TheBarShowsPositionsUpToTheFirstEmptyOne) {
    Run([this] {
        MenuPlace(1, MakeMenu("b", {{"x", 40}}));
        EXPECT_TRUE(window.menus.empty());
        MenuPlace(0, MakeMenu("a", {{"x", 40}}));
        MenuPlace(3, MakeMenu("d", {{"x", 40}}));
        ASSERT_EQ(window.menus.size(), 2U);
        EXPECT_EQ(window.menus[0].title, "a");
        EXPECT_EQ(window.menus[1].title, "b");
        MenuPlace(2, MakeMenu("c", {}));
        ASSERT_EQ(window.menus.size(), 4U);
        EXPECT_TRUE(window.menus[2].greyed);
        EXPECT_FALSE(window.menus[3].greyed);
    });
}

TEST_F(MenuTest, AnEntrysCommandNamesPositionAndItem) {
    Run([this] {
        MenuPlace(0, MakeMenu("a", {}));
        MenuPlace(1, MakeMenu("b", {{"x", 40}, {"y", 40}}));
        EXPECT_EQ(window.menus[1].entries[1].command, 0x7000 + 256 + 1);
    });
}

TEST_F(MenuTest, DashesAndEmptyTextsAreSeparatorsAndFunctionsBelowOneGreyed) {
    Run([this] {
        MenuPlace(
            0, MakeMenu("a", {{"", 40}, {"-", 40}, {"---", 40}, {"a-", 40}, {"b", SEPARATE_MENU}, {"c", 0}}));
        const auto& entries = window.menus[0].entries;
        EXPECT_TRUE(entries[0].separator);
        EXPECT_TRUE(entries[1].separator);
        EXPECT_TRUE(entries[2].separator);
        EXPECT_FALSE(entries[3].separator);
        EXPECT_FALSE(entries[3].greyed);
        EXPECT_FALSE(entries[4].separator);
        EXPECT_TRUE(entries[4].greyed);
        EXPECT_TRUE(entries[5].greyed);
    });
}

TEST_F(MenuTest, FlagsShowWhenTheMenuOpensAndNotBefore) {
    Run([this] {
        MenuPlace(0, MakeMenu("a", {{"x", 40, -1, MENU_CHECK | MENU_DISABLE}}));
        EXPECT_FALSE(window.menus[0].entries[0].checked);
        EXPECT_FALSE(window.menus[0].entries[0].greyed);
        const auto opened = MenuOpened(0);
        EXPECT_TRUE(opened.at(0).checked);
        EXPECT_TRUE(opened.at(0).greyed);
        EXPECT_EQ(opened.at(0).flags, 3);
    });
}

TEST_F(MenuTest, AQueryFunctionsAnswerIsOredToTheFlags) {
    Run([] {
        MenuPlace(0, MakeMenu("a", {{"x", 40}, {"y", 40, NoteHandler(), MENU_DISABLE}}));
        const auto opened = MenuOpened(0);
        EXPECT_EQ(opened.at(0).flags, 0);
        EXPECT_EQ(opened.at(1).flags, 3);
        EXPECT_EQ(called, (std::vector<std::vector<std::int32_t>>{{1}}));
    });
}

TEST_F(MenuTest, AMenuThatIsNotShownOpensEmpty) {
    Run([] {
        MenuPlace(1, MakeMenu("b", {{"x", 40}}));
        EXPECT_TRUE(MenuOpened(1).empty());
        EXPECT_TRUE(MenuOpened(0).empty());
        EXPECT_TRUE(MenuOpened(12).empty());
    });
}

TEST_F(MenuTest, APickCallsTheItemsFunctionOnly) {
    Run([] {
        MenuPlace(2, MakeMenu("a", {{"x", NoteHandler()}, {"y", SEPARATE_MENU}}));
        MenuPick(2, 0);
        MenuPick(2, 1);
        MenuPick(2, 2);
        MenuPick(2, -1);
        MenuPick(3, 0);
        MenuPick(12, 0);
        EXPECT_EQ(called, (std::vector<std::vector<std::int32_t>>{{0}}));
    });
}

TEST_F(MenuTest, APushedBarIsOneGreyedColumnAndComesBack) {
    Run([this] {
        MenuPlace(0, MakeMenu("a", {{"x", 40}}));
        MenuPush();
        EXPECT_EQ(MenuAt(0), nullptr);
        ASSERT_EQ(window.menus.size(), 1U);
        EXPECT_EQ(window.menus[0].title, " ");
        EXPECT_TRUE(window.menus[0].greyed);
        MenuPlace(0, MakeMenu("b", {{"x", 40}}));
        EXPECT_EQ(window.menus[0].title, "b");
        MenuPop();
        EXPECT_EQ(window.menus[0].title, "a");
        EXPECT_EQ(MenuStackPtr, 0);
    });
}

TEST_F(MenuTest, FourBarsAreSavedAndCheckedFor) {
    Run([] {
        for (int i = 1; i <= 4; ++i) {
            MenuPush();
            EXPECT_EQ(MenuStackPtr, i);
        }
        EXPECT_THROW(MenuPush(), ScriptAbort);
        EXPECT_EQ(MenuStackPtr, 4);
        MenuPopAll();
        EXPECT_EQ(MenuStackPtr, 0);
        EXPECT_THROW(MenuPop(), ScriptAbort);
        EXPECT_THROW(MenuPlace(12, MenuRecord{}), ScriptAbort);
        EXPECT_THROW(MenuPlace(-1, MenuRecord{}), ScriptAbort);
    });
    EXPECT_EQ(window.beeps, 4);
}

TEST_F(MenuTest, TheFirstItemOfATextIsFoundInTheWholeBar) {
    Run([] {
        MenuPlace(0, MakeMenu("a", {{"x", 1}}));
        MenuPlace(4, MakeMenu("b", {{"y", 2}, {"x", 3}, {"y", 4}}));
        EXPECT_EQ(MenuFindItem("y").menu, MenuAt(4));
        EXPECT_EQ(MenuFindItem("y").item, 0U);
        EXPECT_EQ(MenuFindItem("x").menu, MenuAt(0));
        EXPECT_EQ(MenuFindItem("z").menu, nullptr);
    });
}

}  // namespace quelmark::test

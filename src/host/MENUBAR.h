// The menu bar: twelve positions, each empty or holding a menu, the stack of saved bars, and the bar as the
// window shows it. A pick in the bar arrives as the key code of its entry.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quelmark {

inline constexpr std::int32_t MAX_MENU = 12;
inline constexpr std::int32_t MENU_LEVELS = 5;
inline constexpr std::int32_t MENU_ITEMS = 40;

enum MenuFlag : std::int32_t { MENU_NOCHECK = 0, MENU_ENABLE = 0, MENU_CHECK = 1, MENU_DISABLE = 2 };
inline constexpr std::int32_t SEPARATE_MENU = -1;

// A text of at most 39 bytes, cut between characters.
using MenuText = std::array<char, 40>;
MenuText MakeMenuText(std::string_view text);

// The data of a script Menu object: a plain value.
struct MenuRecord {
    std::int32_t count;
    MenuText title;
    std::array<MenuText, MENU_ITEMS> texts;
    std::array<std::int32_t, MENU_ITEMS> functions;  // called when picked; -1: none
    std::array<std::int32_t, MENU_ITEMS> queries;    // -1: none
    std::array<std::int32_t, MENU_ITEMS> flags;      // MenuFlag bits
};

// ---- the bar as the window shows it ----

struct MenuEntry {
    std::string text;
    std::int32_t command = 0;  // the key code of a pick
    bool separator = false;
    bool greyed = false;
    bool checked = false;
    std::int32_t flags = 0;  // the item's MenuFlag bits, or-ed with its query function's answer
};
struct MenuColumn {
    std::string title;
    bool greyed = false;
    std::vector<MenuEntry> entries;
};
// Position p of the bar is column p. After a push it is the one greyed column " ".
using MenuTree = std::vector<MenuColumn>;

// ---- positions and saved bars ----

extern std::int32_t MenuStackPtr;  // bars saved

void MenuBarReset();
// Null when the position is empty or outside 0 to 11.
const MenuRecord* MenuAt(std::int32_t position);
// Puts a copy of the menu there and shows the bar again. Checks "0 <= no && no < MAX_MENU".
void MenuPlace(std::int32_t no, const MenuRecord& menu);
// Saves the bar and empties it. Checks "MenuStackPtr < MENU_LEVELS - 1".
void MenuPush();
// Restores the last saved bar. Checks "MenuStackPtr > 0".
void MenuPop();
void MenuPopAll();

// A pick: calls the item's function with the item index. Nothing happens for an empty place or a separator.
void MenuPick(std::int32_t position, std::int32_t item);
// The entries of a menu that opens, with their flags, each query function asked. An error in one is kept, and
// raised when control is back in the wait step.
std::vector<MenuEntry> MenuOpened(std::int32_t position);
// The text of the entry that the window highlights, "" for none; the window sets it.
extern std::string MenuHighlight;

// The first item with that text in the bar; null when there is none.
struct MenuItemPlace {
    MenuRecord* menu = nullptr;
    std::size_t item = 0;
};
MenuItemPlace MenuFindItem(std::string_view text);

}  // namespace quelmark

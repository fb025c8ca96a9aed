#include "host/MENUBAR.h"

#include <algorithm>
#include <memory>

#include "ML/ERROR.h"
#include "host/HOST.h"
#include "host/INPUT.h"
#include "host/TEXTCUT.h"

namespace quelmark {

std::int32_t MenuStackPtr = 0;
std::string MenuHighlight;

namespace {

using MenuBarPositions = std::array<std::unique_ptr<MenuRecord>, MAX_MENU>;

MenuBarPositions bar;
std::array<MenuBarPositions, MENU_LEVELS - 1> savedBars;

bool IsSeparator(std::string_view text) {
    return text.find_first_not_of('-') == std::string_view::npos;
}

MenuEntry EntryOf(const MenuRecord& menu, std::int32_t position, std::int32_t item, std::int32_t flags) {
    const auto index = static_cast<std::size_t>(item);
    MenuEntry entry;
    entry.text = menu.texts[index].data();
    entry.command = MENU_CODE_FIRST + 256 * position + item;
    entry.separator = IsSeparator(entry.text);
    entry.greyed = menu.functions[index] < 1 || (flags & MENU_DISABLE) != 0;
    entry.checked = (flags & MENU_CHECK) != 0;
    entry.flags = flags;
    return entry;
}

// The bar as it is built: the items' flags count only when their menu opens.
MenuColumn ColumnOf(const MenuRecord& menu, std::int32_t position) {
    MenuColumn column;
    column.title = menu.title.data();
    column.greyed = menu.count == 0;
    for (std::int32_t item = 0; item < menu.count; ++item) {
        column.entries.push_back(EntryOf(menu, position, item, 0));
    }
    return column;
}

std::int32_t PositionsShown() {
    const auto end = std::ranges::find_if(bar, [](const auto& menu) { return menu == nullptr; });
    return static_cast<std::int32_t>(end - bar.begin());
}

void ShowBar() {
    MenuTree tree;
    for (std::int32_t position = 0; position < PositionsShown(); ++position) {
        tree.push_back(ColumnOf(*bar[static_cast<std::size_t>(position)], position));
    }
    if (tree.empty() && MenuStackPtr > 0) {
        // One greyed entry keeps the bar's height.
        MenuColumn column;
        column.title = " ";
        column.greyed = true;
        tree.push_back(std::move(column));
    }
    HostWindow().SetMenu(tree);
}

bool InBar(std::int32_t position) {
    return position >= 0 && position < MAX_MENU;
}

void AskQueries(const MenuRecord& menu, std::int32_t position, std::vector<MenuEntry>& entries) {
    for (std::int32_t item = 0; item < menu.count; ++item) {
        const auto index = static_cast<std::size_t>(item);
        const std::int32_t answer = AskHandler(menu.queries[index], {item});
        entries[index] = EntryOf(menu, position, item, menu.flags[index] | answer);
    }
}

}  // namespace

MenuText MakeMenuText(std::string_view text) {
    MenuText made{};
    const std::string_view kept = CutText(text, made.size() - 1);
    std::ranges::copy(kept, made.begin());
    return made;
}

void MenuBarReset() {
    for (auto& position : bar) {
        position.reset();
    }
    for (MenuBarPositions& saved : savedBars) {
        saved = MenuBarPositions{};
    }
    MenuStackPtr = 0;
    MenuHighlight.clear();
}

const MenuRecord* MenuAt(std::int32_t position) {
    return InBar(position) ? bar[static_cast<std::size_t>(position)].get() : nullptr;
}

void MenuPlace(std::int32_t no, const MenuRecord& menu) {
    Check(InBar(no), "0 <= no && no < MAX_MENU");
    bar[static_cast<std::size_t>(no)] = std::make_unique<MenuRecord>(menu);
    ShowBar();
}

void MenuPush() {
    Check(MenuStackPtr < MENU_LEVELS - 1, "MenuStackPtr < MENU_LEVELS - 1");
    savedBars[static_cast<std::size_t>(MenuStackPtr)] = std::move(bar);
    bar = MenuBarPositions{};
    ++MenuStackPtr;
    ShowBar();
}

void MenuPop() {
    Check(MenuStackPtr > 0, "MenuStackPtr > 0");
    --MenuStackPtr;
    bar = std::move(savedBars[static_cast<std::size_t>(MenuStackPtr)]);
    savedBars[static_cast<std::size_t>(MenuStackPtr)] = MenuBarPositions{};
    ShowBar();
}

void MenuPopAll() {
    while (MenuStackPtr > 0) {
        MenuPop();
    }
}

void MenuPick(std::int32_t position, std::int32_t item) {
    const MenuRecord* menu = MenuAt(position);
    if (menu != nullptr && item >= 0 && item < menu->count) {
        CallHandler(menu->functions[static_cast<std::size_t>(item)], {item});
    }
}

std::vector<MenuEntry> MenuOpened(std::int32_t position) {
    const MenuRecord* shown = position < PositionsShown() ? MenuAt(position) : nullptr;
    if (shown == nullptr) {
        return {};
    }
    const MenuRecord menu = *shown;  // a query function may change the bar
    std::vector<MenuEntry> entries;
    entries.reserve(static_cast<std::size_t>(menu.count));
    for (std::int32_t item = 0; item < menu.count; ++item) {
        entries.push_back(EntryOf(menu, position, item, menu.flags[static_cast<std::size_t>(item)]));
    }
    HostGuarded([&] { AskQueries(menu, position, entries); });
    return entries;
}

MenuItemPlace MenuFindItem(std::string_view text) {
    for (const auto& menu : bar) {
        for (std::int32_t item = 0; menu != nullptr && item < menu->count; ++item) {
            const auto index = static_cast<std::size_t>(item);
            if (text == menu->texts[index].data()) {
                return {menu.get(), index};
            }
        }
    }
    return {};
}

}  // namespace quelmark

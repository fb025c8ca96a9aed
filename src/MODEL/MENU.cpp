#include "MODEL/MENU.h"

#include <algorithm>
#include <cstring>

#include "ML/ERROR.h"
#include "ML/FUNC.h"
#include "ML/STRING.h"
#include "MODEL/ATR.h"
#include "MODEL/OBJ.h"
#include "host/HOST.h"
#include "host/MENUBAR.h"
#include "host/PANES.h"
#include "text/sjis.h"

namespace quelmark {
namespace {

std::int32_t menuClass = 0;

bool IsMenu(const DataCell& cell) {
    return IsInstance(cell, menuClass);
}

void PushMenu(const MenuRecord& menu) {
    ObjectBlock* block = ObjectAlloc(sizeof(MenuRecord), menuClass);
    std::memcpy(block->Data(), &menu, sizeof menu);
    StackPushObject(block);
}

[[noreturn]] void ReportTypes(const char* name) {
    RuntimeError("引数の型が異なります(%s)"_sjis, name);
}

[[noreturn]] void ReportMenuArgument(std::int32_t number) {
    RuntimeError("%d番目の引数の型が違います。(Menu)"_sjis, number);
}

const MenuRecord& RequireMenu(const char* name, const DataCell& cell) {
    if (!IsMenu(cell)) {
        RuntimeError("%d 番目の引数の型が不正です。( %s )"_sjis, 1, name);
    }
    return ObjectData<MenuRecord>(cell);
}

struct MenuItemRecord {
    MenuText text;
    std::int32_t function = SEPARATE_MENU, query = -1, flags = 0;
};

// Reads "text, function [, query] [, flags]" at argv[at], moves `at` behind it; `number` is the text's number
// in messages.
MenuItemRecord ReadItem(std::int32_t argc, const DataCell* argv, std::int32_t& at, std::int32_t number) {
    MenuItemRecord item;
    if (!IsString(argv[at])) {
        ReportMenuArgument(number);
    }
    if (argv[at + 1].type != TYPE_FUNC) {
        ReportMenuArgument(number + 1);
    }
    item.text = MakeMenuText(StringText(argv[at]));
    item.function = argv[at + 1].integer;
    at += 2;
    if (at < argc && argv[at].type == TYPE_FUNC) {
        item.query = argv[at++].integer;
    }
    if (at < argc && argv[at].type == TYPE_INT) {
        item.flags = argv[at++].integer;
    }
    return item;
}

void SetItem(MenuRecord& menu, std::int32_t index, const MenuItemRecord& item) {
    const auto at = static_cast<std::size_t>(index);
    menu.texts[at] = item.text;
    menu.functions[at] = item.function;
    menu.queries[at] = item.query;
    menu.flags[at] = item.flags;
}

std::int32_t MakeMenu(std::int32_t, std::int32_t argc, DataCell* argv) {
    if (argc < 1) {
        RuntimeError("%s", "引数の数が違います。(Menu)"_sjis);
    }
    if (!IsString(argv[0])) {
        ReportMenuArgument(1);
    }
    MenuRecord menu{};
    menu.title = MakeMenuText(StringText(argv[0]));
    for (std::int32_t at = 1; argc - at >= 2;) {
        if (menu.count == MENU_ITEMS) {
            RuntimeError("%s", "メニューの項目が多すぎます。(Menu)"_sjis);
        }
        const MenuItemRecord item = ReadItem(argc, argv, at, at + 1);
        SetItem(menu, menu.count++, item);
    }
    PushMenu(menu);
    return RESULT;
}

std::int32_t InsertMenu(std::int32_t, std::int32_t argc, DataCell* argv) {
    if (argc < 4 || !IsMenu(argv[0]) || argv[1].type != TYPE_INT) {
        ReportTypes("InsertMenu");
    }
    MenuRecord menu = ObjectData<MenuRecord>(argv[0]);
    const std::int32_t index = argv[1].integer;
    if (index < 0 || index >= menu.count || menu.count > MENU_ITEMS - 2) {
        RuntimeError("%s", "引数の範囲が無効です(InsertMenu)"_sjis);
    }
    std::int32_t at = 2;
    const MenuItemRecord item = ReadItem(argc, argv, at, 2);
    const auto shift = [&](auto& values) {
        std::copy_backward(values.begin() + index, values.begin() + menu.count,
                           values.begin() + menu.count + 1);
    };
    shift(menu.texts);
    shift(menu.functions);
    shift(menu.queries);
    shift(menu.flags);
    ++menu.count;
    SetItem(menu, index, item);
    PushMenu(menu);
    return RESULT;
}

std::int32_t PlaceMenu(std::int32_t, std::int32_t, DataCell* argv) {
    if (argv[1].integer < 0 || argv[1].integer >= MAX_MENU) {
        RuntimeError("%s", "2番目の引数の値が不正です。(SetPosition)"_sjis);
    }
    MenuPlace(argv[1].integer, ObjectData<MenuRecord>(argv[0]));
    return NO_RESULT;
}

std::int32_t MenuOfPosition(std::int32_t, std::int32_t, DataCell* argv) {
    if (const MenuRecord* menu = MenuAt(argv[0].integer)) {
        PushMenu(*menu);
    } else {
        StackPushBool(0);
    }
    return RESULT;
}

std::int32_t MenuItems(std::int32_t, std::int32_t, DataCell* argv) {
    StackPushInt(RequireMenu("MenuItems", argv[0]).count);
    return RESULT;
}

std::int32_t UpdateTitleBar(std::int32_t, std::int32_t, DataCell*) {
    return NO_RESULT;
}

template <std::uint32_t* revision>
std::int32_t UpdateList(std::int32_t, std::int32_t, DataCell*) {
    ++*revision;
    PanesRefresh();
    return NO_RESULT;
}

std::int32_t SaveMenuBar(std::int32_t, std::int32_t, DataCell*) {
    if (MenuStackPtr >= MENU_LEVELS - 1) {
        RuntimeError("%s", "メニューのレベルが深すぎます(PushMenu)"_sjis);
    }
    MenuPush();
    return NO_RESULT;
}

std::int32_t RestoreMenuBar(std::int32_t, std::int32_t, DataCell*) {
    const bool saved = MenuStackPtr > 0;
    if (saved) {
        MenuPop();
    }
    StackPushBool(saved);
    return RESULT;
}

std::int32_t MenuTitle(std::int32_t, std::int32_t argc, DataCell* argv) {
    if (argc < 1 || !IsMenu(argv[0]) || (argc > 1 && !IsString(argv[1]))) {
        ReportTypes("MenuTitle");
    }
    MenuRecord menu = ObjectData<MenuRecord>(argv[0]);
    if (argc == 1) {
        StackPushString(menu.title.data());
    } else {
        menu.title = MakeMenuText(StringText(argv[1]));
        PushMenu(menu);
    }
    return RESULT;
}

// The item that (menu, index [, value]) name: -1 when the menu has none of that index. A wrong type is
// reported.
std::int32_t ItemIndex(const char* name, std::int32_t argc, const DataCell* argv) {
    if (argc < 2 || !IsMenu(argv[0]) || argv[1].type != TYPE_INT) {
        ReportTypes(name);
    }
    const std::int32_t index = argv[1].integer;
    return index >= 0 && index < ObjectData<MenuRecord>(argv[0]).count ? index : -1;
}

std::int32_t MenuItem(std::int32_t, std::int32_t argc, DataCell* argv) {
    if (argc == 0) {
        if (MenuHighlight.empty()) {
            return NO_RESULT;
        }
        StackPushString(MenuHighlight);
        return RESULT;
    }
    const std::int32_t index = ItemIndex("MenuItem", argc, argv);
    if (argc > 2 && !IsString(argv[2])) {
        ReportTypes("MenuItem");
    }
    if (index < 0) {
        StackPushBool(0);
        return RESULT;
    }
    MenuRecord menu = ObjectData<MenuRecord>(argv[0]);
    MenuText& text = menu.texts[static_cast<std::size_t>(index)];
    if (argc == 2) {
        StackPushString(text.data());
    } else {
        text = MakeMenuText(StringText(argv[2]));
        PushMenu(menu);
    }
    return RESULT;
}

// MenuFunction, MenuQuery and MenuEnable: one number of each item, asked for or replaced in a copy.
using ItemNumbers = std::array<std::int32_t, MENU_ITEMS> MenuRecord::*;

std::int32_t ItemNumber(ItemNumbers field, std::uint16_t type, const char* name, std::int32_t argc,
                        DataCell* argv) {
    const std::int32_t index = ItemIndex(name, argc, argv);
    if (argc > 2 && argv[2].type != type) {
        ReportTypes(name);
    }
    if (index < 0) {
        StackPushBool(0);
        return RESULT;
    }
    MenuRecord menu = ObjectData<MenuRecord>(argv[0]);
    std::int32_t& number = (menu.*field)[static_cast<std::size_t>(index)];
    if (argc == 2) {
        StackPush({type, 0, {number}});
    } else {
        number = argv[2].integer;
        PushMenu(menu);
    }
    return RESULT;
}

std::int32_t MenuFunction(std::int32_t, std::int32_t argc, DataCell* argv) {
    return ItemNumber(&MenuRecord::functions, TYPE_FUNC, "MenuFunction", argc, argv);
}
std::int32_t MenuQuery(std::int32_t, std::int32_t argc, DataCell* argv) {
    return ItemNumber(&MenuRecord::queries, TYPE_FUNC, "MenuFunction", argc, argv);
}
std::int32_t MenuEnable(std::int32_t, std::int32_t argc, DataCell* argv) {
    return ItemNumber(&MenuRecord::flags, TYPE_INT, "MenuCheck", argc, argv);
}

// ---- by text: the items of the bar ----

std::int32_t HintOfText(std::int32_t, std::int32_t, DataCell* argv) {
    StatusSet(0, StringText(argv[0]));
    return NO_RESULT;
}

std::int32_t FunctionOfText(std::int32_t, std::int32_t, DataCell* argv) {
    const MenuItemPlace place = MenuFindItem(StringText(argv[0]));
    StackPush(place.menu == nullptr ? BoolCell(0) : FuncCell(place.menu->functions[place.item]));
    return RESULT;
}

std::int32_t EnableOfText(std::int32_t, std::int32_t argc, DataCell* argv) {
    const MenuItemPlace place = MenuFindItem(StringText(argv[0]));
    if (place.menu == nullptr) {
        StackPushBool(0);
        return RESULT;
    }
    std::int32_t& flags = place.menu->flags[place.item];
    flags = argc > 1 ? argv[1].integer : flags;
    StackPushInt(flags);
    return RESULT;
}

// "MenuQuery" and "MenuEnable" report their arguments under borrowed names: scripts know them so.
constexpr BuiltIn FUNCTIONS[] = {
    {"Menu", "MenuPosition", PlaceMenu, Takes("MenuPosition", {TYPE_OBJECT, TYPE_INT})},
    {"", "MenuPosition", MenuOfPosition, Takes("MenuPosition", {TYPE_INT})},
    {"", "Menu", MakeMenu},
    {"", "InsertMenu", InsertMenu},
    {"", "MenuItems", MenuItems, Takes("MenuItems", {TYPE_OBJECT})},
    {"", "UpdateTitleBar", UpdateTitleBar, Takes("UpdateTitleBar", {})},
    {"", "UpdateAttribute", UpdateList<&AttrRevision>, Takes("UpdateAttribute", {})},
    {"", "UpdateObject", UpdateList<&ObjRevision>, Takes("UpdateObject", {})},
    {"", "PushMenu", SaveMenuBar, Takes("PushMenu", {})},
    {"", "PopMenu", RestoreMenuBar, Takes("PopMenu", {})},
    {"", "MenuTitle", MenuTitle},
    {"", "MenuItem", MenuItem},
    {"", "MenuFunction", MenuFunction},
    {"", "MenuQuery", MenuQuery},
    {"", "MenuEnable", MenuEnable},
    {"String", "MenuItem", HintOfText, Takes("MenuItem", {TYPE_OBJECT})},
    {"String", "MenuFunction", FunctionOfText, Takes("MenuFunction", {TYPE_OBJECT})},
    {"String", "MenuEnable", EnableOfText, Takes("MenuEnable", {TYPE_OBJECT, TYPE_INT}, 1)},
};

constexpr ConstantRow CONSTANTS[] = {
    {"SEPARATE_MENU", FuncCell(SEPARATE_MENU)}, {"MENU_CHECK", IntCell(MENU_CHECK)},
    {"MENU_DISABLE", IntCell(MENU_DISABLE)},    {"MENU_NOCHECK", IntCell(MENU_NOCHECK)},
    {"MENU_ENABLE", IntCell(MENU_ENABLE)},
};

}  // namespace

void MenuLibraryRegister() {
    menuClass = ClassRegister("Menu", 0);
    RegisterConstants(CONSTANTS);
    RegisterBuiltIns(FUNCTIONS);
}

}  // namespace quelmark

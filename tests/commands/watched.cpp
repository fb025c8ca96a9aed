// quelmarkc_watched: the console program, in which undoing is compared with a plain list of what the model
// looked like. Whatever differs is printed as a line that begins with FAULT. Scripts can ask what the model
// looks like, too.
#include <cstdio>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "ML/FUNC.h"
#include "ML/STRING.h"
#include "MODEL/ATR.h"
#include "MODEL/MDLINIT.h"
#include "MODEL/OBJ.h"
#include "MODEL/POLY.h"
#include "MODEL/UNDO.h"
#include "host/HOST.h"
#include "host/console/CONSOLE.h"

namespace {

using namespace quelmark;

// Every byte that undoing must bring back, as numbers that differ when the bytes do.
struct Look {
    std::size_t model = 0;      // polygons with their hidden marks, attributes, objects
    std::size_t selection = 0;  // and the current ones
    std::vector<int> edited;    // the edit marks of the objects and of the model

    bool operator==(const Look&) const = default;
};

struct Step {
    std::string name;
    Look look;
    bool isBeforeSave = false;
};

std::vector<Step> undoSteps, redoSteps, redoBeforeMark;
bool isMarkOpen = false;
std::unordered_set<std::size_t> marked;  // every model at a mark, or left by undoing or redoing

template <class Record>
void Add(std::size_t& look, const Record* bytes, std::size_t count = 1) {
    const std::string_view text(reinterpret_cast<const char*>(bytes), count * sizeof(Record));
    look = look * 31 + std::hash<std::string_view>{}(text);
}

Look Present() {
    Look look;
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon)) {
        Add(look.selection, &polygon->select);
        Add(look.model, &polygon->header);
        const auto* behind = reinterpret_cast<const char*>(&polygon->type);
        Add(look.model, behind,
            static_cast<std::size_t>(reinterpret_cast<char*>(polygon) + polygon->header.size - behind));
    }
    Add(look.model, AttrTable, static_cast<std::size_t>(AttributeCount));
    for (std::int32_t i = 0; i < ObjectTableSize; ++i) {
        ObjectRecord object = ObjTable[i];
        look.edited.push_back(object.edit);
        object.edit = 0;
        Add(look.model, &object);
    }
    look.edited.push_back(ModelEdit);
    for (const std::int32_t number : {AttrLast, ObjLast}) {
        Add(look.model, &number);
    }
    for (const std::int32_t number : {AttrCurrent, ObjCurrent, SelectCount}) {
        Add(look.selection, &number);
    }
    return look;
}

void Expect(bool isTrue, const char* what) {
    if (!isTrue) {
        std::printf("FAULT %s; next to undo \"%s\", to redo \"%s\"\n", what, std::string(UndoText()).c_str(),
                    std::string(RedoText()).c_str());
    }
}

// Marks forget the oldest steps, and what could be redone before them, when the memory is small.
void AllowForgotten(std::vector<Step>& steps, std::string_view text) {
    constexpr std::size_t SMALL = std::size_t{64} << 20;
    if (text.empty() && UndoLimit() < SMALL) {
        steps.clear();
    }
}

void ExpectTexts() {
    AllowForgotten(undoSteps, UndoText());
    Expect(UndoText() == (undoSteps.empty() ? "" : undoSteps.back().name),
           "another step to undo than was marked");
    Expect(RedoText() == (redoSteps.empty() ? "" : redoSteps.back().name),
           "another step to redo than was undone");
}

void ExpectLook(const Step& step) {
    const Look look = Present();
    Expect(look.model == step.look.model, "another model than was marked");
    Expect(look.selection == step.look.selection, "another selection or other current ones than were marked");
    bool areSame = look.edited.back() == (step.isBeforeSave ? 1 : step.look.edited.back());
    for (std::int32_t i = 0; i < ObjectTableSize; ++i) {
        const auto n = static_cast<std::size_t>(i);
        areSame = areSame && look.edited[n] ==
                                 (step.isBeforeSave && i <= ObjLast ? ObjTable[i].used : step.look.edited[n]);
    }
    Expect(areSame, "other edit marks than were marked");
}

bool IsChanged(const Look& look) {
    const Look now = Present();
    return now.model != look.model || now.selection != look.selection;
}

// After the program has forgotten it.
void ForgetMark() {
    undoSteps.pop_back();
    redoSteps = std::move(redoBeforeMark);
    redoBeforeMark.clear();
    AllowForgotten(redoSteps, RedoText());
    isMarkOpen = false;
}

std::int32_t Mark(std::int32_t, std::int32_t, DataCell* argv) {
    const std::string name(StringText(argv[0]));
    Step step{name, Present()};
    marked.insert(step.look.model);
    redoBeforeMark = std::move(redoSteps);
    redoSteps.clear();
    if (undoSteps.empty() || undoSteps.back().look != step.look) {
        undoSteps.push_back(std::move(step));
    } else {
        undoSteps.back() = std::move(step);
    }
    isMarkOpen = true;
    StackPushBool(UndoMark(name));
    ExpectTexts();
    return RESULT;
}

template <bool (*take)()>
std::int32_t Take(std::vector<Step>& from, std::vector<Step>& to) {
    Look now = Present();
    const bool isTaken = take();
    Expect(isTaken == !from.empty(), "a step that is there is not taken");
    if (isTaken && !from.empty()) {
        ExpectLook(from.back());
        marked.insert(now.model);
        to.push_back({from.back().name, std::move(now)});
        from.pop_back();
        redoBeforeMark.clear();
        isMarkOpen = false;
    }
    ExpectTexts();
    StackPushBool(isTaken);
    return RESULT;
}

std::int32_t TakeUndo(std::int32_t, std::int32_t, DataCell*) {
    return Take<Undo>(undoSteps, redoSteps);
}
std::int32_t TakeRedo(std::int32_t, std::int32_t, DataCell*) {
    return Take<Redo>(redoSteps, undoSteps);
}

// Gives the newest mark back and, when the mark goes too, forgets it.
template <bool (*restore)(), bool goes>
std::int32_t Restore(std::int32_t, std::int32_t, DataCell*) {
    const bool isRestored = restore();
    Expect(isRestored == !undoSteps.empty(), "a mark that is there is not restored");
    if (isRestored && !undoSteps.empty()) {
        ExpectLook(undoSteps.back());
        if (goes) {
            ForgetMark();
        }
    }
    ExpectTexts();
    StackPushBool(isRestored);
    return RESULT;
}

std::int32_t End(std::int32_t, std::int32_t, DataCell*) {
    const bool isEnded = isMarkOpen, isChanged = isEnded && IsChanged(undoSteps.back().look);
    Expect(UndoEnd() == isChanged, "the end of a command is not what was changed");
    if (isEnded && !isChanged) {
        ExpectLook(undoSteps.back());
        ForgetMark();
    }
    ExpectTexts();
    StackPushBool(isChanged);
    return RESULT;
}

std::int32_t Clear(std::int32_t, std::int32_t, DataCell*) {
    UndoClear();
    for (std::vector<Step>* steps : {&undoSteps, &redoSteps, &redoBeforeMark}) {
        steps->clear();
    }
    isMarkOpen = false;
    ExpectTexts();
    return NO_RESULT;
}

std::int32_t Saved(std::int32_t, std::int32_t, DataCell*) {
    UndoSaved();
    for (std::vector<Step>* steps : {&undoSteps, &redoSteps, &redoBeforeMark}) {
        for (Step& step : *steps) {
            step.isBeforeSave = true;
        }
    }
    return NO_RESULT;
}

// ---- For scripts ----

std::string TextOf(std::size_t number) {
    return std::to_string(number);
}

// The model without its selection, as a text that is another when a byte is.
std::int32_t ModelLook(std::int32_t, std::int32_t, DataCell*) {
    StackPushString(TextOf(Present().model));
    return RESULT;
}

std::int32_t SelectionLook(std::int32_t, std::int32_t, DataCell*) {
    StackPushString(TextOf(Present().selection));
    return RESULT;
}

// Was the model of that look ever marked, or left by undoing or redoing, so that no change of it is without a
// step?
std::int32_t WasMarked(std::int32_t, std::int32_t, DataCell* argv) {
    StackPushBool(marked.contains(std::stoull(std::string(StringText(argv[0])))));
    return RESULT;
}

// Does the newest step change anything?
std::int32_t IsEmptyStep(std::int32_t, std::int32_t, DataCell*) {
    StackPushBool(!undoSteps.empty() && !IsChanged(undoSteps.back().look));
    return RESULT;
}

constexpr BuiltIn WATCHED[] = {
    {"", "UndoMark", Mark, Takes("UndoMark", {TYPE_OBJECT})},
    {"", "Undo", TakeUndo, Takes("Undo", {})},
    {"", "Redo", TakeRedo, Takes("Redo", {})},
    {"", "UndoRestore", Restore<UndoRestore, false>, Takes("UndoRestore", {})},
    {"", "UndoCancel", Restore<UndoCancel, true>, Takes("UndoCancel", {})},
    {"", "UndoEnd", End, Takes("UndoEnd", {})},
    {"", "UndoClear", Clear, Takes("UndoClear", {})},
    {"", "UndoSaved", Saved, Takes("UndoSaved", {})},
    {"", "ModelLook", ModelLook, Takes("ModelLook", {})},
    {"", "SelectionLook", SelectionLook, Takes("SelectionLook", {})},
    {"", "WasMarked", WasMarked, Takes("WasMarked", {TYPE_OBJECT})},
    {"", "IsEmptyStep", IsEmptyStep, Takes("IsEmptyStep", {})},
};

void RegisterLibraries() {
    ModelLibrariesRegister();
    RegisterBuiltIns(WATCHED);
}

}  // namespace

int main(int argc, char** argv) {
    ConsoleWindow window;
    return HostMain(window, std::filesystem::read_symlink("/proc/self/exe").string(),
                    std::vector<std::string>(argv + 1, argv + argc), RegisterLibraries);
}

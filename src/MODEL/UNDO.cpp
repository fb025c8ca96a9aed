#include "MODEL/UNDO.h"

#include <cstring>
#include <deque>
#include <new>
#include <span>
#include <string>
#include <vector>

#include "MODEL/ATR.h"
#include "MODEL/BUFFER.h"
#include "MODEL/OBJ.h"
#include "MODEL/PIECE.h"
#include "MODEL/POLY.h"

namespace quelmark {
namespace {

struct ModelNumbers {
    std::int32_t attrLast, attrCurrent, objLast, objCurrent, modelEdit, selectCount;

    bool operator==(const ModelNumbers&) const = default;
};

struct ModelState {
    Image polygons, attributes, objects;
    ModelNumbers numbers;

    bool operator==(const ModelState&) const = default;
};

struct Step {
    std::string name;
    ModelState state;
    bool isBeforeSave = false;
};

std::deque<Step> undoSteps;   // oldest first
std::vector<Step> redoSteps;  // the next to redo last
// What could be redone before the newest mark: comes back when that mark is cancelled.
std::vector<Step> redoBeforeMark;
bool isMarkOpen = false;  // nothing was undone or redone since the newest mark
std::size_t limitBytes = UNDO_MEMORY;

// Free entries too: a polygon may name one, and then its edit mark counts.
template <class Record>
std::span<char> TableBytes(Record* table, std::int32_t size) {
    return {reinterpret_cast<char*>(table), static_cast<std::size_t>(size) * sizeof(Record)};
}

std::span<char> Polygons() {
    return {BufTop, BufNext};
}
std::span<char> Attributes() {
    return TableBytes(AttrTable, AttributeCount);
}
std::span<char> Objects() {
    return TableBytes(ObjTable, ObjectTableSize);
}

ModelNumbers PresentNumbers() {
    return {AttrLast, AttrCurrent, ObjLast, ObjCurrent, ModelEdit, SelectCount};
}

// What the present state probably resembles: the states beside it.
ModelState PresentState(std::span<const Step* const> nearest) {
    const auto imageOf = [nearest](std::span<const char> memory, Image ModelState::*image) {
        std::vector<const Image*> images;
        for (const Step* step : nearest) {
            images.push_back(&(step->state.*image));
        }
        return ImageOf(memory, images);
    };
    return {imageOf(Polygons(), &ModelState::polygons), imageOf(Attributes(), &ModelState::attributes),
            imageOf(Objects(), &ModelState::objects), PresentNumbers()};
}

// Does the model differ from the state otherwise than in edit marks?
bool IsChanged(const ModelState& state) {
    std::vector<ObjectRecord> objects(static_cast<std::size_t>(ObjectTableSize));
    PutBack(state.objects, reinterpret_cast<char*>(objects.data()));
    for (std::size_t i = 0; i < objects.size(); ++i) {
        objects[i].edit = ObjTable[i].edit;
    }
    ModelNumbers numbers = state.numbers;
    numbers.modelEdit = ModelEdit;
    return numbers != PresentNumbers() || std::memcmp(objects.data(), ObjTable, Objects().size()) != 0 ||
           !IsImageOf(state.attributes, Attributes()) || !IsImageOf(state.polygons, Polygons());
}

// What follows when the images of a step have been put back.
void PutNumbersBack(const Step& step) {
    const ModelNumbers& numbers = step.state.numbers;
    ++BufLayout;
    AttrLast = numbers.attrLast;
    ObjLast = numbers.objLast;
    AttrCurrent = numbers.attrCurrent;
    ObjCurrent = numbers.objCurrent;
    ModelEdit = step.isBeforeSave ? 1 : numbers.modelEdit;
    SelectCount = numbers.selectCount;
    for (std::int32_t i = 0; step.isBeforeSave && i <= ObjLast; ++i) {
        ObjTable[i].edit = ObjTable[i].used;
    }
    PolygonLoadInit();
    ++AttrRevision;
    ++ObjRevision;
}

void KeepWithinLimit() {
    if (PieceBytes() > limitBytes) {
        redoBeforeMark.clear();
    }
    while (PieceBytes() > limitBytes && undoSteps.size() > 1) {
        undoSteps.pop_front();
    }
    while (PieceBytes() > limitBytes && !redoSteps.empty()) {
        redoSteps.erase(redoSteps.begin());
    }
    PieceLimit(limitBytes);
}

// Takes the last step of one list, keeps the present state in the other, and puts the step's state back.
// False when there is no step, or no memory for the present state.
template <class From, class To>
bool Exchange(From& from, To& to) {
    if (from.empty()) {
        return false;
    }
    redoBeforeMark.clear();
    isMarkOpen = false;
    Step& step = from.back();
    const ModelState& old = step.state;
    ModelState present{{}, {}, {}, PresentNumbers()}, nearest{};
    try {
        if (!to.empty()) {
            nearest = to.back().state;
        }
        present.polygons = ExchangeBegin(old.polygons, Polygons(), nearest.polygons);
        present.attributes = ExchangeBegin(old.attributes, Attributes(), nearest.attributes);
        present.objects = ExchangeBegin(old.objects, Objects(), nearest.objects);
        to.push_back({step.name, {}});
    } catch (const std::bad_alloc&) {
        return false;
    }
    BufNext = ExchangeEnd(old.polygons, Polygons(), nearest.polygons, present.polygons);
    ExchangeEnd(old.attributes, Attributes(), nearest.attributes, present.attributes);
    ExchangeEnd(old.objects, Objects(), nearest.objects, present.objects);
    PutNumbersBack(step);
    to.back().state = std::move(present);
    from.pop_back();
    return true;
}

}  // namespace

void UndoClear() {
    undoSteps.clear();
    redoSteps.clear();
    redoBeforeMark.clear();
    isMarkOpen = false;
    PieceForget();
}

void UndoExit() {
    UndoClear();
    limitBytes = UNDO_MEMORY;
}

bool UndoMark(std::string_view name) {
    try {
        redoBeforeMark = std::move(redoSteps);
        redoSteps.clear();
        std::vector<const Step*> nearest;
        if (!undoSteps.empty()) {
            nearest.push_back(&undoSteps.back());
        }
        if (!redoBeforeMark.empty()) {
            nearest.push_back(&redoBeforeMark.back());
        }
        ModelState state = PresentState(nearest);
        isMarkOpen = true;
        if (!undoSteps.empty() && undoSteps.back().state == state) {
            undoSteps.back().name = name;
            undoSteps.back().isBeforeSave = false;
            return true;
        }
        undoSteps.push_back({std::string(name), std::move(state)});
        KeepWithinLimit();
        return true;
    } catch (const std::bad_alloc&) {
        UndoClear();
        return false;
    }
}

bool Undo() {
    return Exchange(undoSteps, redoSteps);
}

bool Redo() {
    return Exchange(redoSteps, undoSteps);
}

bool UndoRestore() {
    if (undoSteps.empty()) {
        return false;
    }
    const ModelState& state = undoSteps.back().state;
    BufNext = PutBack(state.polygons, BufTop);
    PutBack(state.attributes, Attributes().data());
    PutBack(state.objects, Objects().data());
    PutNumbersBack(undoSteps.back());
    return true;
}

bool UndoCancel() {
    const bool restored = UndoRestore();
    if (restored) {
        undoSteps.pop_back();
        redoSteps = std::move(redoBeforeMark);
        redoBeforeMark.clear();
        isMarkOpen = false;
    }
    return restored;
}

bool UndoEnd() {
    if (!isMarkOpen) {
        return false;
    }
    const bool isChanged = IsChanged(undoSteps.back().state);
    if (!isChanged) {
        UndoCancel();
    }
    return isChanged;
}

std::string_view UndoText() {
    return undoSteps.empty() ? std::string_view() : undoSteps.back().name;
}

std::string_view RedoText() {
    return redoSteps.empty() ? std::string_view() : redoSteps.back().name;
}

void UndoSaved() {
    const auto differ = [](auto& steps) {
        for (Step& step : steps) {
            step.isBeforeSave = true;
        }
    };
    differ(undoSteps);
    differ(redoSteps);
    differ(redoBeforeMark);
}

void UndoLimit(std::size_t bytes) {
    limitBytes = bytes;
    KeepWithinLimit();
}

std::size_t UndoLimit() {
    return limitBytes;
}

std::size_t UndoHeld() {
    return PieceBytes();
}

}  // namespace quelmark

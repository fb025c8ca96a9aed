#include "MODEL/UNDO.h"

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

struct ModelState {
    Image polygons, attributes, objects;
    std::int32_t attrLast, attrCurrent, objLast, objCurrent, modelEdit, selectCount;

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

// A state without its images.
ModelState PresentNumbers() {
    return {{}, {}, {}, AttrLast, AttrCurrent, ObjLast, ObjCurrent, ModelEdit, SelectCount};
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
    ModelState state = PresentNumbers();
    state.polygons = imageOf(Polygons(), &ModelState::polygons);
    state.attributes = imageOf(Attributes(), &ModelState::attributes);
    state.objects = imageOf(Objects(), &ModelState::objects);
    return state;
}

// What follows when the images of a step have been put back.
void PutNumbersBack(const Step& step) {
    const ModelState& state = step.state;
    ++BufLayout;
    AttrLast = state.attrLast;
    ObjLast = state.objLast;
    AttrCurrent = state.attrCurrent;
    ObjCurrent = state.objCurrent;
    ModelEdit = step.isBeforeSave ? 1 : state.modelEdit;
    SelectCount = state.selectCount;
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
    Step& step = from.back();
    const ModelState& old = step.state;
    ModelState present = PresentNumbers();
    try {
        present.polygons = ExchangeBegin(old.polygons, Polygons());
        present.attributes = ExchangeBegin(old.attributes, Attributes());
        present.objects = ExchangeBegin(old.objects, Objects());
        to.push_back({step.name, {}});
    } catch (const std::bad_alloc&) {
        return false;
    }
    BufNext = ExchangeEnd(old.polygons, Polygons(), present.polygons);
    ExchangeEnd(old.attributes, Attributes(), present.attributes);
    ExchangeEnd(old.objects, Objects(), present.objects);
    PutNumbersBack(step);
    to.back().state = std::move(present);
    from.pop_back();
    KeepWithinLimit();
    return true;
}

}  // namespace

void UndoClear() {
    undoSteps.clear();
    redoSteps.clear();
    redoBeforeMark.clear();
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
    }
    return restored;
}

std::string_view UndoText() {
    return undoSteps.empty() ? std::string_view() : undoSteps.back().name;
}

std::string_view RedoText() {
    return redoSteps.empty() ? std::string_view() : redoSteps.back().name;
}

void UndoSaved() {
    for (Step& step : undoSteps) {
        step.isBeforeSave = true;
    }
    for (Step& step : redoSteps) {
        step.isBeforeSave = true;
    }
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

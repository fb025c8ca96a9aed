#include "MODEL/UNDO.h"

#include <algorithm>
#include <cstring>
#include <deque>
#include <memory>
#include <new>
#include <span>
#include <string>
#include <vector>

#include "MODEL/ATR.h"
#include "MODEL/BUFFER.h"
#include "MODEL/OBJ.h"
#include "MODEL/POLY.h"

namespace quelmark {
namespace {

constexpr std::size_t PIECE_BYTES = std::size_t{64} << 10;

std::size_t heldBytes = 0;

struct Piece {
    explicit Piece(std::span<const char> from) : bytes(from.begin(), from.end()) {
        heldBytes += bytes.size();
    }
    ~Piece() { heldBytes -= bytes.size(); }
    Piece(const Piece&) = delete;
    Piece& operator=(const Piece&) = delete;

    bool Holds(std::span<const char> other) const {
        return bytes.size() == other.size() && std::memcmp(bytes.data(), other.data(), other.size()) == 0;
    }

    const std::vector<char> bytes;
};

// A run of memory, cut into pieces. Images of equal memory have the same pieces.
using Image = std::vector<std::shared_ptr<const Piece>>;

Image ImageOf(std::span<const char> memory, const Image& nearest) {
    Image image;
    image.reserve(memory.size() / PIECE_BYTES + 1);
    for (std::size_t at = 0; at < memory.size(); at += PIECE_BYTES) {
        const auto part = memory.subspan(at, std::min(PIECE_BYTES, memory.size() - at));
        const std::size_t n = image.size();
        const bool isEqual = n < nearest.size() && nearest[n]->Holds(part);
        image.push_back(isEqual ? nearest[n] : std::make_shared<const Piece>(part));
    }
    return image;
}

// Writes an image to memory that has room for it; the address behind it.
char* PutBack(const Image& image, char* to) {
    for (const auto& piece : image) {
        std::memcpy(to, piece->bytes.data(), piece->bytes.size());
        to += piece->bytes.size();
    }
    return to;
}

struct ModelState {
    Image polygons, attributes, objects;
    std::int32_t attrLast, attrCurrent, objLast, objCurrent, selectCount;

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
ModelState nearestState{};  // the state kept or put back last: what a new one probably resembles
std::size_t limitBytes = UNDO_MEMORY;

// Free entries too: a polygon may name one, and then its edit mark counts.
template <class Record>
std::span<const char> TableBytes(const Record* table, std::int32_t size) {
    return {reinterpret_cast<const char*>(table), static_cast<std::size_t>(size) * sizeof(Record)};
}

ModelState PresentState() {
    const std::span<const char> polygons(BufTop, BufNext);
    return {ImageOf(polygons, nearestState.polygons),
            ImageOf(TableBytes(AttrTable, AttributeCount), nearestState.attributes),
            ImageOf(TableBytes(ObjTable, ObjectTableSize), nearestState.objects),
            AttrLast,
            AttrCurrent,
            ObjLast,
            ObjCurrent,
            SelectCount};
}

void PutStepBack(const Step& step) {
    const ModelState& state = step.state;
    BufNext = PutBack(state.polygons, BufTop);
    ++BufLayout;
    PutBack(state.attributes, reinterpret_cast<char*>(AttrTable));
    PutBack(state.objects, reinterpret_cast<char*>(ObjTable));
    AttrLast = state.attrLast;
    ObjLast = state.objLast;
    AttrCurrent = state.attrCurrent;
    ObjCurrent = state.objCurrent;
    SelectCount = state.selectCount;
    for (std::int32_t i = 0; step.isBeforeSave && i <= ObjLast; ++i) {
        ObjTable[i].edit = ObjTable[i].used;
    }
    PolygonLoadInit();
    ++AttrRevision;
    ++ObjRevision;
    nearestState = state;
}

void KeepWithinLimit() {
    if (heldBytes > limitBytes) {
        redoBeforeMark.clear();
    }
    while (heldBytes > limitBytes && undoSteps.size() > 1) {
        undoSteps.pop_front();
    }
    while (heldBytes > limitBytes && !redoSteps.empty()) {
        redoSteps.erase(redoSteps.begin());
    }
}

// Takes the last step of one list, keeps the present state in the other, and puts the step's state back.
// False when there is no step, or no memory for the present state.
template <class From, class To>
bool Exchange(From& from, To& to) {
    if (from.empty()) {
        return false;
    }
    redoBeforeMark.clear();
    try {
        to.push_back({from.back().name, PresentState()});
    } catch (const std::bad_alloc&) {
        return false;
    }
    PutStepBack(from.back());
    from.pop_back();
    KeepWithinLimit();
    return true;
}

}  // namespace

void UndoClear() {
    undoSteps.clear();
    redoSteps.clear();
    redoBeforeMark.clear();
    nearestState = {};
}

bool UndoMark(std::string_view name) {
    try {
        redoBeforeMark = std::move(redoSteps);
        redoSteps.clear();
        ModelState state = PresentState();
        nearestState = state;
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
    PutStepBack(undoSteps.back());
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
    return heldBytes;
}

}  // namespace quelmark

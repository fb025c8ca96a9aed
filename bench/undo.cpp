// What a step of a model of triangles costs beside a copy of its buffer, taken in turn in one run. Times are
// the thread's own; figures are medians over the rounds, ratios the median of the pairs. Arguments: the
// number of polygons (1000000) and of rounds (31).
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <vector>

#include "MODEL/BUFFER.h"
#include "MODEL/BULK.h"
#include "MODEL/SELECT.h"
#include "MODEL/UNDO.h"

namespace {

using namespace quelmark;

double Now() {
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) * 1e3 + static_cast<double>(t.tv_nsec) * 1e-6;
}

double Median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

void MakeModel(std::int32_t polygons) {
    ModelExit();
    ModelInit(polygons * 72 + 65536, 4, 4, 16);
    for (std::int32_t i = 0; i < polygons; ++i) {
        CurrentPolygon->vers = 3;
        for (VertexRecord& v : CurrentPolygon->Vertices()) {
            v = {};
            v.x = static_cast<std::int16_t>(i % 30000);
            v.y = static_cast<std::int16_t>(i / 100);
            v.z = static_cast<std::int16_t>(&v - CurrentPolygon->vertex);
        }
        PolygonAppend(1);
    }
}

// Changes every polygon, as a command that moves all does.
void ChangeAll() {
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon)) {
        polygon->attr ^= 1;
        for (VertexRecord& v : polygon->Vertices()) {
            v.z = static_cast<std::int16_t>(v.z ^ 64);
        }
    }
}
void ChangeOne() {
    PolygonTop()->attr ^= 1;
}
void ChangeNothing() {}

// One step: what is done before it and is not timed, and what is.
struct Step {
    const char* name;
    void (*before)();
    void (*step)();
};

void MarkNow() {
    UndoMark("step");
}
void UndoNow() {
    Undo();
}
void RedoNow() {
    Redo();
}
void RestoreNow() {
    UndoRestore();
}
void CancelNow() {
    UndoCancel();
}
void EndNow() {
    UndoEnd();
}
template <void (*Change)()>
void Marked() {
    UndoClear();
    MarkNow();
    Change();
}
// As after a small change: nearly all of the state is shared with the one before.
template <void (*Change)()>
void MarkedTwice() {
    Marked<ChangeOne>();
    MarkNow();
    Change();
}
// The same in the middle of work, when steps that were forgotten have left their memory.
template <void (*Change)()>
void MarkedInWork() {
    MarkedTwice<ChangeAll>();
    Undo();
    Undo();
    MarkNow();
    ChangeOne();
    MarkNow();
    Change();
}
template <void (*before)()>
void Undone() {
    before();
    Undo();
}

constexpr Step STEPS[] = {
    {"first mark", UndoClear, MarkNow},
    {"mark, all changed", Marked<ChangeAll>, MarkNow},
    {"mark, all changed, in the middle of work", MarkedInWork<ChangeAll>, MarkNow},
    {"mark, one polygon changed", Marked<ChangeOne>, MarkNow},
    {"undo, all changed", Marked<ChangeAll>, UndoNow},
    {"undo, all changed, the step before shared", MarkedTwice<ChangeAll>, UndoNow},
    {"undo, all changed, in the middle of work", MarkedInWork<ChangeAll>, UndoNow},
    {"undo, one polygon changed", Marked<ChangeOne>, UndoNow},
    {"undo, all deleted", Marked<PolygonDelete>, UndoNow},
    {"redo, all changed", Undone<Marked<ChangeAll>>, RedoNow},
    {"redo, all changed, the step before shared", Undone<MarkedTwice<ChangeAll>>, RedoNow},
    {"redo, one polygon changed", Undone<Marked<ChangeOne>>, RedoNow},
    {"restore, all changed", Marked<ChangeAll>, RestoreNow},
    {"restore, one polygon changed", Marked<ChangeOne>, RestoreNow},
    {"cancel, all changed", MarkedTwice<ChangeAll>, CancelNow},
    {"end, all changed", Marked<ChangeAll>, EndNow},
    {"end, nothing changed", Marked<ChangeNothing>, EndNow},
};

unsigned seen = 0;  // what the copies hold, so that none is left out

void CopyToNew() {
    const std::vector<char> copy(BufTop, BufNext);
    seen += static_cast<unsigned char>(copy[seen % copy.size()]);
}
void CopyToOld() {
    static std::vector<char> copy;
    copy.resize(static_cast<std::size_t>(BufEnd - BufTop));
    std::memcpy(copy.data(), BufTop, static_cast<std::size_t>(BufNext - BufTop));
    seen += static_cast<unsigned char>(copy[seen % copy.size()]);
}

double Time(void (*what)()) {
    const double from = Now();
    what();
    return Now() - from;
}

void Compare(const Step& step, std::int32_t polygons, int rounds) {
    std::vector<double> steps, fresh, old, freshRatios, oldRatios;
    for (int round = 0; round < rounds; ++round) {
        if (PolygonCount() != polygons) {
            MakeModel(polygons);
        }
        CopyToOld();
        old.push_back(Time(CopyToOld));
        fresh.push_back(Time(CopyToNew));
        step.before();
        steps.push_back(Time(step.step));
        freshRatios.push_back(steps.back() / fresh.back());
        oldRatios.push_back(steps.back() / old.back());
    }
    std::printf("%-41s %7.2f ms; copy to new memory %7.2f ms, ratio %5.2f; to old %7.2f ms, ratio %5.2f\n",
                step.name, Median(steps), Median(fresh), Median(freshRatios), Median(old), Median(oldRatios));
}

}  // namespace

int main(int argc, char** argv) {
    const std::int32_t polygons = argc > 1 ? std::atoi(argv[1]) : 1000000;
    const int rounds = argc > 2 ? std::atoi(argv[2]) : 31;
    std::printf("%d polygons\n", polygons);
    for (const Step& step : STEPS) {
        Compare(step, polygons, rounds);
    }
    return seen == 1 ? 2 : 0;
}

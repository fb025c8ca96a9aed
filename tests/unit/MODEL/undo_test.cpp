// Steps back and forth through the states of the model.
#include "MODEL/UNDO.h"

#include <cstring>
#include <random>

#include "MODEL/BULK.h"
#include "MODEL/PIECE.h"
#include "MODEL/SHADE.h"
#include "model_fixture.h"

namespace quelmark::test {
namespace {

// Every byte that undoing must bring back.
std::string ModelBytes() {
    std::string bytes(BufTop, BufNext);
    bytes.append(reinterpret_cast<const char*>(AttrTable),
                 static_cast<std::size_t>(AttributeCount) * sizeof(AttributeRecord));
    bytes.append(reinterpret_cast<const char*>(ObjTable),
                 static_cast<std::size_t>(ObjectTableSize) * sizeof(ObjectRecord));
    for (const std::int32_t number : {AttrLast, AttrCurrent, ObjLast, ObjCurrent, ModelEdit, SelectCount}) {
        bytes += std::to_string(number) + " ";
    }
    return bytes;
}

class UndoSteps : public ModelTest {
  protected:
    static void AddTriangle(int x) { Add({At(x, 0, 0), At(x + 10, 0, 0), At(x, 10, 5)}); }
};

TEST_F(UndoSteps, UndoBringsBackPolygonsSelectionHiddenMarksAttributesAndObjects) {
    ObjAlloc("box");
    AttrAlloc("red");
    AddTriangle(0);
    AddTriangle(20);
    const std::string before = ModelBytes();
    EXPECT_TRUE(UndoMark("everything"));
    SelectOnly(PolygonTop());
    PolygonHide(true);
    PolygonDelete();
    AttrAlloc("blue");
    AttrCurrent = 1;
    ObjDelete(0);
    const std::string after = ModelBytes();
    EXPECT_TRUE(Undo());
    EXPECT_EQ(ModelBytes(), before);
    EXPECT_TRUE(Redo());
    EXPECT_EQ(ModelBytes(), after);
}
TEST_F(UndoSteps, AMarkForgetsWhatCouldBeRedone) {
    UndoMark("one");
    AddTriangle(0);
    Undo();
    EXPECT_EQ(RedoText(), "one");
    UndoMark("two");
    EXPECT_EQ(RedoText(), "");
    EXPECT_FALSE(Redo());
}
TEST_F(UndoSteps, AMarkAtAnUnchangedModelTakesThePlaceOfTheLast) {
    UndoMark("one");
    AddTriangle(0);
    UndoMark("nothing came of it");
    UndoMark("two");
    AddTriangle(1);
    EXPECT_TRUE(Undo());
    EXPECT_EQ(PolygonCount(), 1);
    EXPECT_EQ(UndoText(), "one");
}
TEST_F(UndoSteps, RestoreLeavesTheMarkAndCancelTakesIt) {
    AddTriangle(0);
    const std::string before = ModelBytes();
    UndoMark("preview");
    for (int i = 1; i < 5; ++i) {
        AddTriangle(i);
        EXPECT_TRUE(UndoRestore());
        EXPECT_EQ(ModelBytes(), before);
    }
    AddTriangle(5);
    EXPECT_TRUE(UndoCancel());
    EXPECT_EQ(ModelBytes(), before);
    EXPECT_FALSE(UndoCancel());
    EXPECT_FALSE(Redo());
}
TEST_F(UndoSteps, ACancelledMarkLeavesWhatCouldBeRedone) {
    UndoMark("one");
    AddTriangle(0);
    Undo();
    UndoMark("given up");
    AddTriangle(1);
    EXPECT_EQ(RedoText(), "");
    UndoCancel();
    EXPECT_EQ(RedoText(), "one");
    EXPECT_TRUE(Redo());
    EXPECT_EQ(PolygonCount(), 1);
    UndoMark("two");
    AddTriangle(2);
    Undo();
    Redo();
    UndoCancel();
    EXPECT_EQ(RedoText(), "");
}
TEST_F(UndoSteps, ARestoredModelHasNoLoadedPolygon) {
    AddTriangle(0);
    UndoMark("load");
    PolygonLoadNext();
    Undo();
    EXPECT_EQ(LoadedPolygon, nullptr);
}
TEST_F(UndoSteps, AStateFromBeforeASaveComesBackEdited) {
    ObjAlloc("box");
    UndoMark("add");
    AddTriangle(0);
    ObjTable[0].edit = 0;
    UndoSaved();
    Undo();
    EXPECT_EQ(ObjTable[0].edit, 1);
    EXPECT_EQ(ModelEdit, 1);
    Redo();
    EXPECT_EQ(ObjTable[0].edit, 0);
    EXPECT_EQ(ModelEdit, 0);
}
TEST_F(UndoSteps, AStepThatComesBackWithACancelledMarkIsFromBeforeASaveToo) {
    ObjAlloc("box");
    UndoMark("add");
    AddTriangle(0);
    Undo();
    UndoMark("given up after a save");
    ObjTable[0].edit = 0;
    UndoSaved();
    UndoCancel();
    Redo();
    EXPECT_EQ(ObjTable[0].edit, 1);
    EXPECT_EQ(ModelEdit, 1);
}
TEST_F(UndoSteps, AMarkThatEndsWithoutAChangeLeavesTheStepsAsTheyWere) {
    UndoMark("one");
    AddTriangle(0);
    UndoMark("two");
    AddTriangle(1);
    Undo();
    UndoMark("nothing comes of it");
    EXPECT_FALSE(UndoEnd());
    EXPECT_EQ(UndoText(), "one");
    EXPECT_EQ(RedoText(), "two");
    EXPECT_FALSE(UndoEnd());
    EXPECT_EQ(UndoText(), "one");
}
TEST_F(UndoSteps, AMarkThatEndsWithAChangeOfAnyKindStays) {
    ObjAlloc("box");
    AttrAlloc("red");
    AddTriangle(0);
    const std::vector<void (*)()> changes = {
        [] { AddTriangle(1); },
        [] { PolygonTop()->Vertices()[0].u = 7; },
        [] { SelectOnly(PolygonTop()); },
        [] { AttrTable[0].col.red += 1; },
        [] { ObjTable[0].name[0] = 'x'; },
        [] { AttrCurrent = 1 - AttrCurrent; },
        [] {
            PolygonHide(true);
            PolygonDelete();
        },
    };
    for (const auto change : changes) {
        UndoMark("change");
        change();
        EXPECT_TRUE(UndoEnd());
        EXPECT_EQ(UndoText(), "change");
    }
}
TEST_F(UndoSteps, AMarkSinceWhichOnlyEditMarksHaveChangedGoesWithThem) {
    ObjAlloc("box");
    AddTriangle(0);
    ObjTable[0].edit = 0;
    UndoMark("nothing comes of it");
    ObjTable[0].edit = 1;
    ModelEdit = 1;
    EXPECT_FALSE(UndoEnd());
    EXPECT_EQ(UndoText(), "");
    EXPECT_EQ(ObjTable[0].edit, 0);
    EXPECT_EQ(ModelEdit, 0);
}
TEST_F(UndoSteps, WhatWasUndoneOrRedoneIsNoEndOfACommand) {
    UndoMark("one");
    AddTriangle(0);
    UndoMark("two");
    Undo();
    Redo();
    EXPECT_FALSE(UndoEnd());
    EXPECT_EQ(UndoText(), "two");
    Undo();
    EXPECT_FALSE(UndoEnd());
    EXPECT_EQ(UndoText(), "one");
    EXPECT_EQ(RedoText(), "two");
}
TEST_F(UndoSteps, TheEditMarkOfTheModelGoesWithItsStates) {
    UndoMark("an attribute without objects");
    AttrAlloc("red");
    ModelEdit = 1;
    Undo();
    EXPECT_EQ(ModelEdit, 0);
    Redo();
    EXPECT_EQ(ModelEdit, 1);
}
TEST_F(UndoSteps, TheOldestStepsGoWhenTheLimitIsPassedButTheNewestStays) {
    AddTriangle(0);
    UndoMark("old");
    AddTriangle(1);
    UndoMark("new");
    AddTriangle(2);
    UndoLimit(1);
    EXPECT_EQ(UndoText(), "new");
    EXPECT_TRUE(Undo());
    EXPECT_EQ(PolygonCount(), 2);
    EXPECT_FALSE(Undo());
}
TEST_F(UndoSteps, UndoingAndRedoingForgetNothingThoughStatesGrowBeyondTheLimit) {
    UndoMark("one");
    AddTriangle(0);
    UndoMark("two");
    for (int i = 0; i < 100; ++i) {
        AddTriangle(i);
    }
    const std::string last = ModelBytes();
    UndoLimit(UndoHeld());
    EXPECT_TRUE(Undo());
    EXPECT_GT(UndoHeld(), UndoLimit());
    EXPECT_TRUE(Undo());
    EXPECT_EQ(PolygonCount(), 0);
    EXPECT_TRUE(Redo());
    EXPECT_TRUE(Redo());
    EXPECT_EQ(ModelBytes(), last);
}
TEST_F(UndoSteps, StatesShareTheMemoryOfWhatIsEqual) {
    ModelExit();
    ModelInit(1 << 22, 4, 4, 32);
    for (int i = 0; i < 40000; ++i) {
        AddTriangle(i % 3000);
    }
    UndoMark("one");
    const std::size_t whole = UndoHeld();
    AddTriangle(0);
    UndoMark("two");
    EXPECT_LT(UndoHeld(), whole + 200000);
}
TEST_F(UndoSteps, UndoingAndRedoingSmallChangesHoldsOnePieceMoreAtMost) {
    ModelExit();
    ModelInit(1 << 22, 4, 4, 32);
    for (int i = 0; i < 40000; ++i) {
        AddTriangle(i % 3000);
    }
    PolygonRecord* polygon = PolygonTop();
    for (int step = 0; step < 40; ++step) {
        UndoMark("small");
        polygon->attr ^= 1;
        for (int i = 0; i < 900; ++i) {
            polygon = PolygonNext(polygon);
        }
    }
    const std::size_t held = UndoHeld();
    while (Undo()) {
        EXPECT_LE(UndoHeld(), held + PIECE_BYTES);
    }
    while (Redo()) {
        EXPECT_LE(UndoHeld(), held + PIECE_BYTES);
    }
}
TEST_F(UndoSteps, AClearedModelStoreForgetsItsSteps) {
    UndoMark("one");
    NewModel();
    EXPECT_FALSE(Undo());
    EXPECT_EQ(UndoHeld(), 0U);
}

// One random change of the model.
void Change(std::mt19937& random) {
    const auto number = [&](int below) {
        return static_cast<std::int32_t>(random() % static_cast<unsigned>(below));
    };
    switch (number(10)) {
        case 0:
            SelectAll(number(2) == 0, SELECT_UPDATE);
            break;
        case 1:
            PolygonDelete();
            break;
        case 2:
            PolygonMove(MatrixRotation(number(3), number(360)));
            break;
        case 3:
            PolygonHide(number(2) == 0);
            break;
        case 4:
            AttrAlloc("a");
            break;
        case 5:
            AttrDelete(number(4));
            break;
        case 6:
            ObjAlloc("o");
            break;
        case 7:
            ObjDelete(number(4));
            break;
        case 8:
            ShadeSelected(NORMAL_ON);
            break;
        default:
            CurrentPolygon->vers = static_cast<std::int16_t>(3 + number(8));
            CurrentPolygon->attr = static_cast<std::int16_t>(number(3));
            CurrentPolygon->obj = static_cast<std::int16_t>(number(3));
            for (VertexRecord& vertex : CurrentPolygon->Vertices()) {
                vertex.x = static_cast<std::int16_t>(number(2000) - 1000);
                vertex.y = static_cast<std::int16_t>(number(2000) - 1000);
                vertex.z = static_cast<std::int16_t>(number(2000) - 1000);
            }
            PolygonAppend(number(2));
    }
}

TEST_F(UndoSteps, ThousandsOfRandomChangesUndoToTheExactFirstStateAndRedoToTheLast) {
    std::mt19937 random(20261121);
    AddTriangle(7);
    std::vector<std::string> states;
    for (int i = 0; i < 3000; ++i) {
        const std::string before = ModelBytes();
        if (states.empty() || states.back() != before) {
            states.push_back(before);
        }
        UndoMark("step");
        Change(random);
    }
    const std::string last = ModelBytes();
    for (auto state = states.rbegin(); state != states.rend(); ++state) {
        ASSERT_TRUE(Undo());
        ASSERT_TRUE(ModelBytes() == *state) << std::distance(state, states.rend()) - 1;
    }
    while (Redo()) {
    }
    EXPECT_EQ(ModelBytes(), last);
}

}  // namespace
}  // namespace quelmark::test

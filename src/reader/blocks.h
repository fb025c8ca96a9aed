// What the readers of object blocks, of polygons and of frames share: the state of one read.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "MATLIB/SETMAT.h"

namespace quelmark {

inline constexpr std::int32_t LEVELS_MOST = 10;  // of part references inside each other

struct ReadState {
    std::int32_t mode = 1;       // 1: objects merge by name
    std::int32_t levels = 0;     // part references that are open
    std::int32_t parts = 0;      // part references so far
    std::int64_t partBytes = 0;  // and the bytes of their files
    // A table is full, the references are too many, or the ESC key was pressed: reported, and nothing more is
    // read.
    bool stopped = false;
    // The reference stack: the matrix of each level takes its points to the model's.
    std::array<Matrix, LEVELS_MOST + 1> matrices{};
    std::array<bool, LEVELS_MOST + 1> moving{};  // it is not the unit matrix
};
extern ReadState Reading;

// Begins a read whose level 0 is `base`.
void BeginRead(std::int32_t mode, const Matrix& base);
void SetBaseMatrix(const Matrix& base);
// True when no fault of severity 10 or more was reported.
bool EndRead();
// Nothing more is to be read.
bool ReadEnded();
// Asks the host for the ESC key.
void PollCancel();

// The object block being read.
struct ShapeBlock {
    std::int32_t object = -1;
    std::int32_t attribute = -1;  // -1: still "no"
    bool changed = false;
};

// Reads the polygon whose "prim" is the current token and stands behind it afterwards.
void ReadPolygon(ShapeBlock& block);
// At what begins the next construct or ends the block.
bool BeginsConstruct();
// To the end of a faulty construct, of which so many parentheses are open, or to what begins the next one.
void SkipConstruct(std::int32_t open = 0);
// `parts NAME` and its transformations: the file's polygons become this object's.
void ReadPart(ShapeBlock& block);
// Every block of the active file, whose name is `file`; the polygons go to `into`'s object when there is one.
void ReadBlocks(std::string_view file, ShapeBlock* into);
// The file of a part or of a frame's object: as given, then with ".suf".
bool FindShape(std::string_view name, std::string& path);

}  // namespace quelmark

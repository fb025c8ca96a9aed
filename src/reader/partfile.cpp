// Part references: the search for their files and the levels of their transformations.
#include <string>
#include <utility>

#include "reader/blocks.h"
#include "reader/objread.h"
#include "reader/report.h"
#include "reader/scanner.h"
#include "reader/transform.h"
#include "text/path.h"
#include "text/sjis.h"

namespace quelmark {
namespace {

// References that call each other many times over grow without end long before they are ten deep.
constexpr std::int32_t PARTS_MOST = 10000;
constexpr std::int64_t PART_BYTES_MOST = std::int64_t{1} << 30;

std::string startDirectory;

bool IsMoving(const Matrix& matrix) {
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 3; ++column) {
            if (matrix.row[row][column] != UNIT_MATRIX.row[row][column]) {
                return true;
            }
        }
    }
    return false;
}

void PushLevel(const Matrix& matrix) {
    const auto level = static_cast<std::size_t>(++Reading.levels);
    Reading.matrices[level] = MatrixProduct(matrix, Reading.matrices[level - 1]);
    Reading.moving[level] = IsMoving(Reading.matrices[level]);
}

void ReadPartFile(ShapeBlock& block, const std::string& path, const Matrix& matrix) {
    ShapeText outer = std::move(Shape);
    const std::int32_t attribute = block.attribute;
    PushLevel(matrix);
    if (ShapeOpen(path)) {
        Reading.partBytes += Shape.end - Shape.bytes.get();
        if (Reading.partBytes > PART_BYTES_MOST) {
            Reading.stopped = true;
            ObjectReport(OBJECT_COMPLEX);
        } else {
            ReadBlocks(path, &block);
        }
    }
    --Reading.levels;
    block.attribute = attribute;
    Shape = std::move(outer);
}

// A faulty reference is dropped with all of its transformations.
void SkipReference() {
    while (!BeginsConstruct()) {
        ShapeNext();
    }
}

}  // namespace

void ReaderInit(std::string_view programDirectory) {
    startDirectory = programDirectory;
}

void BeginRead(std::int32_t mode, const Matrix& base) {
    ReaderBegin();
    Reading = ReadState{};
    Reading.mode = mode;
    SetBaseMatrix(base);
}

void SetBaseMatrix(const Matrix& base) {
    Reading.matrices[0] = base;
    Reading.moving[0] = IsMoving(base);
}

void ReadPart(ShapeBlock& block) {
    std::string name;
    ShapeNext();
    if (!ShapeName(name)) {
        return SkipReference();
    }
    if (Shape.token == TOKEN_LEFT_PAREN) {
        ScannerReport(SCANNER_ARGUMENT);
        return SkipReference();
    }
    Matrix matrix = UNIT_MATRIX;
    if (!ReadTransforms(matrix)) {
        return SkipReference();
    }
    if (++Reading.parts > PARTS_MOST) {
        Reading.stopped = true;
        ObjectReport(OBJECT_COMPLEX);
        return;
    }
    if (Reading.levels >= LEVELS_MOST) {
        ObjectReport(OBJECT_COMPLEX);
        return;
    }
    PollCancel();
    std::string path;
    if (!FindShape(name, path)) {
        ReaderReport("形状参照指定"_sjis, SEVERITY_WARNING);
        ReaderReport(std::string("ファイル "_sjis) + name + " がオープンできません。"_sjis,
                     SEVERITY_CONSTRUCT);
        return;
    }
    ReadPartFile(block, path, matrix);
}

bool FindShape(std::string_view name, std::string& path) {
    return FindPartFile(name, Shape.directory, path) ||
           (!HasExtension(name) && FindPartFile(std::string(name) + ".suf", Shape.directory, path));
}

bool FindPartFile(std::string_view name, std::string_view shapeDirectory, std::string& path) {
    const auto exists = [&path](const std::string& candidate) {
        path = candidate;
        return PathExists(candidate) && !PathIsDirectory(candidate);
    };
    const std::string n(name);
    const std::string d(shapeDirectory);
    if (exists(n) || exists(startDirectory + n)) {
        return true;
    }
    if (n.size() > 2) {
        const std::string pair = n.substr(0, 2) + "\\" + n;
        const std::string part = "parts\\" + pair;
        if (exists(pair) || exists(startDirectory + pair) || exists(part) || exists(startDirectory + part) ||
            exists("..\\" + part) || exists("..\\..\\" + part) || exists("..\\..\\..\\" + part)) {
            return true;
        }
        if (!d.empty() && (exists(d + n) || exists(d + pair) || exists(d + part))) {
            return true;
        }
    } else if (!d.empty() && exists(d + n)) {
        return true;
    }
    path = n;
    return false;
}

}  // namespace quelmark

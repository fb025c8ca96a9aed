#include "reader/transform.h"

#include "reader/report.h"
#include "reader/scanner.h"

namespace quelmark {
namespace {

bool ReadNumbers(std::span<double> numbers) {
    ShapeNext();
    if (!ShapeNumbers(numbers)) {
        if (Shape.token != TOKEN_END) {
            ScannerReport(SCANNER_TRANSFORM);
        }
        return false;
    }
    return true;
}

bool ReadTriple(Matrix& matrix, bool move) {
    double numbers[3];
    if (!ReadNumbers(numbers)) {
        return false;
    }
    Matrix step = UNIT_MATRIX;
    for (int i = 0; i < 3; ++i) {
        step.row[move ? 3 : i][i] = static_cast<float>(numbers[i]);
    }
    matrix = MatrixProduct(matrix, step);
    return true;
}

bool ReadRotation(Matrix& matrix, int axis) {
    double degrees[1];
    if (!ReadNumbers(degrees)) {
        return false;
    }
    matrix = MatrixProduct(matrix, MatrixRotation(axis, degrees[0]));
    return true;
}

bool ReadMatrix(Matrix& matrix) {
    double numbers[16];
    if (!ReadNumbers(numbers)) {
        return false;
    }
    Matrix step;
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 3; ++column) {
            step.row[row][column] = static_cast<float>(numbers[row * 4 + column]);
        }
    }
    matrix = MatrixProduct(matrix, step);
    return true;
}

}  // namespace

bool ReadTransforms(Matrix& matrix) {
    for (;;) {
        bool good = true;
        switch (Shape.token) {
            case WORD_MOV:
                good = ReadTriple(matrix, true);
                break;
            case WORD_SCAL:
                good = ReadTriple(matrix, false);
                break;
            case WORD_ROTX:
            case WORD_ROTY:
            case WORD_ROTZ:
                good = ReadRotation(matrix, Shape.token - WORD_ROTX);
                break;
            case WORD_MAT:
                good = ReadMatrix(matrix);
                break;
            default:
                return true;
        }
        if (!good) {
            return false;
        }
    }
}

}  // namespace quelmark

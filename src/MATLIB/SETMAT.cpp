#include "MATLIB/SETMAT.h"

#include <cmath>
#include <string>

#include "ML/ERROR.h"
#include "ML/FUNC.h"
#include "ML/STRING.h"
#include "text/number.h"
#include "text/sjis.h"

namespace quelmark {

std::int32_t MatrixClass = -1;

namespace {

constexpr double DEGREE = 0.017453292519943278;
constexpr double SINGULAR = 1e-64;

const Matrix& MatrixOf(const DataCell& cell) {
    Check(IsMatrix(cell), "buf[0] is a Matrix");
    return ObjectData<Matrix>(cell);
}

std::int32_t Construct(std::int32_t, std::int32_t argc, DataCell* argv) {
    Matrix matrix = UNIT_MATRIX;
    int row = 0;
    for (std::int32_t at = 0; at < argc; ++row) {
        Vector vector{};
        const int taken = row < 4 ? ReadThreeComponents(argc - at, argv + at, vector) : 0;
        if (taken == 0) {
            RuntimeError("%s", "Matrix: 引数の型が不正です。"_sjis);
        }
        matrix.row[row][0] = vector.x;
        matrix.row[row][1] = vector.y;
        matrix.row[row][2] = vector.z;
        at += taken;
    }
    StackPushMatrix(matrix);
    return RESULT;
}

std::int32_t ToString(std::int32_t ident, std::int32_t argc, DataCell* argv) {
    if (argc > 1) {
        return CallInherited(MatrixClass, ident, argc, argv);
    }
    std::string text;
    for (const auto& row : MatrixOf(argv[0]).row) {
        for (const float element : row) {
            char buffer[64];
            text.append(buffer, static_cast<std::size_t>(FormatReal(buffer, sizeof buffer, " %10.4f",
                                                                    static_cast<double>(element))));
        }
        text += '\n';
    }
    StackPushString(text);
    return RESULT;
}

std::int32_t Exchange(std::int32_t, std::int32_t, DataCell* argv) {
    Matrix exchange = UNIT_MATRIX;
    const std::int32_t i = argv[1].integer;
    const std::int32_t j = argv[2].integer;
    if (0 <= i && i <= 2 && 0 <= j && j <= 2) {
        exchange.row[i][i] = 0;
        exchange.row[j][j] = 0;
        exchange.row[i][j] = 1;
        exchange.row[j][i] = 1;
    }
    StackPushMatrix(MatrixProduct(exchange, MatrixOf(argv[0])));
    return RESULT;
}

std::int32_t Rotate(std::int32_t, std::int32_t, DataCell* argv) {
    StackPushMatrix(MatrixProduct(MatrixRotation(argv[1].integer, CellNumber(argv[2])), MatrixOf(argv[0])));
    return RESULT;
}

// The three components behind the matrix, for "move" and "scale", which share their message.
Vector ComponentsOf(std::int32_t argc, const DataCell* argv) {
    Vector vector{};
    const int taken = ReadThreeComponents(argc - 1, argv + 1, vector);
    if (taken == 0 || taken != argc - 1) {
        RuntimeError("%s", "move: 引数の型が不正です。"_sjis);
    }
    return vector;
}

std::int32_t Move(std::int32_t, std::int32_t argc, DataCell* argv) {
    const Vector vector = ComponentsOf(argc, argv);
    Matrix translation = UNIT_MATRIX;
    translation.row[3][0] = vector.x;
    translation.row[3][1] = vector.y;
    translation.row[3][2] = vector.z;
    StackPushMatrix(MatrixProduct(translation, MatrixOf(argv[0])));
    return RESULT;
}

Matrix Scaling(const Vector& factors) {
    Matrix matrix = UNIT_MATRIX;
    matrix.row[0][0] = factors.x;
    matrix.row[1][1] = factors.y;
    matrix.row[2][2] = factors.z;
    return matrix;
}

std::int32_t Scale(std::int32_t, std::int32_t argc, DataCell* argv) {
    StackPushMatrix(MatrixProduct(Scaling(ComponentsOf(argc, argv)), MatrixOf(argv[0])));
    return RESULT;
}

struct Point {
    double x, y, z;
};
Point Cross(const Point& a, const Point& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
double Length(const Point& a) {
    return std::sqrt(a.x * a.x + a.y * a.y + a.z * a.z);
}
Point Unit(const Point& a) {
    const double length = Length(a);
    return length > 0 ? Point{a.x / length, a.y / length, a.z / length} : a;
}

// Rodrigues' rotation about a unit axis, for row vectors.
Matrix RotationAbout(const Point& axis, double cosine, double sine) {
    const double n[3] = {axis.x, axis.y, axis.z};
    const double skew[3][3] = {{0, n[2], -n[1]}, {-n[2], 0, n[0]}, {n[1], -n[0], 0}};
    Matrix matrix = UNIT_MATRIX;
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            matrix.row[i][j] =
                static_cast<float>((i == j ? cosine : 0) + (1 - cosine) * n[i] * n[j] + sine * skew[i][j]);
        }
    }
    return matrix;
}

// The rotation that carries direction a to direction b.
Matrix RotationBetween(const Vector& from, const Vector& to) {
    const Point a =
        Unit({static_cast<double>(from.x), static_cast<double>(from.y), static_cast<double>(from.z)});
    const Point b = Unit({static_cast<double>(to.x), static_cast<double>(to.y), static_cast<double>(to.z)});
    if (!(Length(a) > 0) || !(Length(b) > 0)) {
        return UNIT_MATRIX;
    }
    const double cosine = a.x * b.x + a.y * b.y + a.z * b.z;
    Point axis = Cross(a, b);
    const double sine = Length(axis);
    if (sine > 1e-12) {
        return RotationAbout(Unit(axis), cosine, sine);
    }
    if (cosine > 0) {
        return UNIT_MATRIX;
    }
    axis = Unit(Cross(a, std::fabs(a.x) < 0.9 ? Point{1, 0, 0} : Point{0, 1, 0}));
    return RotationAbout(axis, -1, 0);
}

std::int32_t FromVectors(std::int32_t, std::int32_t argc, DataCell* argv) {
    Vector from{};
    Vector to{};
    const int first = ReadThreeComponents(argc - 1, argv + 1, from);
    const int second = first == 0 ? 0 : ReadThreeComponents(argc - 1 - first, argv + 1 + first, to);
    if (second == 0 || first + second != argc - 1) {
        RuntimeError("%s", "vec: 引数の型が不正です。"_sjis);
    }
    StackPushMatrix(MatrixProduct(RotationBetween(from, to), MatrixOf(argv[0])));
    return RESULT;
}

Vector RowOf(const Matrix& matrix, int row) {
    return {matrix.row[row][0], matrix.row[row][1], matrix.row[row][2]};
}

std::int32_t GetVector(std::int32_t, std::int32_t, DataCell* argv) {
    const Matrix matrix = MatrixOf(argv[0]);
    if (argv[1].type == TYPE_INT) {
        const std::int32_t row = argv[1].integer;
        if (row < 0 || row > 3) {
            StackPushBool(0);
        } else {
            StackPushVector(RowOf(matrix, row));
        }
        return RESULT;
    }
    if (ArrayCount(argv[1]) < 4) {
        RuntimeError("%s", "引数の配列の要素数が足りません。(getvector)"_sjis);
    }
    for (int row = 0; row < 4; ++row) {
        StackPushVector(RowOf(matrix, row));
        CellAssign(ArrayElements(argv[1])[row], *StackTop());
        StackPop();
    }
    return NO_RESULT;
}

std::int32_t Multiply(std::int32_t, std::int32_t, DataCell* argv) {
    const Matrix& left = MatrixOf(argv[0]);
    if (IsMatrix(argv[1])) {
        StackPushMatrix(MatrixProduct(left, ObjectData<Matrix>(argv[1])));
    } else if ((argv[1].type & TYPE_NUMBER) != 0) {
        const auto factor = static_cast<float>(CellNumber(argv[1]));
        StackPushMatrix(MatrixProduct(Scaling({factor, factor, factor}), left));
    } else {
        RuntimeError("%s", "型が不正です。（演算子*）"_sjis);
    }
    return RESULT;
}

std::int32_t Divide(std::int32_t, std::int32_t, DataCell* argv) {
    if (!IsMatrix(argv[1])) {
        RuntimeError("%s", "型が不正です。（演算子/）"_sjis);
    }
    StackPushMatrix(MatrixProduct(MatrixOf(argv[0]), MatrixInverse(ObjectData<Matrix>(argv[1]))));
    return RESULT;
}

// With anything but a matrix on the right the expression is that right operand.
std::int32_t AddOrSubtract(std::int32_t code, std::int32_t, DataCell* argv) {
    if (!IsMatrix(argv[1])) {
        return RESULT;
    }
    Matrix sum = MatrixOf(argv[0]);
    const Matrix& right = ObjectData<Matrix>(argv[1]);
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 3; ++j) {
            sum.row[i][j] += code == OP_ADD ? right.row[i][j] : -right.row[i][j];
        }
    }
    StackPushMatrix(sum);
    return RESULT;
}

std::int32_t Equal(std::int32_t code, std::int32_t, DataCell* argv) {
    if (!IsMatrix(argv[1])) {
        return NO_RESULT;
    }
    const Matrix& left = MatrixOf(argv[0]);
    const Matrix& right = ObjectData<Matrix>(argv[1]);
    bool equal = true;
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 3; ++j) {
            equal = equal && left.row[i][j] == right.row[i][j];
        }
    }
    StackPushBool(equal == (code == OP_EQUAL));
    return RESULT;
}

constexpr BuiltIn FUNCTIONS[] = {
    {"", "Matrix", Construct},
    {"Matrix", "tostring", ToString},
    {"Matrix", "axis", Exchange, Takes("axis", {TYPE_OBJECT, TYPE_INT, TYPE_INT})},
    {"Matrix", "rot", Rotate, Takes("rot", {TYPE_OBJECT, TYPE_INT, TYPE_NUMBER})},
    {"Matrix", "move", Move},
    {"Matrix", "scale", Scale},
    {"Matrix", "vec", FromVectors},
    {"Matrix", "getvector", GetVector, Takes("getvector", {TYPE_OBJECT, TYPE_INT | TYPE_ARRAY})},
};
constexpr BuiltInOperator OPERATORS[] = {
    {"Matrix", OP_MULTIPLY, Multiply},      {"Matrix", OP_DIVIDE, Divide}, {"Matrix", OP_ADD, AddOrSubtract},
    {"Matrix", OP_SUBTRACT, AddOrSubtract}, {"Matrix", OP_EQUAL, Equal},   {"Matrix", OP_NOT_EQUAL, Equal},
};

// With its sign, as the indices go round.
float Cofactor(const Matrix& m, int i, int j) {
    const int i1 = (i + 1) % 3, i2 = (i + 2) % 3, j1 = (j + 1) % 3, j2 = (j + 2) % 3;
    return m.row[i1][j1] * m.row[i2][j2] - m.row[i1][j2] * m.row[i2][j1];
}

float Determinant(const Matrix& m) {
    return m.row[0][0] * Cofactor(m, 0, 0) + m.row[0][1] * Cofactor(m, 0, 1) +
           m.row[0][2] * Cofactor(m, 0, 2);
}

}  // namespace

void MatrixRegister() {
    MatrixClass = ClassRegister("Matrix", 0);
    RegisterBuiltIns(FUNCTIONS);
    RegisterOperators(OPERATORS);
    ObjectBlock* unit = ObjectAlloc(sizeof(Matrix), MatrixClass);
    *reinterpret_cast<Matrix*>(unit->Data()) = UNIT_MATRIX;
    ConstRegister("UNIT_MATRIX", ObjectCell(unit));
    ConstRegister("AXISX", IntCell(0));
    ConstRegister("AXISY", IntCell(1));
    ConstRegister("AXISZ", IntCell(2));
}

bool IsMatrix(const DataCell& cell) {
    return IsInstance(cell, MatrixClass);
}

void StackPushMatrix(const Matrix& matrix) {
    ObjectBlock* block = ObjectAlloc(sizeof(Matrix), MatrixClass);
    *reinterpret_cast<Matrix*>(block->Data()) = matrix;
    StackPushObject(block);
}

Matrix MatrixProduct(const Matrix& a, const Matrix& b) {
    Matrix product;
    for (int i = 0; i < 4; ++i) {
        const float x = a.row[i][0], y = a.row[i][1], z = a.row[i][2];
        for (int j = 0; j < 3; ++j) {
            product.row[i][j] =
                x * b.row[0][j] + y * b.row[1][j] + z * b.row[2][j] + (i == 3 ? b.row[3][j] : 0.0F);
        }
    }
    return product;
}

bool MatrixIsSingular(const Matrix& matrix) {
    return std::fabs(static_cast<double>(Determinant(matrix))) <= SINGULAR;
}

Matrix MatrixInverse(const Matrix& m) {
    if (MatrixIsSingular(m)) {
        return m;
    }
    const float determinant = Determinant(m);
    Matrix inverse;
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            inverse.row[i][j] = Cofactor(m, j, i) / determinant;
        }
    }
    for (int j = 0; j < 3; ++j) {
        inverse.row[3][j] = -(m.row[3][0] * inverse.row[0][j] + m.row[3][1] * inverse.row[1][j] +
                              m.row[3][2] * inverse.row[2][j]);
    }
    return inverse;
}

Matrix MatrixRotation(int axis, double degrees) {
    Matrix matrix = UNIT_MATRIX;
    if (axis < 0 || axis > 2) {
        return matrix;
    }
    const auto cosine = static_cast<float>(std::cos(degrees * DEGREE));
    const auto sine = static_cast<float>(std::sin(degrees * DEGREE));
    const int u = (axis + 1) % 3;
    const int v = (axis + 2) % 3;
    matrix.row[u][u] = cosine;
    matrix.row[u][v] = sine;
    matrix.row[v][u] = -sine;
    matrix.row[v][v] = cosine;
    return matrix;
}

Vector MatrixApply(const Vector& p, const Matrix& m) {
    return {p.x * m.row[0][0] + p.y * m.row[1][0] + p.z * m.row[2][0] + m.row[3][0],
            p.x * m.row[0][1] + p.y * m.row[1][1] + p.z * m.row[2][1] + m.row[3][1],
            p.x * m.row[0][2] + p.y * m.row[1][2] + p.z * m.row[2][2] + m.row[3][2]};
}

FixedMatrix MatrixToFixed(const Matrix& matrix) {
    FixedMatrix fixed{};
    for (int j = 0; j < 3; ++j) {
        for (int i = 0; i < 3; ++i) {
            fixed.element[i][j] = RealToInt(std::nearbyint(static_cast<double>(matrix.row[i][j]) * 65536.0));
        }
        const double whole = std::floor(static_cast<double>(matrix.row[3][j]));
        fixed.translation[j] = RealToInt(whole);
        fixed.fraction[j] = RealToInt((static_cast<double>(matrix.row[3][j]) - whole) * 65536.0);
    }
    return fixed;
}

}  // namespace quelmark

#include "MATLIB/SETVEC.h"

#include <cmath>
#include <string>

#include "MATLIB/SETMAT.h"
#include "ML/ERROR.h"
#include "ML/FUNC.h"
#include "ML/STRING.h"
#include "text/number.h"
#include "text/sjis.h"

namespace quelmark {

std::int32_t VectorClass = -1;

namespace {

const Vector& VectorOf(const DataCell& cell) {
    Check(IsVector(cell), "buf[0] is a Vector");
    return ObjectData<Vector>(cell);
}

double LengthOf(const Vector& v) {
    const double x = static_cast<double>(v.x), y = static_cast<double>(v.y), z = static_cast<double>(v.z);
    return std::sqrt(x * x + y * y + z * z);
}

std::int32_t Construct(std::int32_t, std::int32_t argc, DataCell* argv) {
    Vector vector{};
    const int taken = ReadThreeComponents(argc, argv, vector);
    if (taken == 0 || taken != argc) {
        RuntimeError("%s", "引数の型が不正です。(Vector:vector)"_sjis);
    }
    StackPushVector(vector);
    return RESULT;
}

std::int32_t ToString(std::int32_t ident, std::int32_t argc, DataCell* argv) {
    if (argc > 1) {
        return CallInherited(VectorClass, ident, argc, argv);
    }
    const Vector& v = VectorOf(argv[0]);
    std::string text = "(";
    for (const float component : {v.x, v.y, v.z}) {
        char buffer[64];
        text += text.size() > 1 ? ", " : " ";
        text.append(buffer, static_cast<std::size_t>(
                                FormatReal(buffer, sizeof buffer, "%8.4f", static_cast<double>(component))));
    }
    text += " )";
    StackPushString(text);
    return RESULT;
}

std::int32_t UnitOf(std::int32_t, std::int32_t, DataCell* argv) {
    const Vector v = VectorOf(argv[0]);
    const double length = LengthOf(v);
    const auto scaled = [length](float component) {
        return length > 0 ? static_cast<float>(static_cast<double>(component) / length) : component;
    };
    StackPushVector({scaled(v.x), scaled(v.y), scaled(v.z)});
    return RESULT;
}

template <float Vector::*component>
std::int32_t ComponentOf(std::int32_t, std::int32_t, DataCell* argv) {
    StackPushReal(static_cast<double>(VectorOf(argv[0]).*component));
    return RESULT;
}

std::int32_t Elements(std::int32_t, std::int32_t, DataCell* argv) {
    if (ArrayCount(argv[1]) != 3) {
        RuntimeError("%s", "引数配列のサイズが不正です。(Vector:element)"_sjis);
    }
    const Vector v = VectorOf(argv[0]);
    DataCell* elements = ArrayElements(argv[1]);
    CellAssign(elements[0], RealCell(static_cast<double>(v.x)));
    CellAssign(elements[1], RealCell(static_cast<double>(v.y)));
    CellAssign(elements[2], RealCell(static_cast<double>(v.z)));
    return NO_RESULT;
}

std::int32_t Absolute(std::int32_t, std::int32_t, DataCell* argv) {
    StackPushReal(LengthOf(VectorOf(argv[0])));
    return RESULT;
}

std::int32_t Dot(std::int32_t, std::int32_t, DataCell* argv) {
    if (!IsVector(argv[1])) {
        RuntimeError("%s", "型が不正です。（演算子.）"_sjis);
    }
    const Vector& a = VectorOf(argv[0]);
    const Vector& b = VectorOf(argv[1]);
    StackPushReal(static_cast<double>(a.x) * static_cast<double>(b.x) +
                  static_cast<double>(a.y) * static_cast<double>(b.y) +
                  static_cast<double>(a.z) * static_cast<double>(b.z));
    return RESULT;
}

std::int32_t Multiply(std::int32_t, std::int32_t, DataCell* argv) {
    const Vector a = VectorOf(argv[0]);
    if (IsVector(argv[1])) {
        const Vector b = VectorOf(argv[1]);
        StackPushVector({a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x});
    } else if (IsMatrix(argv[1])) {
        StackPushVector(MatrixApply(a, ObjectData<Matrix>(argv[1])));
    } else if ((argv[1].type & TYPE_NUMBER) != 0) {
        const auto factor = static_cast<float>(CellNumber(argv[1]));
        StackPushVector({a.x * factor, a.y * factor, a.z * factor});
    } else {
        RuntimeError("%s", "型が不正です。（演算子*）"_sjis);
    }
    return RESULT;
}

std::int32_t AddOrSubtract(std::int32_t code, std::int32_t, DataCell* argv) {
    if (!IsVector(argv[1])) {
        RuntimeError("%s",
                     code == OP_ADD ? "型が不正です。（演算子+）"_sjis : "型が不正です。（演算子-）"_sjis);
    }
    const Vector& a = VectorOf(argv[0]);
    const Vector& b = VectorOf(argv[1]);
    if (code == OP_ADD) {
        StackPushVector({a.x + b.x, a.y + b.y, a.z + b.z});
    } else {
        StackPushVector({a.x - b.x, a.y - b.y, a.z - b.z});
    }
    return RESULT;
}

std::int32_t Negate(std::int32_t, std::int32_t, DataCell* argv) {
    const Vector v = VectorOf(argv[0]);
    StackPushVector({-v.x, -v.y, -v.z});
    return RESULT;
}

std::int32_t Equal(std::int32_t code, std::int32_t, DataCell* argv) {
    bool equal = false;
    if (IsVector(argv[1])) {
        const Vector& a = VectorOf(argv[0]);
        const Vector& b = VectorOf(argv[1]);
        equal = a.x == b.x && a.y == b.y && a.z == b.z;
    }
    StackPushBool(equal == (code == OP_EQUAL));
    return RESULT;
}

constexpr BuiltIn FUNCTIONS[] = {
    {"", "vector", Construct},
    {"Vector", "tostring", ToString},
    {"Vector", "unit", UnitOf, Takes("unit", {TYPE_OBJECT})},
    {"Vector", "vx", ComponentOf<&Vector::x>, Takes("vx", {TYPE_OBJECT})},
    {"Vector", "vy", ComponentOf<&Vector::y>, Takes("vy", {TYPE_OBJECT})},
    {"Vector", "vz", ComponentOf<&Vector::z>, Takes("vz", {TYPE_OBJECT})},
    {"Vector", "element", Elements, Takes("element", {TYPE_OBJECT, TYPE_ARRAY})},
    {"Vector", "abs", Absolute, Takes("abs", {TYPE_OBJECT})},
};
constexpr BuiltInOperator OPERATORS[] = {
    {"Vector", OP_DOT, Dot},           {"Vector", OP_MULTIPLY, Multiply},
    {"Vector", OP_ADD, AddOrSubtract}, {"Vector", OP_SUBTRACT, AddOrSubtract},
    {"Vector", OP_NEGATE, Negate},     {"Vector", OP_EQUAL, Equal},
    {"Vector", OP_NOT_EQUAL, Equal},
};

}  // namespace

void MatrixLibraryRegister() {
    MatrixRegister();
    VectorClass = ClassRegister("Vector", 0);
    RegisterBuiltIns(FUNCTIONS);
    RegisterOperators(OPERATORS);
}

bool IsVector(const DataCell& cell) {
    return IsInstance(cell, VectorClass);
}

void StackPushVector(const Vector& vector) {
    ObjectBlock* block = ObjectAlloc(sizeof(Vector), VectorClass);
    *reinterpret_cast<Vector*>(block->Data()) = vector;
    StackPushObject(block);
}

int ReadThreeComponents(std::int32_t argc, const DataCell* argv, Vector& result) {
    if (argc < 1) {
        return 0;
    }
    if (IsVector(argv[0])) {
        result = ObjectData<Vector>(argv[0]);
        return 1;
    }
    const bool array = argv[0].type == TYPE_ARRAY;
    if (array ? ArrayCount(argv[0]) < 3 : argc < 3) {
        return 0;
    }
    const DataCell* cells = array ? ArrayElements(argv[0]) : argv;
    for (int i = 0; i < 3; ++i) {
        if ((cells[i].type & TYPE_NUMBER) == 0) {
            return 0;
        }
    }
    result = {static_cast<float>(CellNumber(cells[0])), static_cast<float>(CellNumber(cells[1])),
              static_cast<float>(CellNumber(cells[2]))};
    return array ? 1 : 3;
}

}  // namespace quelmark

// The language as its manual reads: programs as trees, evaluated node by node. It shares nothing with the
// interpreter, so that both can only agree where both are right. Numbers, truth values, texts, arrays of
// fixed size, functions.
#pragma once

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>
#include <vector>

namespace quelmark::test::plain {

enum class Type { Int, Real, Boolean, Text };

struct Value {
    Type type = Type::Int;
    std::int64_t integer = 0;  // INT and BOOLEAN
    float real = 0;
    std::string text;
};
using Cell = std::optional<Value>;

struct Expression {
    enum Kind { Constant, Local, Global, Element, Unary, Binary, Call } kind = Constant;
    Value constant;
    int index = 0;  // of the variable, the array or the function
    std::string operation;
    std::vector<Expression> parts;
};

struct Statement {
    enum Kind {
        Assign,
        Update,
        Step,
        Print,
        Drop,
        If,
        While,
        Do,
        For,
        Block,
        Break,
        Continue,
        Return
    } kind = Block;
    int line = 0;
    std::string operation;
    std::vector<Expression> parts;  // target first, then values; of a loop its condition
    std::vector<Statement> body;    // of a `for`: start, step, body
};

struct Function {
    int parameters = 0;
    int locals = 0;
    Statement body;
};

struct Program {
    int globals = 0;
    int arrays = 0;
    int arraySize = 0;
    std::vector<Function> functions;
    std::vector<Statement> statements;
};

struct Failure {
    std::string message;
};
struct TooLong {};  // a program that computes more than a test should

inline Value Int(std::int64_t value) {
    return {Type::Int, static_cast<std::int32_t>(static_cast<std::uint64_t>(value)), 0, ""};
}
inline Value Real(float value) {
    return {Type::Real, 0, value, ""};
}
inline Value Boolean(std::int64_t value) {
    return {Type::Boolean, value, 0, ""};
}
inline Value Text(std::string text) {
    return {Type::Text, 0, 0, std::move(text)};
}

inline std::string TextOf(const Value& value) {
    char text[64];
    switch (value.type) {
        case Type::Int:
            return std::to_string(value.integer);
        case Type::Boolean:
            return value.integer != 0 ? "TRUE" : "FALSE";
        case Type::Real:
            if (std::isnan(value.real)) {
                throw TooLong{};  // its sign is the processor's
            }
            std::snprintf(text, sizeof text, "%f", static_cast<double>(value.real));
            return text;
        default:
            return value.text;
    }
}

template <class Number>
std::optional<bool> Compared(const std::string& operation, const Number& a, const Number& b) {
    if (operation == "<") return a < b;
    if (operation == ">") return a > b;
    if (operation == "<=") return a <= b;
    if (operation == ">=") return a >= b;
    if (operation == "==") return a == b;
    if (operation == "!=") return a != b;
    return std::nullopt;
}

inline Value OfBooleans(const std::string& operation, std::int64_t a, const Value& right) {
    if (right.type != Type::Boolean && right.type != Type::Int) {
        throw Failure{"論理演算の型が不正です。"};
    }
    const std::int64_t b = right.integer;
    if (operation == "&") return Boolean(a != 0 && b != 0 ? 1 : 0);
    if (operation == "|") return Boolean(a != 0 || b != 0 ? 1 : 0);
    if (operation == "^") return Boolean(a ^ b);
    if (operation == "==") return Boolean(a == b ? 1 : 0);
    if (operation == "!=") return Boolean(a != b ? 1 : 0);
    throw Failure{"論理演算の演算子が不正です。"};
}

inline std::int64_t Truncated(float value) {
    return value > -2147483904.0F && value < 2147483648.0F ? static_cast<std::int64_t>(value) : -2147483648LL;
}

inline Value OfInts(const std::string& operation, std::int64_t a, const Value& right) {
    if (right.type == Type::Text) {
        throw Failure{"整数演算の型が不正です。"};
    }
    const std::int64_t b = right.type == Type::Real ? Truncated(right.real) : right.integer;
    if (operation == "+") return Int(a + b);
    if (operation == "-") return Int(a - b);
    if (operation == "*") return Int(a * b);
    if (operation == "/") return Int(b == 0 ? a : a / b);
    if (operation == "%") return b == 0 ? throw Failure{"０で割りました。"} : Int(a % b);
    if (operation == "&") return Int(a & b);
    if (operation == "|") return Int(a | b);
    if (operation == "^") return Int(a ^ b);
    if (operation == "<<") return Int(a << (b & 31));
    if (operation == ">>") return Int(a >> (b & 31));
    return Boolean(*Compared(operation, a, b) ? 1 : 0);
}

inline Value OfReals(const std::string& operation, float a, const Value& right) {
    if (right.type == Type::Text) {
        throw Failure{"実数演算の型が不正です。"};
    }
    const float b = right.type == Type::Real ? right.real : static_cast<float>(right.integer);
    if (operation == "+") return Real(a + b);
    if (operation == "-") return Real(a - b);
    if (operation == "*") return Real(a * b);
    if (operation == "/") return Real(a / b);
    if (const auto truth = Compared(operation, a, b)) return Boolean(*truth ? 1 : 0);
    throw Failure{"実数演算の演算子が不正です。"};
}

inline Value OfTexts(const std::string& operation, const std::string& a, const Value& right) {
    if (operation == "+") {
        std::string sum = a + TextOf(right);
        return sum.size() > 4000 ? throw TooLong{} : Text(std::move(sum));
    }
    const auto truth = Compared(operation, a, right.text);
    if (!truth) throw Failure{"演算子が定義されていません。"};
    if (right.type != Type::Text) throw Failure{"比較演算の型が違います。(String)"};
    return Boolean(*truth ? 1 : 0);
}

inline Value BinaryOf(const std::string& operation, const Value& left, const Value& right) {
    switch (left.type) {
        case Type::Boolean:
            return OfBooleans(operation, left.integer, right);
        case Type::Int:
            return OfInts(operation, left.integer, right);
        case Type::Real:
            return OfReals(operation, left.real, right);
        default:
            return OfTexts(operation, left.text, right);
    }
}

inline Value UnaryOf(const std::string& operation, const Value& operand) {
    const bool isNot = operation == "!";
    switch (operand.type) {
        case Type::Boolean:
            return isNot ? Boolean(operand.integer == 0 ? 1 : 0)
                         : throw Failure{"論理演算の演算子が不正です。"};
        case Type::Int:
            if (isNot) return Int(operand.integer == 0 ? 1 : 0);
            return Int(operation == "-" ? -operand.integer : operand.integer + (operation == "++" ? 1 : -1));
        case Type::Real:
            if (isNot) throw Failure{"実数演算の演算子が不正です。"};
            return Real(operation == "-" ? -operand.real : operand.real + (operation == "++" ? 1.0F : -1.0F));
        default:
            if (isNot) return Int(static_cast<std::int64_t>(operand.text.size()));
            throw Failure{"演算子が定義されていません。"};
    }
}

// Runs a program; `printed` and, when an error ended it, "! test.qms:line:  Error …" behind it are the
// outcome.
class Evaluation {
  public:
    explicit Evaluation(const Program& program)
        : program_(program), globals_(static_cast<std::size_t>(program.globals)) {
        arrays_.assign(static_cast<std::size_t>(program.arrays),
                       std::vector<Cell>(static_cast<std::size_t>(program.arraySize)));
    }

    std::string Outcome() {
        try {
            for (const Statement& statement : program_.statements) {
                Run(statement);
            }
        } catch (const Failure& failure) {
            printed_ += "! test.qms:" + std::to_string(line_) + ":  Error " + failure.message;
        }
        return printed_;
    }

  private:
    enum class Status { Normal, Continue, Break, Return };

    void Count() {
        if (++steps_ > 20000) throw TooLong{};
    }

    Cell& Place(const Expression& target) {
        const auto index = static_cast<std::size_t>(target.index);
        if (target.kind == Expression::Local) return frame_[index];
        if (target.kind == Expression::Global) return globals_[index];
        const Value subscript = Evaluate(target.parts[0]);
        if (subscript.type != Type::Int && subscript.type != Type::Boolean) {
            throw Failure{"配列の添え字の型が不正です"};
        }
        if (subscript.integer < 0 || subscript.integer >= program_.arraySize) {
            throw Failure{"配列の添え字が不正です"};
        }
        return arrays_[index][static_cast<std::size_t>(subscript.integer)];
    }

    Value Read(const Cell& cell) {
        return cell ? *cell : throw Failure{"代入されていない変数を参照しました。"};
    }

    Value Evaluate(const Expression& expression) {
        Count();
        switch (expression.kind) {
            case Expression::Constant:
                return expression.constant;
            case Expression::Unary:
                return UnaryOf(expression.operation, Evaluate(expression.parts[0]));
            case Expression::Binary: {
                const Value left = Evaluate(expression.parts[0]);
                return BinaryOf(expression.operation, left, Evaluate(expression.parts[1]));
            }
            case Expression::Call:
                return Read(Call(expression));
            default:
                return Read(Place(expression));
        }
    }

    Cell Call(const Expression& call) {
        const Function& function = program_.functions[static_cast<std::size_t>(call.index)];
        std::vector<Cell> frame;
        for (const Expression& argument : call.parts) {
            frame.push_back(Evaluate(argument));
        }
        frame.resize(std::max(frame.size(), static_cast<std::size_t>(function.locals)));
        if (++depth_ > 40) throw TooLong{};
        const int line = line_;
        frame.swap(frame_);
        result_.reset();
        Run(function.body);
        Cell result;
        result.swap(result_);
        frame.swap(frame_);
        line_ = line;
        --depth_;
        return result;
    }

    bool IsTrue(const Statement& statement) {
        line_ = statement.line;
        const Value value = Evaluate(statement.parts[0]);
        if (value.type != Type::Int && value.type != Type::Boolean) {
            throw Failure{"条件式が不正です"};
        }
        return value.integer != 0;
    }

    // The body of a loop; true when the loop ends.
    bool Turn(const Statement& body, Status& status) {
        status = Run(body);
        if (status == Status::Return) return true;
        const bool ends = status == Status::Break;
        status = Status::Normal;
        return ends;
    }

    Status RunLoop(const Statement& loop) {
        Status status = Status::Normal;
        const Statement& body = loop.body.back();
        if (loop.kind == Statement::For) Run(loop.body[0]);
        if (loop.kind == Statement::Do && Turn(body, status)) return status;
        while (IsTrue(loop) && !Turn(body, status)) {
            if (loop.kind == Statement::For) {
                Statement step = loop.body[1];
                step.line = loop.line;
                Run(step);
            }
        }
        return status;
    }

    Status RunAll(const std::vector<Statement>& statements) {
        for (const Statement& statement : statements) {
            const Status status = Run(statement);
            if (status != Status::Normal) return status;
        }
        return Status::Normal;
    }

    void Change(const Statement& statement) {
        Cell& place = Place(statement.parts[0]);
        if (statement.kind == Statement::Assign) {
            Value value = Evaluate(statement.parts[1]);
            place = std::move(value);
            return;
        }
        const Value before = Read(place);
        place = statement.kind == Statement::Step
                    ? UnaryOf(statement.operation, before)
                    : BinaryOf(statement.operation, before, Evaluate(statement.parts[1]));
    }

    Status Run(const Statement& statement) {
        Count();
        line_ = statement.line;
        switch (statement.kind) {
            case Statement::Print:
                printed_ += TextOf(Evaluate(statement.parts[0])) + ";";
                return Status::Normal;
            case Statement::Drop:
                Call(statement.parts[0]);
                return Status::Normal;
            case Statement::If:
                if (IsTrue(statement)) return Run(statement.body[0]);
                return statement.body.size() > 1 ? Run(statement.body[1]) : Status::Normal;
            case Statement::While:
            case Statement::Do:
            case Statement::For:
                return RunLoop(statement);
            case Statement::Block:
                return RunAll(statement.body);
            case Statement::Break:
                return Status::Break;
            case Statement::Continue:
                return Status::Continue;
            case Statement::Return:
                result_ = Evaluate(statement.parts[0]);
                return Status::Return;
            default:
                Change(statement);
                return Status::Normal;
        }
    }

    const Program& program_;
    std::vector<Cell> globals_;
    std::vector<std::vector<Cell>> arrays_;
    std::vector<Cell> frame_;
    Cell result_;
    std::string printed_;
    int line_ = 0;
    int steps_ = 0;
    int depth_ = 0;
};

}  // namespace quelmark::test::plain

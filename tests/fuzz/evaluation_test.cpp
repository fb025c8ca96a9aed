// Random programs that mean something: what the interpreter prints, and the message and the line that end a
// program, are what a plain walk over the program's tree gives.
#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "plain_evaluation.h"
#include "script_fixture.h"

namespace quelmark::test {
namespace {

using plain::Expression;
using plain::Function;
using plain::Program;
using plain::Statement;
using plain::Type;
using plain::Value;

constexpr int GLOBALS = 8;
constexpr int ARRAYS = 2;
constexpr int ARRAY_SIZE = 4;
constexpr int LOCALS = 8;  // the type of a variable, mostly: its number modulo 4

// Writes a program as text and as a tree at once.
class Generator {
  public:
    explicit Generator(unsigned seed) : random_(seed), careless_(seed % 4) {}

    Program program;
    std::string source;

    void Generate() {
        program.globals = GLOBALS;
        program.arrays = ARRAYS;
        program.arraySize = ARRAY_SIZE;
        Write("var g0, g1, g2, g3, g4, g5, g6, g7, a0[4], a1[4];\n");
        for (int global = 0; global < GLOBALS; ++global) {
            Define(Expression::Global, global, TypeOf(global));
        }
        for (int element = 0; element < ARRAYS * ARRAY_SIZE; ++element) {
            Define(Expression::Element, element, Type::Int);
        }
        for (int part = 0; part < 12; ++part) {
            if (part % 3 == 0) {
                AddFunction();
            } else {
                program.statements.push_back(AnyStatement(0));
            }
        }
    }

  private:
    int Below(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }
    bool Chance(int percent) { return Below(100) < percent; }
    bool Slip() { return careless_ != 0 && Below(100 * 4) < careless_; }

    void Write(const std::string& text) {
        source += text;
        line_ += static_cast<int>(std::count(text.begin(), text.end(), '\n'));
    }
    void Gap() { Write(Chance(95) ? " " : Chance(50) ? "\n" : " /* two\nlines */ "); }

    static Type TypeOf(int variable) {
        constexpr Type TYPES[] = {Type::Int, Type::Int, Type::Real, Type::Text};
        return TYPES[variable % 4];
    }
    Type AnyType() {
        constexpr Type TYPES[] = {Type::Int, Type::Int, Type::Int, Type::Real, Type::Boolean, Type::Text};
        return TYPES[Below(6)];
    }

    Statement Begin(Statement::Kind kind) {
        Statement statement;
        statement.kind = kind;
        statement.line = line_;
        return statement;
    }

    // ---- expressions: each is written as it is made ----

    Expression Constant(Type type) {
        Expression constant;
        switch (type) {
            case Type::Int: {
                constexpr std::int64_t NUMBERS[] = {0, 1, 2, 3, 5, 7, 31, 33, 100, 65536, 2147483647};
                constant.constant = plain::Int(NUMBERS[Below(11)]);
                break;
            }
            case Type::Real:
                constant.constant = plain::Real(static_cast<float>(Below(40)) / 4);
                break;
            case Type::Boolean:
                constant.constant = plain::Boolean(Below(2));
                break;
            default:
                constant.constant = plain::Text(std::string(static_cast<std::size_t>(Below(3)), 'x'));
        }
        Write(type == Type::Text ? "\"" + constant.constant.text + "\"" : TextOf(constant.constant));
        return constant;
    }

    Expression Variable(Type type) {
        Expression variable;
        variable.kind = inFunction_ && Chance(60) ? Expression::Local : Expression::Global;
        variable.index = Below(GLOBALS);
        while (TypeOf(variable.index) != type) {
            variable.index = Below(GLOBALS);
        }
        Write((variable.kind == Expression::Local ? "p" : "g") + std::to_string(variable.index));
        return variable;
    }

    Expression Element(int depth) {
        Expression element;
        element.kind = Expression::Element;
        element.index = Below(ARRAYS);
        Write("a" + std::to_string(element.index) + "[");
        if (Chance(50) || depth > 3) {
            Expression constant;
            constant.constant = plain::Int(Below(ARRAY_SIZE));
            Write(TextOf(constant.constant));
            element.parts.push_back(constant);
        } else if (Slip()) {
            element.parts.push_back(AnyExpression(AnyType(), depth + 1));
        } else {
            element.parts.push_back(Combined("&", Type::Int, 3, depth));
        }
        Write("]");
        return element;
    }

    // (expression operation constant)
    Expression Combined(const std::string& operation, Type type, std::int64_t constant, int depth) {
        Expression combined;
        combined.kind = Expression::Binary;
        combined.operation = operation;
        Write("(");
        combined.parts.push_back(AnyExpression(type, depth + 1));
        Expression right;
        right.constant = plain::Int(constant);
        combined.parts.push_back(right);
        Write(" " + operation + " " + std::to_string(constant) + ")");
        return combined;
    }

    Expression Unary(Type type, int depth) {
        Expression unary;
        unary.kind = Expression::Unary;
        unary.operation = type == Type::Boolean || (type == Type::Int && Chance(30)) ? "!" : "-";
        Write("(" + unary.operation + " ");
        unary.parts.push_back(AnyExpression(
            unary.operation == "!" && type == Type::Int && Chance(40) ? Type::Text : type, depth + 1));
        Write(")");
        return unary;
    }

    Expression Binary(Type type, int depth) {
        static const std::vector<std::string> INT = {"+", "-", "*", "/", "&", "|", "^", "<<", ">>"};
        static const std::vector<std::string> REAL = {"+", "-", "*", "/"};
        static const std::vector<std::string> TRUTH = {"<", ">", "<=", ">=", "==", "!="};
        static const std::vector<std::string> BOOLEAN = {"&", "|", "^", "==", "!="};
        const auto one = [this](const auto& list) { return list[random_() % list.size()]; };
        Expression binary;
        binary.kind = Expression::Binary;
        Type left = type, right = type;
        if (type == Type::Boolean && Chance(60)) {
            left = Chance(70) ? Type::Int : Chance(50) ? Type::Real : Type::Text;
            right = left == Type::Int && Chance(20) ? Type::Real : left;
            binary.operation = one(TRUTH);
        } else {
            binary.operation = type == Type::Text   ? "+"
                               : type == Type::Int  ? one(INT)
                               : type == Type::Real ? one(REAL)
                                                    : one(BOOLEAN);
            if (Chance(25) && type != Type::Boolean) {
                right = type == Type::Text ? AnyType() : Chance(50) ? Type::Real : Type::Int;
            }
        }
        Write("(");
        binary.parts.push_back(AnyExpression(left, depth + 1));
        Gap();
        Write(binary.operation);
        Gap();
        binary.parts.push_back(AnyExpression(Slip() ? AnyType() : right, depth + 1));
        Write(")");
        return binary;
    }

    // The function of number n answers the type of variable n, and takes an INT and a value of that type.
    Expression Call(int function, int depth) {
        Expression call;
        call.kind = Expression::Call;
        call.index = function;
        Write("f" + std::to_string(function) + "(");
        if (!Slip()) {
            call.parts.push_back(AnyExpression(Type::Int, depth + 1));
            Write(",");
            Gap();
            call.parts.push_back(AnyExpression(TypeOf(function), depth + 1));
            if (Slip()) {
                Write(", ");
                call.parts.push_back(AnyExpression(AnyType(), depth + 1));
            }
        }
        Write(")");
        return call;
    }

    Expression AnyExpression(Type type, int depth) {
        if (Slip()) {
            type = AnyType();
        }
        if (depth > 3 || Chance(20)) {
            return type != Type::Boolean && Chance(70) ? Variable(type) : Constant(type);
        }
        if (type == Type::Int && Chance(20)) {
            return Element(depth);
        }
        if (type == Type::Int && Chance(10)) {
            return Combined("%", Type::Int, 1 + Below(9), depth);
        }
        const int functions = static_cast<int>(program.functions.size()) - (inFunction_ ? 1 : 0);
        if (functions > 0 && Chance(20)) {
            const int function = Below(functions);
            if (TypeOf(function) == type) {
                return Call(function, depth);
            }
        }
        return Chance(10) && type != Type::Text ? Unary(type, depth) : Binary(type, depth);
    }

    // ---- statements ----

    void Define(Expression::Kind kind, int index, Type type) {
        if (Slip()) {
            return;
        }
        Statement define = Begin(Statement::Assign);
        Expression target;
        target.kind = kind;
        target.index = index;
        if (kind == Expression::Element) {
            target.index = index / ARRAY_SIZE;
            Expression subscript;
            subscript.constant = plain::Int(index % ARRAY_SIZE);
            target.parts.push_back(subscript);
            Write("a" + std::to_string(target.index) + "[" + std::to_string(index % ARRAY_SIZE) + "] = ");
        } else {
            Write((kind == Expression::Local ? "p" : "g") + std::to_string(index) + " = ");
        }
        define.parts = {target, Constant(type)};
        Write(";\n");
        (block_ != nullptr ? *block_ : program.statements).push_back(define);
    }

    // function fN(p0, pN): its other variables are locals, and it calls the functions before it.
    void AddFunction() {
        const auto number = static_cast<int>(program.functions.size());
        const Type type = TypeOf(number);
        const int second = type == Type::Int ? 1 : number % 4;
        inFunction_ = true;
        program.functions.push_back({2, LOCALS, {}});
        Write("function f" + std::to_string(number) + "(p0, p" + std::to_string(second) + ")\n");
        Statement body = Begin(Statement::Block);
        Write("{ var");
        // The tree names locals by their number, the frame holds them in the order of their declaration.
        order_ = {0, second};
        for (int local = 1; local < LOCALS; ++local) {
            if (local != second) {
                Write(std::string(order_.size() > 2 ? "," : "") + " p" + std::to_string(local));
                order_.push_back(local);
            }
        }
        Write(";\n");
        block_ = &body.body;
        for (int local = 1; local < LOCALS; ++local) {
            if (local != second) {
                Define(Expression::Local, local, TypeOf(local));
            }
        }
        block_ = nullptr;
        for (int statement = Below(4); statement >= 0; --statement) {
            body.body.push_back(AnyStatement(1));
        }
        body.body.push_back(ReturnOf(type));
        Write("}\n");
        program.functions.back().body = Renumbered(body);
        inFunction_ = false;
    }

    Statement ReturnOf(Type type) {
        Statement statement = Begin(Statement::Return);
        Write("return ");
        statement.parts.push_back(AnyExpression(type, 0));
        Write(";\n");
        return statement;
    }

    // Locals by their place in the frame.
    Expression Renumbered(Expression expression) const {
        if (expression.kind == Expression::Local) {
            const auto at = std::find(order_.begin(), order_.end(), expression.index);
            expression.index = static_cast<int>(at - order_.begin());
        }
        for (Expression& part : expression.parts) {
            part = Renumbered(part);
        }
        return expression;
    }
    Statement Renumbered(Statement statement) const {
        for (Expression& part : statement.parts) {
            part = Renumbered(part);
        }
        for (Statement& inner : statement.body) {
            inner = Renumbered(inner);
        }
        return statement;
    }

    Statement Change() {
        const Type type = Chance(70) ? Type::Int : Chance(50) ? Type::Real : Type::Text;
        Statement change = Begin(Statement::Assign);
        change.parts.push_back(type == Type::Int && Chance(40) ? Element(1) : Variable(type));
        if (Chance(20) && type != Type::Text) {
            change.kind = Statement::Step;
            change.operation = Chance(50) ? "++" : "--";
            Write(change.operation + ";\n");
            return change;
        }
        if (Chance(35)) {
            static const char* const OPERATIONS[] = {"+", "-", "*", "/", "&", "|"};
            change.kind = Statement::Update;
            change.operation = type == Type::Text ? "+" : OPERATIONS[Below(type == Type::Int ? 6 : 4)];
            Gap();
            Write(change.operation + "=");
        } else {
            Gap();
            Write("=");
        }
        Gap();
        change.parts.push_back(AnyExpression(type, 0));
        Write(";\n");
        return change;
    }

    Statement Block(int depth) {
        Statement block = Begin(Statement::Block);
        Write("{\n");
        for (int statement = Below(3); statement >= 0; --statement) {
            block.body.push_back(AnyStatement(depth + 1));
        }
        Write("}\n");
        return block;
    }

    Statement If(int depth) {
        Statement choice = Begin(Statement::If);
        Write("if (");
        choice.parts.push_back(AnyExpression(Chance(80) ? Type::Boolean : Type::Int, 1));
        Write(")");
        Gap();
        choice.body.push_back(Block(depth));
        if (Chance(50)) {
            Write("else");
            Gap();
            choice.body.push_back(Block(depth));
        }
        return choice;
    }

    // for (gN = 0; gN < limit; gN++): the body may change gN, so that the number of turns is a matter of
    // chance.
    Statement For(int depth) {
        Statement loop = Begin(Statement::For);
        Write("for (");
        Gap();
        Statement start = Begin(Statement::Assign);
        const std::size_t at = source.size();
        const Expression counter = Variable(Type::Int);
        const std::string name = source.substr(at);
        Write(" = 0;");
        start.parts = {counter, Expression{}};
        Gap();
        Expression condition;
        condition.kind = Expression::Binary;
        condition.operation = Chance(50) ? "<" : "<=";
        Write(name + " " + condition.operation + " ");
        condition.parts.push_back(counter);
        if (Chance(70)) {
            condition.parts.push_back(Number(Below(5)));
            Write(TextOf(condition.parts[1].constant));
        } else {
            condition.parts.push_back(Variable(Type::Int));
        }
        Write("; ");
        Statement step = Begin(Chance(60) ? Statement::Step : Statement::Update);
        step.operation = step.kind == Statement::Step ? "++" : "+";
        step.parts = {counter};
        Write(name + (step.kind == Statement::Step ? "++" : " += 2"));
        if (step.kind == Statement::Update) {
            step.parts.push_back(Number(2));
        }
        Write(")");
        Gap();
        loop.parts.push_back(condition);
        ++loops_;
        loop.body = {start, step, Block(depth)};
        --loops_;
        return loop;
    }

    static Expression Number(std::int64_t value) {
        Expression number;
        number.constant = plain::Int(value);
        return number;
    }

    Statement While(int depth) {
        Statement loop = Begin(Chance(50) ? Statement::While : Statement::Do);
        const bool isDo = loop.kind == Statement::Do;
        Write(isDo ? "do " : "while (");
        if (!isDo) {
            loop.parts.push_back(AnyExpression(Type::Boolean, 1));
            Write(")");
        }
        Gap();
        ++loops_;
        loop.body.push_back(Block(depth));
        --loops_;
        if (isDo) {
            Write("while (");
            loop.parts.push_back(AnyExpression(Type::Boolean, 1));
            Write(");\n");
        }
        return loop;
    }

    Statement Jump() {
        Statement jump = Begin(Chance(50) ? Statement::Break : Statement::Continue);
        Write(jump.kind == Statement::Break ? "break;\n" : "continue;\n");
        return jump;
    }

    Statement Print() {
        Statement print = Begin(Statement::Print);
        Write("print(tostring(");
        print.parts.push_back(AnyExpression(AnyType(), 0));
        Write(") + \";\");\n");
        return print;
    }

    Statement AnyStatement(int depth) {
        const int kind = Below(100);
        if (kind < 15 && depth < 3) {
            return If(depth);
        }
        if (kind < 25 && depth < 3 && loops_ < 2) {
            return For(depth);
        }
        if (kind < 30 && depth < 3 && loops_ < 2) {
            return While(depth);
        }
        if (kind < 35 && loops_ > 0) {
            return Jump();
        }
        if (kind < 38 && inFunction_) {
            return ReturnOf(TypeOf(static_cast<int>(program.functions.size()) - 1));
        }
        if (kind < 42 && program.functions.size() > (inFunction_ ? 1U : 0U)) {
            Statement drop = Begin(Statement::Drop);
            drop.parts.push_back(Call(0, 1));
            Write(";\n");
            return drop;
        }
        return kind < 60 ? Print() : Change();
    }

    std::mt19937 random_;
    int careless_;  // 0 to 3: how often a program does what ends in an error
    int line_ = 1;
    int loops_ = 0;
    bool inFunction_ = false;
    std::vector<int> order_;
    std::vector<Statement>* block_ = nullptr;
};

class RandomEvaluation : public ScriptTest {};

TEST_F(RandomEvaluation, IsThatOfAPlainWalkOverTheTree) {
    sizes = {.codeBytes = 1 << 17, .globals = 32, .functions = 32, .stackCells = 2000};
    int compared = 0, failed = 0, sameMessage = 0;
    for (unsigned seed = 1; seed <= 600; ++seed) {
        Generator generator(seed);
        generator.Generate();
        std::string expected;
        try {
            expected = plain::Evaluation(generator.program).Outcome();
        } catch (const plain::TooLong&) {
            continue;
        }
        ++compared;
        const std::string outcome = Run(generator.source);
        const std::size_t error = expected.find("Error ");
        failed += error != std::string::npos ? 1 : 0;
        ASSERT_EQ(outcome.substr(0, error), expected.substr(0, error)) << "seed " << seed << "\n"
                                                                       << generator.source;
        sameMessage += outcome == expected ? 1 : 0;
    }
    // Of two faults in one expression either may be reported.
    EXPECT_GE(sameMessage, compared - 5);
    // Most programs come to something, with and without an error.
    EXPECT_GT(compared, 300);
    EXPECT_GT(failed, 50);
    EXPECT_GT(compared - failed, 100);
}

}  // namespace
}  // namespace quelmark::test

// The same program must do the same whatever instruction forms the compiler finds for it: random expressions
// and loops are written with literals, with globals, with locals, with elements and through calls, and
// compared.
#include <random>
#include <string>
#include <vector>

#include "ML/STACK.h"
#include "script_fixture.h"

namespace quelmark::test {
namespace {

constexpr const char* LITERALS[] = {"0",     "1",          "2",           "7",     "-1",   "33",
                                    "65536", "2147483647", "-2147483648", "0.0",   "0.5",  "-2.5",
                                    "3.0",   "1e10",       "TRUE",        "FALSE", "\"\"", "\"ab\"",
                                    "\"7\"", "INT",        "0",           "1",     "3",    "5"};
constexpr const char* BINARY[] = {"+",  "-",  "*", "/", "%",  "&",  "|",  "^",
                                  "<<", ">>", "<", ">", "<=", ">=", "==", "!="};
constexpr const char* UNARY[] = {"-", "!"};

class Forms : public ScriptTest {
  protected:
    std::mt19937 random{20240607};

    template <std::size_t N>
    const char* Pick(const char* const (&from)[N]) {
        return from[random() % N];
    }

    // An expression in which operand number i stands as "{i}".
    std::string Expression(int depth, std::vector<std::string>& operands) {
        if (depth == 0 || random() % 4 == 0) {
            operands.push_back(Pick(LITERALS));
            return "{" + std::to_string(operands.size() - 1) + "}";
        }
        if (random() % 6 == 0) {
            return std::string(Pick(UNARY)) + "(" + Expression(depth - 1, operands) + ")";
        }
        const std::string left = Expression(depth - 1, operands);
        const std::string right = Expression(depth - 1, operands);
        return random() % 2 == 0 ? "(" + left + " " + Pick(BINARY) + " " + right + ")"
                                 : left + " " + Pick(BINARY) + " " + right;
    }

    static std::string Filled(std::string text, const std::vector<std::string>& names) {
        for (std::size_t i = 0; i < names.size(); ++i) {
            const std::string mark = "{" + std::to_string(i) + "}";
            for (std::size_t at = text.find(mark); at != std::string::npos; at = text.find(mark, at)) {
                text.replace(at, mark.size(), names[i]);
                at += names[i].size();
            }
        }
        return text;
    }

    static std::vector<std::string> Names(const std::string& before, const std::string& behind,
                                          std::size_t count) {
        std::vector<std::string> names;
        for (std::size_t i = 0; i < count; ++i) {
            names.push_back(before + std::to_string(i) + behind);
        }
        return names;
    }

    // All ways to write `body` (with operand marks).
    static std::vector<std::string> Ways(const std::string& body, const std::vector<std::string>& operands) {
        const std::size_t count = operands.size();
        std::string globals, locals, elements, parameters, arguments, mixed;
        for (std::size_t i = 0; i < count; ++i) {
            const std::string n = std::to_string(i);
            globals += "var g" + n + " = " + operands[i] + ";";
            locals += "var l" + n + " = " + operands[i] + ";";
            elements += "a[" + n + "] = " + operands[i] + ";";
            parameters += (i == 0 ? "l" : ", l") + n;
            arguments += (i == 0 ? "" : ", ") + operands[i];
        }
        const std::string size = std::to_string(count);
        std::vector<std::string> half = operands;
        for (std::size_t i = 0; i < count; i += 2) {
            half[i] = "l" + std::to_string(i);
        }
        const auto in = [](const std::string& text) { return "function f() {" + text + "} f();"; };
        return {
            "var r;" + Filled(body, operands),
            in("var r;" + Filled(body, operands)),
            globals + "var r;" + Filled(body, Names("g", "", count)),
            globals + in("var r;" + Filled(body, Names("g", "", count))),
            globals + "var r;" + in(Filled(body, Names("g", "", count))),
            in(locals + "var r;" + Filled(body, Names("l", "", count))),
            in(locals + "var r;" + Filled(body, half)),
            "var a[" + size + "];" + elements + "var r;" + Filled(body, Names("a[", "]", count)),
            "var a[" + size + "];" + elements + in("var r;" + Filled(body, Names("a[", "]", count))),
            in("var a[" + size + "];" + elements + "var r;" + Filled(body, Names("a[", "]", count))),
            "function id(x) { return x; }" +
                in("var r;" + Filled(body,
                                     [&] {
                                         std::vector<std::string> calls;
                                         for (const std::string& operand : operands) {
                                             calls.push_back("id(" + operand + ")");
                                         }
                                         return calls;
                                     }())),
            "function f(" + parameters + ") { var r;" + Filled(body, Names("l", "", count)) + "} f(" +
                arguments + ");",
            in("var l0 = " + (count > 0 ? operands[0] : "0") + ", z[3]; var r;" +
               Filled(body,
                      [&] {
                          std::vector<std::string> names = operands;
                          names[0] = "l0";
                          return names;
                      }())),
        };
    }

    void CheckAllWays(const std::string& body, const std::vector<std::string>& operands) {
        std::string first;
        bool isFirst = true;
        for (const std::string& way : Ways(body, operands)) {
            const std::string result = Run(way);
            InterpreterExit();
            ASSERT_EQ(ObjectCount, 0) << way;
            if (isFirst) {
                first = result;
                isFirst = false;
            }
            ASSERT_EQ(result, first) << body << "\n" << way;
        }
    }
};

TEST_F(Forms, ExpressionsAreTheSameHoweverTheirOperandsAreHeld) {
    for (int round = 0; round < 1500; ++round) {
        std::vector<std::string> operands;
        const std::string expression = Expression(1 + static_cast<int>(random() % 3), operands);
        CheckAllWays("print(" + expression + ");", operands);
        if (HasFatalFailure()) {
            return;
        }
    }
}

TEST_F(Forms, ConditionsJumpTheSame) {
    for (int round = 0; round < 500; ++round) {
        std::vector<std::string> operands;
        const std::string expression = Expression(1 + static_cast<int>(random() % 2), operands);
        CheckAllWays("r = 0; if (" + expression + ") print(1); else print(2); do r++; while (r < 3 & (" +
                         expression + " == 1)); print(r); while (" + expression +
                         ") { r = r + 1; if (r > 5) break; } print(r);",
                     operands);
        if (HasFatalFailure()) {
            return;
        }
    }
}

TEST_F(Forms, AssignmentsChangeTheSame) {
    constexpr const char* OPERATIONS[] = {"=", "+=", "-=", "*=", "/=", "&=", "|="};
    for (int round = 0; round < 700; ++round) {
        std::vector<std::string> operands;
        std::string body;
        const std::string start = Expression(0, operands);
        body = "r = " + start + "; print(r);";
        for (int step = 0; step < 3; ++step) {
            body += std::string("r ") + Pick(OPERATIONS) + " " +
                    Expression(1 + static_cast<int>(random() % 2), operands) + "; print(r);";
        }
        CheckAllWays(body, operands);
        if (HasFatalFailure()) {
            return;
        }
    }
}

TEST_F(Forms, LoopsTurnTheSame) {
    constexpr const char* COMPARES[] = {"<", ">", "<=", ">=", "!="};
    constexpr const char* STEPS[] = {"r++",      "r--",      "r += 2",      "r -= 3",
                                     "r += {2}", "r -= {2}", "r = r + {2}", "r += 1.5"};
    constexpr const char* STARTS[] = {"0", "9", "2147483640", "-2147483640", "0.5", "TRUE", "\"x\""};
    constexpr const char* LIMITS[] = {"5",   "0",     "2147483646", "-2147483647",
                                      "7.5", "FALSE", "\"y\"",      "100000"};
    constexpr const char* AMOUNTS[] = {"1", "2", "-1", "40000", "0.5", "TRUE"};
    for (int round = 0; round < 500; ++round) {
        const std::vector<std::string> operands = {Pick(STARTS), Pick(LIMITS), Pick(AMOUNTS)};
        const std::string step = Pick(STEPS);
        const std::string compare = Pick(COMPARES);
        CheckAllWays(
            "var n = 0; for (r = {0}; r " + compare + " {1}; " + step +
                ") { print(r); n++; if (n > 6) break; if (n == 3) continue; print(\";\"); } print(\"/\", r);",
            operands);
        if (HasFatalFailure()) {
            return;
        }
    }
}

}  // namespace
}  // namespace quelmark::test

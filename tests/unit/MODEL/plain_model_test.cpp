// Random scripts of polygons, selections, saved selections and tables, run by the store and by the plainest
// model that can be written down: a list of polygons. After every statement both must be the same.
#include <random>

#include "model_fixture.h"

namespace quelmark::test {
namespace {

struct PlainPolygon {
    int select, type, attr, obj;
    bool hidden;
    std::vector<std::array<int, 3>> vertices;

    bool operator==(const PlainPolygon&) const = default;
};
using Bits = std::vector<bool>;

class PlainModel : public ModelTest, public testing::WithParamInterface<std::uint32_t> {
  protected:
    std::mt19937 random{GetParam()};
    std::vector<PlainPolygon> polygons;
    int selected = 0;  // as the last selection counted
    int attributes = 4, objects = 4;
    std::array<bool, 4> edited{};
    Bits saved[2];            // what the script's `s` and `t` hold, up to their last word
    std::size_t counts[2]{};  // polygons that they describe

    int Number(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random); }
    bool Maybe() { return Number(0, 1) == 1; }
    static std::string Text(std::initializer_list<int> numbers) {
        std::string text;
        for (const int number : numbers) {
            text += (text.empty() ? "" : ", ") + std::to_string(number);
        }
        return text;
    }
    void Mark(int object) {
        if (0 <= object && object < static_cast<int>(edited.size())) {
            edited[static_cast<std::size_t>(object)] = true;
        }
    }
    int Selected() const {
        return static_cast<int>(std::ranges::count_if(polygons, [](const auto& p) { return p.select != 0; }));
    }
    bool IsMember(std::size_t which, std::size_t polygon) const {
        return polygon < counts[which] && polygon < saved[which].size() && saved[which][polygon];
    }

    // ---- statements: each does its work on the plain model and gives the script's words for it ----

    std::string Append() {
        PlainPolygon p{Number(0, 1), Number(0, 3), Number(0, 5), Number(0, 5), false, {}};
        std::string text = "PolyVertexs(0);";
        for (int i = Number(1, 4); i > 0; --i) {
            p.vertices.push_back({Number(-3, 3), Number(-3, 3), Number(-3, 3)});
            const auto& v = p.vertices.back();
            text += "PolyInsVertex(Vertex(" + Text({v[0], v[1], v[2]}) + "), PolyVertexs());";
        }
        Mark(p.obj);
        selected += p.select;
        polygons.push_back(p);
        return text + "PolyType(" + Text({p.type}) + "); PolyAttr(" + Text({p.attr}) + "); PolyObj(" +
               Text({p.obj}) + "); PolyAppend(" + Text({p.select}) + ");";
    }
    template <class Hit>
    void Select(bool flag, int mode, Hit hit) {
        selected = 0;
        for (PlainPolygon& p : polygons) {
            if (!p.hidden) {
                const int value = hit(p) == flag ? 1 : 0;
                const int combined[] = {value, p.select & value, p.select | value, p.select ^ value};
                p.select = combined[mode & 3];
                selected += p.select;
            }
        }
    }
    std::string SelectByWord() {
        const int wanted = Number(0, 5), flag = Number(0, 1), mode = Number(0, 3);
        const std::string arguments = "(" + Text({wanted, flag, mode}) + ");";
        switch (Number(0, 3)) {
            case 0:
                Select(flag != 0, mode, [wanted](const PlainPolygon& p) { return p.attr == wanted; });
                return "SelectAttr" + arguments;
            case 1:
                Select(flag != 0, mode, [wanted](const PlainPolygon& p) { return p.obj == wanted; });
                return "SelectObj" + arguments;
            case 2:
                Select(flag != 0, mode, [wanted](const PlainPolygon& p) { return p.type == wanted; });
                return "SelectPolyType" + arguments;
            default:
                Select(flag != 0, mode, [](const PlainPolygon&) { return true; });
                return "SelectAll(" + Text({flag, mode}) + ");";
        }
    }
    std::string SelectByBox() {
        const int flag = Number(0, 1), mode = Number(0, 3), part = Maybe() ? 16 : 0;
        int a[3], b[3];
        for (int axis = 0; axis < 3; ++axis) {
            a[axis] = Number(-4, 4), b[axis] = Number(-4, 4);
        }
        const auto isInside = [&](const std::array<int, 3>& v) {
            bool inside = true;
            for (std::size_t axis = 0; axis < 3; ++axis) {
                inside =
                    inside && std::min(a[axis], b[axis]) <= v[axis] && v[axis] <= std::max(a[axis], b[axis]);
            }
            return inside;
        };
        Select(flag != 0, mode, [&](const PlainPolygon& p) {
            return part != 0 ? std::ranges::any_of(p.vertices, isInside)
                             : std::ranges::all_of(p.vertices, isInside);
        });
        return "SelectArea(" + Text({flag, mode + part}) + ", Vertex(" + Text({a[0], a[1], a[2]}) +
               "), Vertex(" + Text({b[0], b[1], b[2]}) + "));";
    }
    std::string Hide() {
        const bool hides = Number(0, 2) == 0;
        for (PlainPolygon& p : polygons) {
            p.hidden = hides && (p.hidden || p.select == 0);
        }
        return hides ? "PolyInvisible(1);" : "PolyInvisible(0);";
    }
    std::string Move() {
        const int by[3] = {Number(-2, 2), Number(-2, 2), Number(-2, 2)};
        for (PlainPolygon& p : polygons) {
            for (auto& v : p.vertices) {
                for (std::size_t axis = 0; axis < 3; ++axis) {
                    v[axis] += p.select * by[axis];
                }
            }
            if (p.select != 0) {
                Mark(p.obj);
            }
        }
        return "PolyMove(UNIT_MATRIX.move(" + Text({by[0], by[1], by[2]}) + "));";
    }
    template <class Goes>
    void Delete(Goes goes) {
        std::vector<PlainPolygon> left;
        for (std::size_t i = 0; i < polygons.size(); ++i) {
            if (goes(i)) {
                Mark(polygons[i].obj);
            } else {
                left.push_back(polygons[i]);
            }
        }
        polygons = left;
        selected = Selected();
    }
    std::string DeleteSelected() {
        Delete([this](std::size_t i) { return polygons[i].select == 1; });
        return "PolyDelete();";
    }
    std::string DeleteMembers() {
        Delete([this](std::size_t i) { return IsMember(0, i); });
        return "PolyDelete(s);";
    }
    std::string Save() {
        const std::size_t which = Maybe() ? 1 : 0;
        saved[which].assign((polygons.size() / 32 + 1) * 32, false);
        counts[which] = polygons.size();
        for (std::size_t i = 0; i < polygons.size(); ++i) {
            saved[which][i] = polygons[i].select != 0;
        }
        return which == 0 ? "s = Select();" : "t = Select();";
    }
    std::string Combine() {
        const int operation = Number(0, 3);
        Bits result((polygons.size() + 31) / 32 * 32);
        for (std::size_t i = 0; i < result.size(); ++i) {
            const bool a = i < saved[0].size() && saved[0][i], b = i < saved[1].size() && saved[1][i];
            const bool values[] = {!a, a && b, a || b, a != b};
            result[i] = values[operation];
        }
        saved[0] = result;
        counts[0] = polygons.size();
        constexpr const char* TEXTS[] = {"s = !s;", "s = s & t;", "s = s | t;", "s = s ^ t;"};
        return TEXTS[operation];
    }
    std::string Restore() {
        for (std::size_t i = 0; i < polygons.size(); ++i) {
            polygons[i].select = IsMember(0, i) ? 1 : 0;
        }
        selected = Selected();
        return "Select(s);";
    }
    std::string SelectOne() {
        const int wanted = Number(-1, 5);
        if (wanted >= 0) {
            int member = 0;
            for (std::size_t i = 0; i < polygons.size(); ++i) {
                polygons[i].select = IsMember(0, i) && member++ == wanted ? 1 : 0;
            }
            selected = Selected();
        }
        return "SelectNumber(s, " + std::to_string(wanted) + ");";
    }
    std::string ChangeTable() {
        const int n = Number(0, 3);
        const auto renumber = [&](int PlainPolygon::*field, int& entries) {
            const auto has = [&](const PlainPolygon& p) { return p.*field == n; };
            if (n >= entries || std::ranges::any_of(polygons, has)) {
                return false;
            }
            for (PlainPolygon& p : polygons) {
                p.*field -= p.*field > n ? 1 : 0;
            }
            --entries;
            return true;
        };
        if (Maybe()) {
            renumber(&PlainPolygon::attr, attributes);
            return "AttrDelete(" + std::to_string(n) + ");";
        }
        if (renumber(&PlainPolygon::obj, objects)) {
            std::copy(edited.begin() + n + 1, edited.begin() + objects + 1, edited.begin() + n);
            edited[static_cast<std::size_t>(objects)] = false;
        }
        return "ObjDelete(" + std::to_string(n) + ");";
    }
    std::string ChangeSelected() {
        const bool object = Maybe();
        const int n = Number(-1, (object ? objects : attributes) - 1);
        for (PlainPolygon& p : polygons) {
            if (p.select != 0 && n >= 0) {
                Mark(p.obj);
                (object ? p.obj : p.attr) = n;
            }
        }
        if (object) {
            Mark(n);
        }
        return (object ? "ObjChange(" : "AttrChange(") + std::to_string(n) + ");";
    }
    std::string Statement() {
        using Make = std::string (PlainModel::*)();
        constexpr Make ALL[] = {
            &PlainModel::Append,        &PlainModel::Append,      &PlainModel::SelectByWord,
            &PlainModel::SelectByWord,  &PlainModel::SelectByBox, &PlainModel::SelectByBox,
            &PlainModel::Hide,          &PlainModel::Move,        &PlainModel::Save,
            &PlainModel::Combine,       &PlainModel::Restore,     &PlainModel::SelectOne,
            &PlainModel::ChangeSelected};
        constexpr Make RARE[] = {&PlainModel::DeleteSelected, &PlainModel::DeleteMembers,
                                 &PlainModel::ChangeTable};
        return Number(0, 9) == 0 ? (this->*RARE[Number(0, 2)])() : (this->*ALL[Number(0, 12)])();
    }

    std::vector<PlainPolygon> Stored() const {
        std::vector<PlainPolygon> stored;
        for (PolygonRecord* p = PolygonTop(); p != nullptr; p = PolygonNext(p)) {
            stored.push_back({p->select, p->type, p->attr, p->obj, (p->flags & POLYGON_INVISIBLE) != 0, {}});
            for (const VertexRecord& v : p->Vertices()) {
                stored.back().vertices.push_back({v.x, v.y, v.z});
            }
        }
        return stored;
    }
};

TEST_P(PlainModel, IsWhatTheStoreHoldsAfterEveryStatement) {
    sizes.codeBytes = 4 << 20;
    Script(
        "var i, s, t; for (i = 0; i < 4; i++) { AttrAppend(tostring(i), i); ObjAppend(tostring(i), \"f\"); }"
        "s = Select(); t = Select();");
    ASSERT_EQ(message, "");
    saved[0].assign(32, false);
    saved[1].assign(32, false);
    std::size_t largest = 0;
    for (int i = 0; i < 600; ++i) {
        const std::string statement = Statement();
        RunMore(statement);
        ASSERT_EQ(message, "") << statement;
        ASSERT_TRUE(Stored() == polygons) << statement;
        ASSERT_EQ(SelectCount, selected) << statement;
        for (std::size_t object = 0; object < edited.size(); ++object) {
            ASSERT_EQ(ObjTable[object].edit != 0, edited[object]) << statement << object;
        }
        ASSERT_EQ(AttrLast + 1, attributes) << statement;
        ASSERT_EQ(ObjLast + 1, objects) << statement;
        largest = std::max(largest, polygons.size());
    }
    EXPECT_GT(largest, 5U);
}

INSTANTIATE_TEST_SUITE_P(Seeds, PlainModel, testing::Range(1U, 41U));

}  // namespace
}  // namespace quelmark::test

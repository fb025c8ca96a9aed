// Damaged files: seeded mutations of the samples and of a text with every construct. Whatever comes, the read
// ends, the buffer's chain of records holds, and every polygon has an attribute and an object.
#include <random>

#include "reader/reader_fixture.h"

namespace quelmark::test {
namespace {

constexpr std::size_t TEXT_MOST = 4000;
constexpr int ROUNDS = 6000;

const char* const PIECES[] = {"(",     ")",    "{",           "}",
                              "prim",  "atr",  "obj suf x {", "parts t",
                              "mov (", "-",    "1e400",       "999999999999",
                              "/*",    "*/",   "\x83",        "hsv ( 1 1 1 )",
                              "shade", "poly", "\n",          " ",
                              "mat (", "0.5",  "private",     "colormap ( a )"};

class Damage : public ReaderTest {
  protected:
    std::mt19937 random{20240301};

    std::size_t Below(std::size_t n) { return std::uniform_int_distribution<std::size_t>(0, n - 1)(random); }

    std::vector<std::string> Seeds() {
        std::vector<std::string> seeds = {
            "atr a { col ( rgb ( 1 0.5 0 ) ) tra ( hsv ( 10 1 1 ) ) amb ( 0.5 ) dif ( 0.5 ) spc ( 1 rgb ( 1 "
            "1 1 ) 2 )\n"
            "ref ( 1 ) rfr ( 1 ) att ( 1 ) colormap ( a.bmp ) mapsize ( 0 0 1 1 ) bumpmap ( x ) }\n"
            "obj private suf o {\natr a prim poly ( 0 0 0 1 0 0 0 1 0 ) prim shade ( 1 2 3 0 0 256 4 5 6 0 0 "
            "256 7 8 0 0 0 "
            "256 )\nprim uvpoly ( 1 2 3 4 5 6 7 8 9 0 1 2 3 4 5 ) parts t mov ( 1 2 3 ) rotx ( 90 ) scal ( 1 "
            "2 1 )\n"
            "parts none mat ( 1 0 0 0 0 1 0 0 0 0 1 0 5 6 7 1 ) /* end */ }\n"};
        for (const char* name : {"cube", "house", "chess", "knot", "teapot"}) {
            seeds.push_back(
                Get(QUELMARK_SOURCE_DIR "/samples/" + std::string(name) + ".suf").substr(0, TEXT_MOST));
        }
        return seeds;
    }

    std::string Changed(std::string text) {
        for (std::size_t i = 1 + Below(6); i > 0 && !text.empty(); --i) {
            const std::size_t at = Below(text.size());
            switch (Below(5)) {
                case 0:
                    text[at] = static_cast<char>(Below(256));
                    break;
                case 1:
                    text.insert(at, PIECES[Below(std::size(PIECES))]);
                    break;
                case 2:
                    text.erase(at, 1 + Below(40));
                    break;
                case 3:
                    text.insert(at, text.substr(Below(text.size()), Below(80)));
                    break;
                default:
                    text.resize(at);
            }
        }
        return text;
    }
};

TEST_F(Damage, NeverBreaksTheReaderOrTheModel) {
    const std::vector<std::string> seeds = Seeds();
    for (int round = 0; round < ROUNDS; ++round) {
        SCOPED_TRACE(round);
        if (round % 50 == 0) {
            Model(1 << 16, 8, 8, 200);
        }
        messages.clear();
        Put("t.suf", Changed(seeds[Below(seeds.size())]));
        switch (Below(3)) {
            case 0:
                ReadAttributeFile("t.suf", round & 1);
                break;
            case 1:
                ReadFrameFile("t.suf", round & 1);
                break;
            default:
                ReadShapeFile("t.suf", round & 1);
        }
        BufferCheck();
        std::int32_t selected = 0;
        for (const PolygonRecord* polygon : Polygons()) {
            selected += polygon->select;
            ASSERT_TRUE(polygon->vers >= 3 && polygon->vers <= 200);
            ASSERT_TRUE(polygon->attr >= 0 && polygon->attr < AttributeCount &&
                        AttrTable[polygon->attr].used == 1);
            ASSERT_TRUE(polygon->obj >= 0 && polygon->obj < ObjectTableSize &&
                        ObjTable[polygon->obj].used == 1);
        }
        ASSERT_EQ(selected, SelectCount);
    }
}

}  // namespace
}  // namespace quelmark::test

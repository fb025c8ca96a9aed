// What each function of the views says of arguments that are too few, too many or of another type, under the
// name that it reports, and that those without a result have none.
#include "MODEL/MDLINIT.h"
#include "MODEL/POLY.h"
#include "script_fixture.h"
#include "view/VIEW.h"

namespace quelmark::test {
namespace {

struct Row {
    const char* source;
    const char* message;
};

constexpr Row ROWS[] = {
    {"MouseWindow(1);", "1 番目の引数の型が不正です。( MouseWindow )"},
    {"Cursor(1);", "1 番目の引数の型が不正です。( Cursor )"},
    {"Cursor(\"a\");", "1 番目の引数の型が不正です。( Cursor )"},
    {"Cursor(UNIT_MATRIX);", "1 番目の引数の型が不正です。( Cursor )"},
    {"Cursor(Vertex(1, 2, 3), 1);", "2 番目の引数の型が不正です。( Cursor )"},
    {"Vertex(1, 2, 3).Cursor(1);", "2 番目の引数の型が不正です。( Cursor )"},
    {"Cursor(vector(1, 2, 3), 1);", "2 番目の引数の型が不正です。( Cursor )"},
    {"Cursor2D();", "引数の数が不正です。( Cursor2D )"},
    {"var a[1]; Cursor2D(a);", "引数配列のサイズが不正です。( Get2DCursor )"},
    {"var a[2]; Cursor2D(a, 1);", "2 番目の引数の型が不正です。( Cursor2D )"},
    {"Cursor2D(1);", "1 番目の引数の型が不正です。( Cursor2D )"},
    {"Update();", "引数の数が不正です。( Update )"},
    {"Update(1.5);", "1 番目の引数の型が不正です。( Update )"},
    {"Update(\"a\");", "1 番目の引数の型が不正です。( Update )"},
    {"Update(1, TRUE);", "2 番目の引数の型が不正です。( Update )"},
    {"Update(1, 1.0);", "2 番目の引数の型が不正です。( Update )"},
    {"Update(1, 1, 1);", "3 番目の引数の型が不正です。( Update )"},
    {"UpdatePers();", "引数の数が不正です。( UpdatePers )"},
    {"UpdatePers(1.0);", "1 番目の引数の型が不正です。( UpdatePers )"},
    {"UpdatePers(1, 1);", "2 番目の引数の型が不正です。( UpdatePers )"},
    {"DrawCurrent(1.0);", "1 番目の引数の型が不正です。( DrawCurrent )"},
    {"DrawCurrent(1, 2);", "2 番目の引数の型が不正です。( DrawCurrent )"},
    {"DrawLine(Vertex(1, 2, 3));", "引数の数が不正です。( DrawLine )"},
    {"DrawLine(Vertex(1, 2, 3), 1);", "2 番目の引数の型が不正です。( DrawLine )"},
    {"DrawLine(Vertex(1, 2, 3), Vertex(1, 2, 3), 1.0);", "3 番目の引数の型が不正です。( DrawLine )"},
    {"DrawLine(Vertex(1, 2, 3), Vertex(1, 2, 3), TRUE);", "3 番目の引数の型が不正です。( DrawLine )"},
    {"DrawLine(Vertex(1, 2, 3), Vertex(1, 2, 3), 18, 1);", "4 番目の引数の型が不正です。( DrawLine )"},
    {"DrawLine2D(1, 2, 3);", "引数の数が不正です。( DrawLine2D )"},
    {"DrawLine2D(1, 2, 3, 4.0);", "4 番目の引数の型が不正です。( DrawLine2D )"},
    {"DrawLine2D(1, 2, 3, 4, 5);", "5 番目の引数の型が不正です。( DrawLine2D )"},
    {"DrawLine2D();", "引数の数が不正です。( DrawLine2D )"},
    {"DrawBox2D(1, 2, 3);", "引数の数が不正です。( DrawBox2D )"},
    {"DrawBox2D(TRUE, 2, 3, 4);", "1 番目の引数の型が不正です。( DrawBox2D )"},
    {"DrawBox2D(1, 2, 3, 4, 5);", "5 番目の引数の型が不正です。( DrawBox2D )"},
    {"DrawBox(Vertex(1, 2, 3));", "引数の数が不正です。( Vertex:DrawBox )"},
    {"DrawBox(Vertex(1, 2, 3), 1);", "引数の型が不正です。( Vertex:DrawBox )"},
    {"DrawBox(Vertex(1, 2, 3), Vertex(1, 2, 3), Vertex(1, 2, 3));", "引数の型が不正です。( Vertex:DrawBox )"},
    {"DrawBox(Vertex(1, 2, 3), Vertex(1, 2, 3), UNIT_MATRIX, 1);", "引数の数が不正です。( Vertex:DrawBox )"},
    {"Clear(1.0);", "1 番目の引数の型が不正です。( Clear )"},
    {"Clear(1, 1);", "2 番目の引数の型が不正です。( Clear )"},
    {"SetWindow(1.0);", "1 番目の引数の型が不正です。( SetWindow )"},
    {"SetWindow(TRUE);", "1 番目の引数の型が不正です。( SetWindow )"},
    {"SetWindow(1, 1);", "2 番目の引数の型が不正です。( SetWindow )"},
    {"Window(1.0);", "1 番目の引数の型が不正です。( SetWindow )"},
    {"Window(TRUE);", "1 番目の引数の型が不正です。( SetWindow )"},
    {"Window(1, 1);", "2 番目の引数の型が不正です。( SetWindow )"},
    {"VisibleVector(1.0);", "1 番目の引数の型が不正です。( SetVisibleVector )"},
    {"VisibleVector(1, 1);", "2 番目の引数の型が不正です。( SetVisibleVector )"},
    {"VisibleVector(\"a\");", "1 番目の引数の型が不正です。( SetVisibleVector )"},
    {"VisiblePolyVector(1.0);", "1 番目の引数の型が不正です。( SetVisiblePolyVector )"},
    {"VisiblePolyVector(1, 1);", "2 番目の引数の型が不正です。( SetVisiblePolyVector )"},
    {"VisiblePolyVector(\"a\");", "1 番目の引数の型が不正です。( SetVisiblePolyVector )"},
    {"VisibleVertex(1.0);", "1 番目の引数の型が不正です。( SetVisibleVertex )"},
    {"VisibleVertex(1, 1);", "2 番目の引数の型が不正です。( SetVisibleVertex )"},
    {"VisibleVertex(\"a\");", "1 番目の引数の型が不正です。( SetVisibleVertex )"},
    {"DrawInvisible(1.0);", "1 番目の引数の型が不正です。( DrawInvisible )"},
    {"DrawInvisible(1, 1);", "2 番目の引数の型が不正です。( DrawInvisible )"},
    {"DrawInvisible(\"a\");", "1 番目の引数の型が不正です。( DrawInvisible )"},
    {"DrawFrontOnly(1.0);", "1 番目の引数の型が不正です。( DrawFrontOnly )"},
    {"DrawFrontOnly(1, 1);", "2 番目の引数の型が不正です。( DrawFrontOnly )"},
    {"DrawFrontOnly(\"a\");", "1 番目の引数の型が不正です。( DrawFrontOnly )"},
    {"ViewCursor(1.0);", "1 番目の引数の型が不正です。( ViewCursor )"},
    {"ViewCursor(1, 1);", "2 番目の引数の型が不正です。( ViewCursor )"},
    {"ViewCursor(\"a\");", "1 番目の引数の型が不正です。( ViewCursor )"},
    {"SetCenter();", "引数の数が不正です。( SetCenter )"},
    {"SetCenter(1);", "1 番目の引数の型が不正です。( SetCenter )"},
    {"SetCenter(\"a\");", "型が不正です。（SetCenter）"},
    {"SetCenter(UNIT_MATRIX);", "型が不正です。（SetCenter）"},
    {"SetCenter(Vertex(1, 2, 3), 1);", "2 番目の引数の型が不正です。( SetCenter )"},
    {"Center();", "引数の数が不正です。( SetCenter )"},
    {"Center(1);", "1 番目の引数の型が不正です。( SetCenter )"},
    {"Center(\"a\");", "型が不正です。（SetCenter）"},
    {"Center(UNIT_MATRIX);", "型が不正です。（SetCenter）"},
    {"Center(Vertex(1, 2, 3), 1);", "2 番目の引数の型が不正です。( SetCenter )"},
    {"SetZoom();", "引数の数が不正です。( SetZoom )"},
    {"SetZoom(1.0);", "1 番目の引数の型が不正です。( SetZoom )"},
    {"SetZoom(TRUE);", "1 番目の引数の型が不正です。( SetZoom )"},
    {"SetZoom(1, TRUE);", "2 番目の引数の型が不正です。( SetZoom )"},
    {"SetZoom(1, 2, 3);", "3 番目の引数の型が不正です。( SetZoom )"},
    {"SetPers(1);", "関数 SetPers が定義されていません。"},
    {"SetPers();", "関数 SetPers が定義されていません。"},
    {"SetPers(UNIT_MATRIX, 1);", "2 番目の引数の型が不正です。( SetPers )"},
    {"UNIT_MATRIX.SetPers(1);", "2 番目の引数の型が不正です。( SetPers )"},
    {"SetPers(Vertex(1, 2, 3));", "関数 SetPers が定義されていません。"},
    {"SetConv(1);", "関数 SetConv が定義されていません。"},
    {"SetConv(UNIT_MATRIX, 1);", "2 番目の引数の型が不正です。( SetConv )"},
    {"SetGrid();", "引数の数が不正です。( SetGrid )"},
    {"SetGrid(1);", "引数の数が不正です。( SetGrid )"},
    {"SetGrid(1, 1.0);", "2 番目の引数の型が不正です。( SetGrid )"},
    {"SetGrid(1, 2, 3);", "3 番目の引数の型が不正です。( SetGrid )"},
    {"PersAngle(1.0);", "1 番目の引数の型が不正です。( PersAngle )"},
    {"PersAngle(TRUE);", "1 番目の引数の型が不正です。( PersAngle )"},
    {"PersAngle(1, 1);", "2 番目の引数の型が不正です。( PersAngle )"},
    {"ViewWidth();", "引数の数が不正です。( ViewWidth )"},
    {"ViewWidth(1.0);", "1 番目の引数の型が不正です。( ViewWidth )"},
    {"ViewWidth(1, 1);", "2 番目の引数の型が不正です。( ViewWidth )"},
    {"ViewWidth(TRUE);", "1 番目の引数の型が不正です。( ViewWidth )"},
    {"print(ViewWidth(0));", "代入されていない変数を参照しました。"},
    {"print(ViewWidth(3));", "代入されていない変数を参照しました。"},
    {"print(ViewWidth(5));", "代入されていない変数を参照しました。"},
    {"print(ViewWidth(15));", "代入されていない変数を参照しました。"},
    {"print(ViewWidth(16));", "代入されていない変数を参照しました。"},
    {"print(ViewWidth(-1));", "代入されていない変数を参照しました。"},
    {"print(ViewWidth(-2147483647));", "代入されていない変数を参照しました。"},
    {"ViewHeight();", "引数の数が不正です。( ViewHeight )"},
    {"ViewHeight(1.0);", "1 番目の引数の型が不正です。( ViewHeight )"},
    {"ViewHeight(1, 1);", "2 番目の引数の型が不正です。( ViewHeight )"},
    {"ViewHeight(TRUE);", "1 番目の引数の型が不正です。( ViewHeight )"},
    {"print(ViewHeight(0));", "代入されていない変数を参照しました。"},
    {"print(ViewHeight(3));", "代入されていない変数を参照しました。"},
    {"print(ViewHeight(5));", "代入されていない変数を参照しました。"},
    {"print(ViewHeight(15));", "代入されていない変数を参照しました。"},
    {"print(ViewHeight(16));", "代入されていない変数を参照しました。"},
    {"print(ViewHeight(-1));", "代入されていない変数を参照しました。"},
    {"print(ViewHeight(-2147483647));", "代入されていない変数を参照しました。"},
    {"print(SetWindow(15));", "代入されていない変数を参照しました。"},
    {"print(SetZoom(1));", "代入されていない変数を参照しました。"},
    {"print(Update(1));", "代入されていない変数を参照しました。"},
    {"print(Clear());", "代入されていない変数を参照しました。"},
    {"print(SetCenter(Vertex(1, 2, 3)));", "代入されていない変数を参照しました。"},
    {"print(SetPers(UNIT_MATRIX));", "代入されていない変数を参照しました。"},
    {"print(SetConv(UNIT_MATRIX));", "代入されていない変数を参照しました。"},
    {"print(SetGrid(1, 1));", "代入されていない変数を参照しました。"},
    {"print(DrawLine(Vertex(1, 2, 3), Vertex(1, 2, 3)));", "代入されていない変数を参照しました。"},
    {"print(DrawBox(Vertex(1, 2, 3), Vertex(1, 2, 3)));", "代入されていない変数を参照しました。"},
    {"print(DrawLine2D(1, 2, 3, 4));", "代入されていない変数を参照しました。"},
    {"print(DrawBox2D(1, 2, 3, 4));", "代入されていない変数を参照しました。"},
    {"print(UpdatePers(1));", "代入されていない変数を参照しました。"},
    {"var a[2]; print(Cursor2D(a));", "代入されていない変数を参照しました。"},
    {"print(\"a\".DrawText(1, 2));", "代入されていない変数を参照しました。"},
    {"SelectPers(1, 0, 0, 0, 0);", "引数の数が不正です。( SelectPers )"},
    {"SelectPers(1.0, 0, 0, 0, 0, 0);", "1 番目の引数の型が不正です。( SelectPers )"},
    {"SelectPers(1, 0, 0, 0, 0, 1.0);", "6 番目の引数の型が不正です。( SelectPers )"},
    {"SelectPers(1, TRUE, 0, 0, 0, 0);", "2 番目の引数の型が不正です。( SelectPers )"},
    {"SelectPers(1, 0, 0, 0, 0, 0, 0);", "7 番目の引数の型が不正です。( SelectPers )"},
    {"PolyPlane(Vertex(1, 1, 1), 1.0, Vertex(0, 0, 10), Vertex(10, 0, 10), Vertex(0, 10, 10));",
     "引数の型が不正です。(Vertex:PolyPlane)"},
    {"PolyPlane(Vertex(1, 1, 1), 1, Vertex(1, 1, 1), Vertex(1, 1, 1));",
     "引数の型が不正です。(Vertex:PolyPlane)"},
    {"PolyPlane(Vertex(1, 1, 1), 1, Vertex(1, 1, 1), Vertex(1, 1, 1), 1);",
     "引数の型が不正です。(Vertex:PolyPlane)"},
    {"PolyPlane(Vertex(1, 1, 1));", "引数の型が不正です。(Vertex:PolyPlane)"},
    {"PolyVertex(Vertex(1, 1, 1), 1.5);", "2 番目の引数の型が不正です。( PolyVertex )"},
    {"PolyVertex(Vertex(1, 1, 1), 1, 1);", "3 番目の引数の型が不正です。( PolyVertex )"},
    {"ViewTitle(\"a\");", "引数の数が不正です。( ViewTitle )"},
    {"\"a\".ViewTitle(1.0);", "2 番目の引数の型が不正です。( ViewTitle )"},
    {"DrawText(\"a\");", "引数の数が不正です。( DrawText )"},
    {"\"a\".DrawText(1);", "引数の数が不正です。( DrawText )"},
    {"\"a\".DrawText(1, 2.0);", "3 番目の引数の型が不正です。( DrawText )"},
    {"\"a\".DrawText(1, 2, 3, 4);", "5 番目の引数の型が不正です。( DrawText )"},
    {"\"a\".DrawText(1.0, 2);", "2 番目の引数の型が不正です。( DrawText )"},
    {"DrawLine();", "関数 DrawLine が定義されていません。"},
    {"DrawLine(1, Vertex(1, 2, 3));", "関数 DrawLine が定義されていません。"},
    {"vector(1, 2, 3).DrawLine(Vertex(1, 2, 3));", "関数 DrawLine が定義されていません。"},
    {"DrawLine2D(TRUE, 2, 3, 4);", "1 番目の引数の型が不正です。( DrawLine2D )"},
    {"DrawLine2D(Vertex(1, 2, 3), 2, 3, 4);", "1 番目の引数の型が不正です。( DrawLine2D )"},
    {"DrawLine2D(1, 2.0, 3, 4);", "2 番目の引数の型が不正です。( DrawLine2D )"},
    {"DrawLine2D(1, 2, \"a\", 4);", "3 番目の引数の型が不正です。( DrawLine2D )"},
    {"DrawBox2D(1, 2.0, 3, 4);", "2 番目の引数の型が不正です。( DrawBox2D )"},
    {"DrawBox2D(1, 2, \"a\", 4);", "3 番目の引数の型が不正です。( DrawBox2D )"},
    {"DrawBox2D(1, 2, 3, 4.5);", "4 番目の引数の型が不正です。( DrawBox2D )"},
    {"DrawBox(1, 2);", "関数 DrawBox が定義されていません。"},
    {"DrawText();", "関数 DrawText が定義されていません。"},
    {"DrawText(1, 2, 3);", "関数 DrawText が定義されていません。"},
    {"SetGrid(TRUE, 2);", "1 番目の引数の型が不正です。( SetGrid )"},
    {"\"a\".DrawText(Vertex(1, 2, 3), 3, 4);", "4 番目の引数の型が不正です。( DrawText )"},
    {"\"a\".DrawText(1, 2, TRUE);", "4 番目の引数の型が不正です。( DrawText )"},
    {"Vertex(1, 2, 3).SetPers();", "関数 SetPers が定義されていません。"},
    {"Vertex(1, 2, 3).SetConv();", "関数 SetConv が定義されていません。"},
    {"UNIT_MATRIX.SetConv(1);", "2 番目の引数の型が不正です。( SetConv )"},
};

class ViewArguments : public ScriptTest {
  protected:
    void SetUp() override {
        ScriptTest::SetUp();
        registerMore = ModelLibrariesRegister;
        ModelInit(1 << 16, 8, 8, 20);
        ViewInit();
    }
    void TearDown() override {
        ViewExit();
        ModelExit();
        ScriptTest::TearDown();
    }
};

TEST_F(ViewArguments, AreReportedUnderTheFunctionsName) {
    for (const Row& row : ROWS) {
        EXPECT_EQ(Fail(row.source), std::string("test.qms:1:  Error ") + row.message) << row.source;
        InterpreterExit();
    }
}

}  // namespace
}  // namespace quelmark::test

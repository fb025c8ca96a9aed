// A model store, a temporary folder that is the current directory, and the messages of a read.
#pragma once

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

#include "ML/ERROR.h"
#include "MODEL/ATR.h"
#include "MODEL/OBJ.h"
#include "MODEL/POLY.h"
#include "reader/objread.h"
#include "text/cp932.h"

namespace quelmark::test {

inline std::vector<std::string> messages;  // UTF-8

class ReaderTest : public testing::Test {
  protected:
    std::filesystem::path folder;
    std::filesystem::path before;

    void SetUp() override {
        messages.clear();
        SetErrorHandlers([](std::string_view) { throw ScriptAbort{}; },
                         [](std::string_view text) {
                             messages.push_back(Cp932ToUtf8(text));
                             return 0;
                         });
        char name[] = "/tmp/quelmark-test-XXXXXX";
        before = std::filesystem::current_path();
        folder = mkdtemp(name);
        std::filesystem::current_path(folder);
        ReaderInit("");
        ReaderSetCancelCheck(nullptr);
        Model();
    }
    void TearDown() override {
        ModelExit();
        SetErrorHandlers(nullptr, nullptr);
        ReaderSetCancelCheck(nullptr);
        std::filesystem::current_path(before);
        std::filesystem::remove_all(folder);
    }

    void Model(std::int32_t bytes = 1 << 20, std::int32_t objects = 16, std::int32_t attributes = 16,
               std::int32_t vertices = 1023) {
        if (CurrentPolygon != nullptr) {
            ModelExit();
        }
        ModelInit(bytes, objects, attributes, vertices);
    }

    // Bytes as they stand.
    static void Put(const std::string& name, const std::string& bytes) {
        const std::filesystem::path path = name;
        if (path.has_parent_path()) {
            std::filesystem::create_directories(path.parent_path());
        }
        std::ofstream(path, std::ios::binary) << bytes;
    }
    static std::string Get(const std::string& name) {
        std::ifstream file(name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    // The text (UTF-8, kept as cp932) read as "t.suf".
    static bool Read(const std::string& text, std::int32_t mode = 1) {
        Put("t.suf", Utf8ToCp932(text).value());
        return ReadShapeFile("t.suf", mode);
    }
    static bool ReadAttributes(const std::string& text, std::int32_t mode = 1) {
        Put("t.suf", Utf8ToCp932(text).value());
        return ReadAttributeFile("t.suf", mode);
    }

    static std::vector<PolygonRecord*> Polygons() {
        std::vector<PolygonRecord*> all;
        for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon)) {
            all.push_back(polygon);
        }
        return all;
    }
    static std::string AttributeOf(const PolygonRecord* polygon) { return AttrTable[polygon->attr].name; }
    static std::string ObjectOf(const PolygonRecord* polygon) { return ObjTable[polygon->obj].name; }
};

using Lines = std::vector<std::string>;
inline const std::string TRIANGLE = "prim poly ( 0 0 0 100 0 0 0 100 0 )\n";

// An object block around a body.
inline std::string Block(const std::string& body, const std::string& name = "o") {
    return "obj suf " + name + " {\n" + body + "}\n";
}

}  // namespace quelmark::test

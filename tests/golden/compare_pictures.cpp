// compare_pictures KEPT DRAWN DIFFERENCE: how many pixels of two binary PPM pictures differ. When some do,
// the third file gets a picture of them: what differs in red, the rest in pale grey. Status 0 when all are
// equal, 1 when not, 2 when one is no picture.
#include <cstddef>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

namespace {

struct Picture {
    std::size_t width = 0, height = 0;
    std::vector<unsigned char> bytes;  // red, green, blue
};

bool Read(const char* path, Picture& picture) {
    std::ifstream file(path, std::ios::binary);
    std::string magic;
    std::size_t most = 0;
    if (!(file >> magic >> picture.width >> picture.height >> most) || magic != "P6" || most != 255 ||
        picture.width > 65536 || picture.height > 65536) {
        return false;
    }
    file.get();
    picture.bytes.resize(picture.width * picture.height * 3);
    file.read(reinterpret_cast<char*>(picture.bytes.data()),
              static_cast<std::streamsize>(picture.bytes.size()));
    return static_cast<bool>(file);
}

void Write(const char* path, const Picture& picture) {
    std::ofstream file(path, std::ios::binary);
    file << "P6\n" << picture.width << ' ' << picture.height << "\n255\n";
    file.write(reinterpret_cast<const char*>(picture.bytes.data()),
               static_cast<std::streamsize>(picture.bytes.size()));
}

bool SamePixel(const Picture& a, const Picture& b, std::size_t at) {
    return a.bytes[at] == b.bytes[at] && a.bytes[at + 1] == b.bytes[at + 1] &&
           a.bytes[at + 2] == b.bytes[at + 2];
}

}  // namespace

int main(int argc, char** argv) {
    Picture kept, drawn;
    if (argc != 4 || !Read(argv[1], kept) || !Read(argv[2], drawn)) {
        std::puts("no two pictures to compare");
        return 2;
    }
    if (kept.width != drawn.width || kept.height != drawn.height) {
        std::printf("%zu x %zu pixels instead of %zu x %zu\n", drawn.width, drawn.height, kept.width,
                    kept.height);
        return 1;
    }
    std::size_t count = 0, first = 0;
    Picture difference = drawn;
    for (std::size_t at = 0; at < drawn.bytes.size(); at += 3) {
        if (SamePixel(kept, drawn, at)) {
            const int grey = 192 + (drawn.bytes[at] + drawn.bytes[at + 1] + drawn.bytes[at + 2]) / 12;
            difference.bytes[at] = difference.bytes[at + 1] = difference.bytes[at + 2] =
                static_cast<unsigned char>(grey);
        } else {
            first = count++ == 0 ? at / 3 : first;
            difference.bytes[at] = 255;
            difference.bytes[at + 1] = difference.bytes[at + 2] = 0;
        }
    }
    if (count == 0) {
        std::puts("equal");
        return 0;
    }
    Write(argv[3], difference);
    std::printf("%zu of %zu pixels differ, the first at %zu, %zu\n", count, drawn.width * drawn.height,
                first % drawn.width, first / drawn.width);
    return 1;
}

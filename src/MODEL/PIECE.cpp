#include "MODEL/PIECE.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace quelmark {
namespace {

std::size_t heldBytes = 0, limitBytes = 0;
// Memory of the full size that no piece has: new memory costs the system more than filling it. Never
// destroyed, because pieces may be at the end of the program.
std::vector<std::unique_ptr<char[]>>& spare = *new std::vector<std::unique_ptr<char[]>>;

char* NewBytes(std::size_t count) {
    if (count == PIECE_BYTES && !spare.empty()) {
        char* bytes = spare.back().release();
        spare.pop_back();
        return bytes;
    }
    return new char[count];
}

bool IsEqual(std::span<const char> a, std::span<const char> b) {
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size()) == 0;
}

template <class Byte>
std::span<Byte> Part(std::span<Byte> memory, std::size_t n) {
    const std::size_t at = n * PIECE_BYTES;
    return memory.subspan(at, std::min(PIECE_BYTES, memory.size() - at));
}

std::size_t Parts(std::size_t bytes) {
    return (bytes + PIECE_BYTES - 1) / PIECE_BYTES;
}

void Copy(std::span<const char> from, char* to) {
    std::memcpy(to, from.data(), from.size());
}

// Keeps what is in memory and puts `bytes` there instead, in steps that stay in the cache and ask for what
// the next one needs. What is kept may take the place of the bytes.
void Exchange(std::span<const char> bytes, char* memory, char* kept) {
    constexpr std::size_t STEP = 1024, AHEAD = 2048, LINE = 64;
    std::array<char, STEP> aside;
    for (std::size_t at = 0; at < bytes.size(); at += STEP) {
        const std::size_t count = std::min(STEP, bytes.size() - at);
        for (std::size_t line = at + AHEAD; line < std::min(at + AHEAD + STEP, bytes.size()); line += LINE) {
            __builtin_prefetch(memory + line, 1);
            __builtin_prefetch(kept + line, 1);
            __builtin_prefetch(bytes.data() + line, 0);
        }
        std::memcpy(aside.data(), memory + at, count);
        std::memcpy(memory + at, bytes.data() + at, count);
        std::memcpy(kept + at, aside.data(), count);
    }
}

// Does the image have a piece of the size of the n-th part?
bool HasSamePlace(const Image& image, std::span<const char> memory, std::size_t n) {
    return n < image.size() && n < Parts(memory.size()) && image[n]->Bytes().size() == Part(memory, n).size();
}

// The piece of one of two images that has the bytes of the n-th part already, or null.
std::shared_ptr<Piece> PieceOf(std::span<const char> memory, std::size_t n, const Image& image,
                               const Image& nearest) {
    for (const Image* from : {&image, &nearest}) {
        if (HasSamePlace(*from, memory, n) && IsEqual((*from)[n]->Bytes(), Part(memory, n))) {
            return (*from)[n];
        }
    }
    return nullptr;
}

}  // namespace

Piece::Piece(std::size_t wanted) : bytes(NewBytes(wanted)), count(wanted) {
    heldBytes += count;
}

Piece::~Piece() {
    heldBytes -= count;
    std::unique_ptr<char[]> memory(bytes);
    if (count == PIECE_BYTES && heldBytes + (spare.size() + 1) * PIECE_BYTES <= limitBytes) {
        try {
            spare.push_back(std::move(memory));
        } catch (const std::bad_alloc&) {
            return;  // given back instead
        }
    }
}

Image ImageOf(std::span<const char> memory, std::span<const Image* const> nearest) {
    Image image(Parts(memory.size()));
    for (std::size_t n = 0; n < image.size(); ++n) {
        const std::span<const char> part = Part(memory, n);
        for (const Image* near : nearest) {
            if (image[n] == nullptr && n < near->size() && IsEqual((*near)[n]->Bytes(), part)) {
                image[n] = (*near)[n];
            }
        }
        if (image[n] == nullptr) {
            image[n] = std::make_shared<Piece>(part.size());
            Copy(part, image[n]->Bytes().data());
        }
    }
    return image;
}

bool IsImageOf(const Image& image, std::span<const char> memory) {
    bool isSame = image.size() == Parts(memory.size());
    for (std::size_t n = 0; isSame && n < image.size(); ++n) {
        isSame = IsEqual(image[n]->Bytes(), Part(memory, n));
    }
    return isSame;
}

char* PutBack(const Image& image, char* to) {
    for (const auto& piece : image) {
        const std::span<const char> bytes = piece->Bytes();
        if (!IsEqual(bytes, {to, bytes.size()})) {
            Copy(bytes, to);
        }
        to += bytes.size();
    }
    return to;
}

Image ExchangeBegin(const Image& image, std::span<const char> memory, const Image& nearest) {
    Image kept(Parts(memory.size()));
    for (std::size_t n = 0; n < kept.size(); ++n) {
        if (!HasSamePlace(image, memory, n) || image[n].use_count() > 1) {
            kept[n] = PieceOf(memory, n, image, nearest);
            kept[n] = kept[n] != nullptr ? kept[n] : std::make_shared<Piece>(Part(memory, n).size());
        }
    }
    return kept;
}

char* ExchangeEnd(const Image& image, std::span<char> memory, const Image& nearest, Image& kept) {
    for (std::size_t n = 0; n < kept.size(); ++n) {
        const std::span<char> part = Part(memory, n);
        kept[n] = kept[n] != nullptr ? kept[n] : PieceOf(memory, n, image, nearest);
        const bool isShared = kept[n].use_count() > 1;  // it has the bytes already
        kept[n] = kept[n] != nullptr ? kept[n] : image[n];
        if (!HasSamePlace(image, memory, n)) {
            if (!isShared) {
                Copy(part, kept[n]->Bytes().data());
            }
        } else if (!isShared) {
            Exchange(image[n]->Bytes(), part.data(), kept[n]->Bytes().data());
        } else if (kept[n] != image[n]) {
            Copy(image[n]->Bytes(), part.data());
        }
    }
    char* to = memory.data();
    for (std::size_t n = 0; n < image.size(); ++n) {
        if (!HasSamePlace(image, memory, n)) {
            Copy(image[n]->Bytes(), to);
        }
        to += image[n]->Bytes().size();
    }
    return to;
}

std::size_t PieceBytes() {
    return heldBytes;
}

void PieceLimit(std::size_t bytes) {
    limitBytes = bytes;
    while (!spare.empty() && heldBytes + spare.size() * PIECE_BYTES > limitBytes) {
        spare.pop_back();
    }
}

void PieceForget() {
    spare.clear();
    spare.shrink_to_fit();
}

}  // namespace quelmark

// Images of memory in shared pieces.
#include "MODEL/PIECE.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace quelmark::test {
namespace {

std::string TextOf(const Image& image) {
    std::string text;
    for (const auto& piece : image) {
        text.append(piece->Bytes().data(), piece->Bytes().size());
    }
    return text;
}

// Memory with room, and the part of it that is in use.
struct Memory {
    std::string room = std::string(5 * PIECE_BYTES, ' ');
    std::size_t used = 0;

    std::span<char> Used() { return {room.data(), used}; }
    std::string Text() const { return room.substr(0, used); }
    void Fill(std::size_t bytes, char with) {
        used = bytes;
        std::fill_n(room.begin(), used, with);
    }
    // Keeps what is there and puts the image back.
    Image Exchange(const Image& image, const Image& nearest = {}) {
        Image kept = ExchangeBegin(image, Used(), nearest);
        used = static_cast<std::size_t>(ExchangeEnd(image, Used(), nearest, kept) - room.data());
        return kept;
    }
};

Image New(Memory& memory) {
    return ImageOf(memory.Used(), {});
}

TEST(Pieces, AnImageSharesThePiecesThatAreEqualInANearOne) {
    Memory memory;
    memory.Fill(3 * PIECE_BYTES + 100, 'a');
    const std::size_t before = PieceBytes();
    const Image first = New(memory);
    EXPECT_EQ(PieceBytes() - before, 3 * PIECE_BYTES + 100);
    memory.room[PIECE_BYTES] = 'b';
    const Image* near[] = {&first};
    const Image second = ImageOf(memory.Used(), near);
    EXPECT_EQ(PieceBytes() - before, 4 * PIECE_BYTES + 100);
    EXPECT_EQ(second[0], first[0]);
    EXPECT_NE(second[1], first[1]);
    EXPECT_EQ(TextOf(second), memory.Text());
}

TEST(Pieces, AnExchangeOfAnImageThatSharesNothingNeedsNoMemory) {
    Memory memory;
    memory.Fill(3 * PIECE_BYTES + 100, 'a');
    const std::string old = memory.Text();
    Image image = New(memory);
    memory.Fill(memory.used, 'b');
    const std::string present = memory.Text();
    const std::size_t before = PieceBytes();
    const Image kept = memory.Exchange(image);
    EXPECT_EQ(PieceBytes(), before);
    EXPECT_EQ(memory.Text(), old);
    EXPECT_EQ(TextOf(kept), present);
}

TEST(Pieces, AnExchangeLeavesTheImagesThatShareThePiecesAsTheyWere) {
    Memory memory;
    memory.Fill(2 * PIECE_BYTES, 'a');
    const std::string old = memory.Text();
    const Image first = New(memory);
    const Image second = first;
    memory.Fill(2 * PIECE_BYTES, 'b');
    const Image kept = memory.Exchange(second);
    EXPECT_EQ(TextOf(first), old);
    EXPECT_EQ(memory.Text(), old);
    EXPECT_EQ(TextOf(kept), std::string(2 * PIECE_BYTES, 'b'));
}

TEST(Pieces, WhatAnExchangeKeepsSharesThePiecesThatAreEqualInANearImage) {
    Memory memory;
    memory.Fill(3 * PIECE_BYTES, 'a');
    const Image first = New(memory);
    memory.Fill(3 * PIECE_BYTES, 'b');
    const Image near = New(memory);
    memory.room[PIECE_BYTES] = 'c';
    const std::string present = memory.Text();
    const Image kept = memory.Exchange(first, near);
    EXPECT_EQ(kept[0], near[0]);
    EXPECT_NE(kept[1], near[1]);
    EXPECT_EQ(kept[2], near[2]);
    EXPECT_EQ(TextOf(kept), present);
    EXPECT_EQ(TextOf(near), std::string(3 * PIECE_BYTES, 'b'));
    EXPECT_EQ(memory.Text(), std::string(3 * PIECE_BYTES, 'a'));
}

TEST(Pieces, MemoryOfPiecesThatAreGoneIsUsedAgainWithinTheLimit) {
    Memory memory;
    memory.Fill(2 * PIECE_BYTES, 'a');
    PieceLimit(2 * PIECE_BYTES);
    const char* const place = New(memory)[1]->Bytes().data();
    const Image again = New(memory);
    EXPECT_TRUE(again[0]->Bytes().data() == place || again[1]->Bytes().data() == place);
    PieceLimit(0);
    PieceForget();
}

TEST(Pieces, RandomExchangesOfGrowingAndShrinkingMemoryKeepEveryImage) {
    std::mt19937 random(21);
    const auto number = [&random](std::size_t below) { return random() % below; };
    Memory memory;
    std::vector<Image> images;
    std::vector<std::string> texts;
    PieceLimit(10 * PIECE_BYTES);
    for (int turn = 0; turn < 800; ++turn) {
        const std::size_t n = images.empty() ? 0 : number(images.size());
        switch (number(6)) {
            case 0:
                memory.used = number(5) * PIECE_BYTES + number(2) * number(PIECE_BYTES);
                break;
            case 1:
            case 2:
                if (memory.used > 0) {
                    memory.room[number(memory.used)] = static_cast<char>(number(256));
                }
                break;
            case 3: {
                std::vector<const Image*> near;
                if (!images.empty()) {
                    near = {&images[n], &images.back()};
                }
                images.push_back(ImageOf(memory.Used(), near));
                texts.push_back(memory.Text());
                break;
            }
            case 4:
                if (!images.empty()) {
                    const std::string present = memory.Text();
                    images[n] = memory.Exchange(images[n], images[number(images.size())]);
                    ASSERT_EQ(memory.Text() == texts[n], true) << turn;
                    texts[n] = present;
                }
                break;
            default:
                if (images.size() > 5) {
                    images.erase(images.begin());
                    texts.erase(texts.begin());
                } else if (!images.empty()) {
                    memory.used =
                        static_cast<std::size_t>(PutBack(images[n], memory.room.data()) - memory.room.data());
                    ASSERT_EQ(memory.Text() == texts[n], true) << turn;
                }
        }
        for (std::size_t i = 0; i < images.size(); ++i) {
            ASSERT_EQ(TextOf(images[i]) == texts[i], true) << turn << " " << i;
        }
    }
    PieceLimit(0);
    PieceForget();
}

}  // namespace
}  // namespace quelmark::test

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>

#include "view/RASTER.h"

namespace quelmark::test {
namespace {

std::set<std::pair<int, int>> Pixels(const FrameBuffer& frame) {
    std::set<std::pair<int, int>> found;
    for (int y = 0; y < frame.height; ++y) {
        for (int x = 0; x < frame.width; ++x) {
            if (frame.Row(y)[x] != 0) {
                found.insert({x, y});
            }
        }
    }
    return found;
}

TEST(Lines, AClippedLineHasThePixelsOfTheWholeLine) {
    std::mt19937 random(7);
    std::uniform_int_distribution<int> anywhere(0, 299);
    FrameBuffer whole, cut;
    for (int round = 0; round < 2000; ++round) {
        whole.Resize(300, 300);
        cut.Resize(300, 300);
        const PanePoint a{anywhere(random), anywhere(random)}, b{anywhere(random), anywhere(random)};
        int l = anywhere(random), r = anywhere(random), t = anywhere(random), u = anywhere(random);
        const PixelRect clip{std::min(l, r), std::min(t, u), std::max(l, r) + 1, std::max(t, u) + 1};
        DrawLine(whole, whole.Bounds(), a, b, 1);
        DrawLine(cut, clip, a, b, 1);
        auto wanted = Pixels(whole);
        std::erase_if(wanted, [&](const auto& p) {
            return p.first < clip.left || p.first >= clip.right || p.second < clip.top ||
                   p.second >= clip.bottom;
        });
        ASSERT_EQ(Pixels(cut), wanted);
    }
}
TEST(Lines, BothDirectionsGiveTheSamePixels) {
    std::mt19937 random(8);
    std::uniform_int_distribution<int> anywhere(-100, 200);
    FrameBuffer one, other;
    for (int round = 0; round < 2000; ++round) {
        one.Resize(100, 100);
        other.Resize(100, 100);
        const PanePoint a{anywhere(random), anywhere(random)}, b{anywhere(random), anywhere(random)};
        DrawLine(one, one.Bounds(), a, b, 1);
        DrawLine(other, other.Bounds(), b, a, 1, Ink::Xor);
        ASSERT_EQ(one.pixels, other.pixels);
    }
}
TEST(Lines, FarEndsStayInsideAndOnTheTrueLine) {
    FrameBuffer frame;
    frame.Resize(101, 101);
    const std::int64_t far = std::int64_t{1} << 47;
    DrawLine(frame, frame.Bounds(), {-far, -far}, {far, far}, 1);
    EXPECT_EQ(Pixels(frame).size(), 101U);
    EXPECT_EQ(frame.Row(50)[50], 1);
    EXPECT_EQ(frame.Row(100)[100], 1);
}

TEST(Lines, HalvesGoAwayFromTheStartHoweverFarItIsAndWhereverTheLineIsCut) {
    FrameBuffer frame;
    for (const std::int64_t far :
         {std::int64_t{60}, std::int64_t{10000}, std::int64_t{1} << 29, std::int64_t{1} << 45}) {
        for (int left = 0; left < 100; ++left) {
            frame.Resize(100, 100);
            const PixelRect clip{left, 0, std::min(left + 5, 100), 100};
            // Half a pixel down or up a step, and the same across the other axis.
            DrawLine(frame, clip, {-2 * far, -far}, {2 * far, far}, 1);
            DrawLine(frame, clip, {2 * far, 99 - far}, {-2 * far, 99 + far}, 2, Ink::Or);
            for (int x = clip.left; x < clip.right; ++x) {
                ASSERT_EQ(frame.Row((x + 1) / 2)[x] & 1, 1) << far << " " << x;
                ASSERT_EQ(frame.Row(99 - (x + 1) / 2)[x] & 2, 2) << far << " " << x;
            }
            ASSERT_EQ(Pixels(frame).size(), 2U * static_cast<unsigned>(clip.right - clip.left));
            frame.Resize(100, 100);
            const PixelRect turned{0, left, 100, clip.right};
            DrawLine(frame, turned, {far, 2 * far}, {-far, -2 * far}, 1, Ink::Xor);
            for (int y = turned.top; y < turned.bottom; ++y) {
                ASSERT_EQ(frame.Row(y)[(y + 1) / 2], 1) << far << " " << y;
            }
        }
    }
}

TEST(Lines, AQuadHasThePixelsOfItsFourLines) {
    std::mt19937 random(9);
    FrameBuffer quad, lines;
    quad.Resize(300, 300);
    lines.Resize(300, 300);
    for (int round = 0; round < 20000; ++round) {
        // From single pixels to corners far outside.
        const int size = 1 << round % 11;
        const int left = static_cast<int>(random() % 280), top = static_cast<int>(random() % 280);
        const auto near = [&](int from) {
            return from + static_cast<int>(random() % static_cast<unsigned>(size));
        };
        const Lanes x{near(left), near(left), near(left), near(left)};
        const Lanes y{near(top), near(top), near(top), near(top)};
        const PixelRect clip{round % 7 * 10, round % 5 * 10, 300 - round % 3 * 10, 300 - round % 11 * 5};
        const auto colour = static_cast<std::uint8_t>(1 + round % 15);
        DrawQuad(quad, clip, x, y, colour);
        for (int i = 0; i < 4; ++i) {
            const int next = (i + 1) % 4;
            DrawLine(lines, clip, {x[i], y[i]}, {x[next], y[next]}, colour);
        }
        ASSERT_EQ(quad.pixels, lines.pixels) << round;
    }
}
TEST(Lines, AQuadAcrossAWideFrameHasThePixelsOfItsFourLines) {
    FrameBuffer quad, lines;
    quad.Resize(16000, 20);
    lines.Resize(16000, 20);
    const Lanes x{3, 15990, 12000, 7}, y{1, 3, 19, 2};
    DrawQuad(quad, quad.Bounds(), x, y, 5);
    for (int i = 0; i < 4; ++i) {
        const int next = (i + 1) % 4;
        DrawLine(lines, lines.Bounds(), {x[i], y[i]}, {x[next], y[next]}, 5);
    }
    EXPECT_EQ(quad.pixels, lines.pixels);
}
// A frame of random pixels, a picture with room beside it, and the picture as it should become.
struct ExpandedFrame {
    FrameBuffer frame;
    FramePalette palette{};
    std::int32_t stride = 0;
    std::vector<std::uint32_t> picture, wanted;

    ExpandedFrame(std::mt19937& random, int width, int height) : stride(width + 3) {
        frame.Resize(width, height);
        for (std::uint8_t& pixel : frame.pixels) {
            pixel = static_cast<std::uint8_t>(random() % 16);
        }
        for (std::uint32_t& entry : palette) {
            entry = static_cast<std::uint32_t>(random()) | 1;
        }
        picture.assign(static_cast<std::size_t>(stride) * static_cast<std::size_t>(height) + 1, 0);
        wanted = picture;
    }
    void ExpandPlainly(const PixelRect& area) {
        for (int y = area.top; y < area.bottom; ++y) {
            for (int x = area.left; x < area.right; ++x) {
                wanted[static_cast<std::size_t>(y * stride + x)] = palette[frame.Row(y)[x] & 15];
            }
        }
    }
};

int AnyWidth(std::mt19937& random) {
    constexpr int WIDTHS[] = {0, 1, 2, 15, 16, 17, 127, 128, 129, 255, 257};
    return random() % 2 == 0 ? WIDTHS[random() % std::size(WIDTHS)] : static_cast<int>(random() % 700);
}

TEST(Frame, ExpandsEveryPixelOfAnAreaAndNoOther) {
    std::mt19937 random(5);
    for (int round = 0; round < 2000; ++round) {
        const int width = AnyWidth(random), height = static_cast<int>(random() % 9);
        ExpandedFrame f(random, width, height);
        for (std::uint8_t& pixel : f.frame.pixels) {
            pixel |= static_cast<std::uint8_t>(random() % 16 << 4);  // only the lower four bits count
        }
        const auto within = [&random](int most) {
            return static_cast<int>(random() % (static_cast<unsigned>(most) + 1));
        };
        // Areas without width or height, and swapped ones, among them.
        const PixelRect area{within(width), within(height), within(width), within(height)};
        ExpandFrame(f.frame, area, f.palette, f.picture.data(), f.stride);
        f.ExpandPlainly(area);
        ASSERT_EQ(f.picture, f.wanted) << round;
    }
}
TEST(Frame, AChangedEntryIsSeenEverywhereAndPixelsOutsideItsRectangleStay) {
    std::mt19937 random(6);
    for (int round = 0; round < 2000; ++round) {
        ExpandedFrame f(random, AnyWidth(random), static_cast<int>(random() % 9));
        const auto entry = static_cast<std::uint8_t>(random() % 16);
        // From frames that are full of it to such that hold none.
        const unsigned rarity = 1U << random() % 12;
        std::int32_t count = 0;
        for (std::uint8_t& pixel : f.frame.pixels) {
            pixel = random() % rarity == 0 ? entry : static_cast<std::uint8_t>(entry ^ 1);
        }
        for (std::int32_t y = 0; y < f.frame.height; ++y) {
            count +=
                static_cast<std::int32_t>(std::count(f.frame.Row(y), f.frame.Row(y) + f.frame.width, entry));
        }
        f.ExpandPlainly(f.frame.Bounds());
        f.picture = f.wanted;
        f.palette[entry] ^= 0x00FF00FF;
        f.ExpandPlainly(f.frame.Bounds());
        const auto before = f.picture;
        std::vector<PixelRect> changed;
        RecolourFrame(f.frame, entry, f.palette, f.picture.data(), f.stride, changed);
        ASSERT_EQ(f.picture, f.wanted) << round;
        ASSERT_EQ(changed.empty(), count == 0);
        for (std::size_t i = 0; i < before.size(); ++i) {
            const auto x = static_cast<std::int32_t>(i) % f.stride,
                       y = static_cast<std::int32_t>(i) / f.stride;
            const bool inside = std::ranges::any_of(changed, [x, y](const PixelRect& rect) {
                return x >= rect.left && x < rect.right && y >= rect.top && y < rect.bottom;
            });
            ASSERT_TRUE(inside || f.picture[i] == before[i]) << round;
        }
    }
}
TEST(Frame, AChangedEntryLeavesAloneWhatLiesFarFromItsPixels) {
    FrameBuffer frame;
    frame.Resize(1000, 40);
    FramePalette palette{};
    palette[3] = 7;
    std::vector<std::uint32_t> picture(1000 * 40, 5);
    std::vector<PixelRect> changed{{1, 2, 3, 4}};
    RecolourFrame(frame, 3, palette, picture.data(), 1000, changed);
    EXPECT_TRUE(changed.empty());
    frame.Row(0)[999] = frame.Row(7)[5] = frame.Row(8)[200] = frame.Row(39)[500] = 3;
    RecolourFrame(frame, 3, palette, picture.data(), 1000, changed);
    ASSERT_EQ(changed.size(), 3U);  // neighbours are one
    const auto is = [](const PixelRect& rect, int left, int top, int right, int bottom) {
        return rect.left == left && rect.top == top && rect.right == right && rect.bottom == bottom;
    };
    EXPECT_TRUE(is(changed[0], 0, 0, 256, 32));
    EXPECT_TRUE(is(changed[1], 896, 0, 1000, 32));
    EXPECT_TRUE(is(changed[2], 384, 32, 512, 40));
    EXPECT_EQ(picture[999], 7U);
    EXPECT_EQ(picture[7005], 7U);
    EXPECT_EQ(picture[39500], 7U);
    EXPECT_EQ(picture[998], 5U);
    EXPECT_EQ(picture[7004], 5U);
    EXPECT_EQ(picture[7500], 5U);
}

}  // namespace
}  // namespace quelmark::test

// Images of memory, cut into pieces that images of nearly the same memory share where they are equal.
#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

namespace quelmark {

inline constexpr std::size_t PIECE_BYTES = std::size_t{64} << 10;

// Bytes of one image or more. They change only while a single image has the piece.
class Piece {
  public:
    explicit Piece(std::size_t bytes);  // their content undefined
    ~Piece();
    Piece(const Piece&) = delete;
    Piece& operator=(const Piece&) = delete;

    std::span<char> Bytes() const { return {bytes, count}; }

  private:
    char* bytes;
    std::size_t count;
};

using Image = std::vector<std::shared_ptr<Piece>>;

// The image of `memory`. Pieces that one of `nearest` has too are shared with it.
Image ImageOf(std::span<const char> memory, std::span<const Image* const> nearest);
bool IsImageOf(const Image& image, std::span<const char> memory);
// Writes an image to memory that has room for it; the address behind it.
char* PutBack(const Image& image, char* to);

// Putting an image back and keeping what was there instead of it, which shares pieces with `nearest` as
// above. Bytes of pieces that no other image has change places with those of the memory. The beginning gets
// all memory that is needed, and may throw for lack of it; nothing has changed then, and nothing fails after
// it.
Image ExchangeBegin(const Image& image, std::span<const char> memory, const Image& nearest);
// Leaves in `kept` what was there; `image` is not to be used any more. The address behind what was put back.
char* ExchangeEnd(const Image& image, std::span<char> memory, const Image& nearest, Image& kept);

// Bytes of all pieces.
std::size_t PieceBytes();
// Memory of pieces that are gone is kept for new ones as long as all together is not more than this.
void PieceLimit(std::size_t bytes);
// Gives such memory back.
void PieceForget();

}  // namespace quelmark

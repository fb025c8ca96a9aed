#include "view/TEXTS.h"

#include <utility>

#include "view/VIEW.h"

namespace quelmark {
namespace {

constexpr std::size_t TEXTS_MOST = 1024;

std::vector<ViewText> texts;

PixelRect Shown(const ViewText& text) {
    return Intersection(text.place, text.clip);
}

}  // namespace

void ViewTextAdd(ViewText text) {
    if (text.text.empty() || IsEmpty(Shown(text))) {
        return;
    }
    if (texts.size() >= TEXTS_MOST) {
        ViewDamage(Shown(texts.front()));
        texts.erase(texts.begin());
    }
    ViewDamage(Shown(text));
    texts.push_back(std::move(text));
}

const std::vector<ViewText>& ViewTexts() {
    return texts;
}

void ViewTextsDrop(std::int32_t mask) {
    std::erase_if(texts, [mask](const ViewText& text) {
        const bool gone = text.views == 0 || (text.views & mask) != 0;
        if (gone) {
            ViewDamage(Shown(text));
        }
        return gone;
    });
}

}  // namespace quelmark

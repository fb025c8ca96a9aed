#include "view/TEXTS.h"

#include <array>
#include <utility>

#include "view/VIEW.h"

namespace quelmark {
namespace {

constexpr std::size_t TEXTS_MOST = 1024;

constexpr std::int32_t TITLE_MARGIN = 3;

struct Title {
    std::string text;
    std::int32_t width, height;
    std::uint8_t colour;
};

std::vector<ViewText> texts;
std::array<Title, VIEW_COUNT> titles{};

// The title of a view where the view lies now.
ViewText Placed(std::size_t index) {
    const Title& title = titles[index];
    const PixelRect view = Views[index].Rect();
    const std::int32_t left = view.left + TITLE_MARGIN;
    return {1 << index,
            view,
            {left, view.top, left + title.width, view.top + title.height},
            title.text,
            title.colour};
}

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

void ViewTitleSet(std::int32_t mask, const std::string& text, std::int32_t width, std::int32_t height,
                  std::uint8_t colour) {
    for (std::size_t i = 0; i < titles.size(); ++i) {
        if ((mask & 1 << i) != 0) {
            ViewDamage(Shown(Placed(i)));
            titles[i] = {text, width, height, colour};
            ViewDamage(Shown(Placed(i)));
        }
    }
}

std::vector<ViewText> ViewTitles() {
    std::vector<ViewText> shown;
    for (std::size_t i = 0; i < titles.size(); ++i) {
        if ((VisibleViews & 1 << i) != 0 && !titles[i].text.empty()) {
            shown.push_back(Placed(i));
        }
    }
    return shown;
}

}  // namespace quelmark

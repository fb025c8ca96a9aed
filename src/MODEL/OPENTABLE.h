// An open-addressing table of records, kept at most half full; answers questions about shared positions,
// vertices and edges in near-linear time.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace quelmark {

// `Entry{}` is an empty slot. Entry has IsUsed(), IsSame(other) and Key(), a number of 64 bits that equal
// entries share.
template <class Entry>
class OpenTable {
  public:
    // Room for `entries` without growing.
    explicit OpenTable(std::size_t entries = 0)
        : slots_(std::bit_ceil(entries * 2 + 16)), shift_(64 - std::countr_zero(slots_.size())) {}

    // The entry equal to this one, which is put there when there is none yet.
    Entry& Insert(const Entry& entry) {
        Entry* slot = Slot(entry);
        if (slot->IsUsed()) {
            return *slot;
        }
        if (++used_ * 2 > slots_.size()) {
            Grow();
            slot = Slot(entry);
        }
        *slot = entry;
        return *slot;
    }
    // The equal entry, or null.
    const Entry* Find(const Entry& entry) const {
        const Entry* slot = const_cast<OpenTable*>(this)->Slot(entry);
        return slot->IsUsed() ? slot : nullptr;
    }
    std::size_t Count() const { return used_; }
    template <class Visit>
    void ForEach(Visit visit) const {
        for (const Entry& slot : slots_) {
            if (slot.IsUsed()) {
                visit(slot);
            }
        }
    }

  private:
    Entry* Slot(const Entry& entry) {
        // The high bits of a product with the golden ratio differ for neighbouring coordinates.
        std::size_t at = (entry.Key() * 0x9E3779B97F4A7C15U) >> shift_;
        while (slots_[at].IsUsed() && !slots_[at].IsSame(entry)) {
            at = (at + 1) & (slots_.size() - 1);
        }
        return &slots_[at];
    }
    void Grow() {
        std::vector<Entry> old(slots_.size() * 2);
        old.swap(slots_);
        --shift_;
        for (const Entry& entry : old) {
            if (entry.IsUsed()) {
                *Slot(entry) = entry;
            }
        }
    }

    std::vector<Entry> slots_;
    std::size_t used_ = 0;
    int shift_;
};

}  // namespace quelmark

// Small pictures of a grab, evenly chosen from all of its frames.
#include "report/contact_sheet.h"

#include <algorithm>
#include <utility>

namespace kxhost {

bool ContactSheet::wants(std::uint64_t number) const
{
    const std::lock_guard lock(mutex_);
    return (number - 1) % every_ == 0;
}

void ContactSheet::add(Thumbnail thumbnail)
{
    const std::lock_guard lock(mutex_);
    if ((thumbnail.number - 1) % every_ != 0) {
        return;
    }
    kept_.push_back(std::move(thumbnail));
    if (kept_.size() > kKept) {
        thin();
    }
}

void ContactSheet::addLast(Thumbnail thumbnail)
{
    remove(thumbnail.number);
    const std::lock_guard lock(mutex_);
    kept_.push_back(std::move(thumbnail));
}

void ContactSheet::remove(std::uint64_t number)
{
    const std::lock_guard lock(mutex_);
    std::erase_if(kept_, [&](const Thumbnail& each) { return each.number == number; });
}

void ContactSheet::thin()
{
    every_ *= 2;
    std::erase_if(kept_, [this](const Thumbnail& each) { return (each.number - 1) % every_ != 0; });
}

std::vector<Thumbnail> ContactSheet::chosen() const
{
    const std::lock_guard lock(mutex_);
    std::vector<Thumbnail> all = kept_;
    std::ranges::sort(all, {}, &Thumbnail::number);
    std::vector<Thumbnail> shown;
    const std::size_t step = (all.size() + kShown - 1) / kShown;
    for (std::size_t i = 0; i + 1 < all.size(); i += step) {
        shown.push_back(std::move(all[i]));
    }
    if (!all.empty()) {
        shown.push_back(std::move(all.back()));
    }
    return shown;
}

} // namespace kxhost

#include "Terminal/Graphics/ImageStore.h"

#include <algorithm>

namespace corvane::terminal {

bool ImageStore::add(Image image, uint32_t* id)
{
    const size_t size = image.bytes();
    if (size > m_budget)
        return false;
    if (image.id == 0) {
        // Well above the small ids that programs choose.
        constexpr uint32_t firstOwn = 0x7fff'0000;
        do
            image.id = firstOwn + ++m_lastId % 0x8000'0000;
        while (m_images.contains(image.id));
    } else {
        remove(image.id);
    }
    evict(size, image.id);
    image.age = image.version = ++m_age;
    *id = image.id;
    m_bytes += size;
    m_images[image.id] = std::move(image);
    return true;
}

Image* ImageStore::find(uint32_t id)
{
    const auto found = m_images.find(id);
    return found == m_images.end() ? nullptr : &found->second;
}

const Image* ImageStore::find(uint32_t id) const
{
    const auto found = m_images.find(id);
    return found == m_images.end() ? nullptr : &found->second;
}

Image* ImageStore::findNumber(uint32_t number)
{
    Image* newest = nullptr;
    for (auto& [id, image] : m_images) {
        if (image.number == number && (!newest || image.age > newest->age))
            newest = &image;
    }
    return newest;
}

void ImageStore::recount()
{
    m_bytes = 0;
    for (const auto& [id, image] : m_images)
        m_bytes += image.bytes();
}

void ImageStore::remove(uint32_t id)
{
    removePlacements([id](const Placement& placement) { return placement.image == id; }, false);
    if (m_images.erase(id))
        recount();
}

bool ImageStore::fit(const Image& grown)
{
    recount();
    if (grown.bytes() > m_budget)
        return false;
    evict(0, grown.id);
    return true;
}

void ImageStore::evict(size_t needed, uint32_t spared)
{
    while (m_bytes + needed > m_budget) {
        const Image* oldest = nullptr;
        for (const auto& [id, image] : m_images) {
            if (id != spared && (!oldest || image.age < oldest->age))
                oldest = &image;
        }
        if (!oldest)
            return;
        remove(oldest->id);
    }
}

Placement& ImageStore::place(Placement placement)
{
    if (placement.id) {
        removePlacements(
            [&](const Placement& other) { return other.image == placement.image && other.id == placement.id; }, false);
    }
    if (m_placements.size() >= maxPlacements) {
        m_release(m_placements.front());
        m_placements.erase(m_placements.begin());
    }
    m_placements.push_back(placement);
    return m_placements.back();
}

const Placement* ImageStore::findPlacement(uint32_t image, uint32_t id) const
{
    const auto found = std::ranges::find_if(m_placements,
        [&](const Placement& placement) { return placement.image == image && (id == 0 || placement.id == id); });
    return found == m_placements.end() ? nullptr : &*found;
}

void ImageStore::showWhole(uint32_t id)
{
    const Image* const image = find(id);
    for (Placement& placement : m_placements) {
        if (!image || placement.image != id)
            continue;
        const Bitmap& bitmap = image->frames.front().bitmap;
        placement.sourceX = placement.sourceY = 0;
        placement.sourceWidth = bitmap.width;
        placement.sourceHeight = bitmap.height;
    }
}

void ImageStore::removePlacements(const std::function<bool(const Placement&)>& which, bool withImages)
{
    std::vector<uint32_t> touched;
    std::erase_if(m_placements, [&](const Placement& placement) {
        if (!which(placement))
            return false;
        touched.push_back(placement.image);
        m_release(placement);
        return true;
    });
    for (const uint32_t image : touched) {
        if (withImages && !findPlacement(image, 0))
            remove(image);
    }
}

void ImageStore::clear()
{
    removePlacements([](const Placement&) { return true; }, false);
    m_images.clear();
    m_bytes = 0;
}

}

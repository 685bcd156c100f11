#pragma once

#include "Terminal/Graphics/Image.h"
#include "Terminal/Grid/Anchors.h"

#include <functional>
#include <map>

namespace corvane::terminal {

/// A part of an image shown in a box of cells, which moves with the text.
struct Placement {
    uint32_t image = 0;
    uint32_t id = 0; ///< 0 if the program did not set one
    bool onAlternate = false; ///< the screen that its anchor belongs to
    bool isVirtual = false; ///< shown only by placeholder characters
    Anchors::Id anchor = 0; ///< unset if virtual or relative
    int sourceX = 0;
    int sourceY = 0;
    int sourceWidth = 0;
    int sourceHeight = 0;
    int offsetX = 0; ///< in pixels, within the first cell
    int offsetY = 0;
    int columns = 0;
    int rows = 0;
    int z = 0;
    uint32_t parentImage = 0; ///< of the placement that it is relative to; 0 if none
    uint32_t parentPlacement = 0;
    int parentColumns = 0;
    int parentRows = 0;
};

/// The images of a terminal. When they exceed the budget, the least recently used are evicted.
class ImageStore {
public:
    explicit ImageStore(size_t budget)
        : m_budget(budget)
    {
    }

    /// Called for each removed placement, to release its anchor.
    void setReleaser(std::function<void(const Placement&)> release) { m_release = std::move(release); }

    /// Adds the image, replacing one with the same id; an id of 0 gets a free one. False if it is larger than the whole
    /// budget.
    bool add(Image image, uint32_t* id);
    Image* find(uint32_t id);
    const Image* find(uint32_t id) const;
    /// The newest image with that number.
    Image* findNumber(uint32_t number);
    void remove(uint32_t id); ///< and its placements
    void touch(Image& image) { image.age = ++m_age; }
    void pixelsChanged(Image& image) { image.version = ++m_age; }
    /// To be called when an image got more frames.
    bool fit(const Image& grown);

    Placement& place(Placement placement);
    const std::vector<Placement>& placements() const { return m_placements; }
    const Placement* findPlacement(uint32_t image, uint32_t id) const;
    /// Removes all placements of the image.
    void showWhole(uint32_t image);
    /// Removes the placements that match `which`; with `withImages`, also images that have no placements left.
    void removePlacements(const std::function<bool(const Placement&)>& which, bool withImages);

    size_t count() const { return m_images.size(); }
    size_t bytes() const { return m_bytes; }
    size_t budget() const { return m_budget; }
    void clear();
    std::map<uint32_t, Image>& images() { return m_images; }

private:
    void evict(size_t needed, uint32_t spared);
    void recount();

    static constexpr size_t maxPlacements = 4096;
    size_t m_budget;
    size_t m_bytes = 0;
    uint64_t m_age = 0;
    uint32_t m_lastId = 0;
    std::map<uint32_t, Image> m_images;
    std::vector<Placement> m_placements;
    std::function<void(const Placement&)> m_release = [](const Placement&) {
    };
};

}

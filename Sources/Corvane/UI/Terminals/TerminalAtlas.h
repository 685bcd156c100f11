#pragma once

#include "UI/Terminals/TerminalGlyphs.h"

#include <QRect>
#include <optional>

namespace corvane {

/// The rendered glyphs packed into one image, the texture of the GPU path. A mask is stored as white, so that
/// multiplied with a colour it gives the text in that colour.
class TerminalAtlas {
public:
    explicit TerminalAtlas(int cellHeight);

    const QImage& picture() const { return m_picture; }
    uint64_t version() const { return m_version; } ///< changes with the image
    static constexpr QRect white { 0, 0, 1, 1 };

    /// The position of the glyph, which is added if needed. None if the atlas is full.
    std::optional<QPoint> place(const TerminalGlyph& glyph);
    bool isFull() const { return m_isFull; }
    void clear();

private:
    QPoint nextPlace(int width);

    int m_cellHeight;
    QImage m_picture;
    QPoint m_next;
    uint64_t m_version = 0;
    uint32_t m_round = 0; ///< positions of earlier rounds are void
    bool m_isFull = false;
};

}

#pragma once

#include "UI/Terminals/TerminalPainter.h"

#include <QSGGeometryNode>
#include <QSGMaterial>
#include <QSGTexture>
#include <memory>

namespace corvane {

/// Parts of an atlas, each multiplied with a colour. All rows share one material, so that they are batched.
class TerminalTextMaterial : public QSGMaterial {
public:
    TerminalTextMaterial();

    QSGMaterialType* type() const override;
    QSGMaterialShader* createShader(QSGRendererInterface::RenderMode mode) const override;
    int compare(const QSGMaterial* other) const override;

    std::unique_ptr<QSGTexture> atlas;
    uint64_t version = 0; ///< of the atlas that the texture shows
};

/// A row as quads.
class TerminalTextNode : public QSGGeometryNode {
public:
    /// No more quads than this in one node.
    static constexpr size_t maxQuads = 16'000;

    /// `ratio` device pixels for one of the item's.
    TerminalTextNode(TerminalTextMaterial& material, const std::vector<TerminalQuad>& quads, qreal ratio);

private:
    QSGGeometry m_geometry;
};

}

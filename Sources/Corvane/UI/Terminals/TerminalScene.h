#pragma once

#include "UI/Terminals/TerminalItem.h"
#include "UI/Terminals/TerminalTextNode.h"

#include <QHash>
#include <QSGImageNode>
#include <QSGRectangleNode>
#include <memory>

namespace corvane {

/// The scene graph nodes of a terminal, from bottom to top: background, images below the text, rows, images above it,
/// marks (selection, matches, links), cursor.
class TerminalScene : public QSGNode {
public:
    TerminalScene();
    ~TerminalScene() override;

    /// On the render thread, while the main thread waits.
    void update(const TerminalItem& item);

private:
    void updateAtlas(const TerminalItem& item);
    void updateRows(const TerminalItem& item);
    QSGNode* rowNode(const TerminalItem& item, const TerminalItem::Strip& strip);
    void updateImages(const TerminalItem& item);
    void updateMarks(const TerminalItem& item);
    void addPrompt(const TerminalItem& item, const terminal::ShownPrompt& prompt);
    void addCursor(const TerminalItem& item);
    void addPreedit(const TerminalItem& item, QRectF at);
    void addRectangle(const TerminalItem& item, QRectF area, QColor color);
    void addPicture(const TerminalItem& item, const QImage& picture, QRectF area);

    struct Texture {
        uint64_t version = 0;
        size_t frame = 0;
        std::unique_ptr<QSGTexture> texture;
    };

    QSGNode* m_ground;
    QSGNode* m_below;
    QSGNode* m_rows;
    QSGNode* m_above;
    QSGNode* m_marks;
    QSGRectangleNode* m_groundRectangle = nullptr;
    QHash<uint64_t, QSGTransformNode*> m_rowNodes; ///< by the number of the strip; each has the row as its only child
    TerminalTextMaterial m_material;
    std::unordered_map<uint32_t, Texture> m_textures; ///< by the image
};

}

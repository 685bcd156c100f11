#include "UI/Terminals/TerminalTextNode.h"

#include "Foundation/Literals.h"

namespace corvane {

namespace {

struct Vertex {
    float x;
    float y;
    float sourceX;
    float sourceY;
    uchar tint[4];
};

const QSGGeometry::AttributeSet& attributes()
{
    static const QSGGeometry::Attribute list[] = {
        QSGGeometry::Attribute::createWithAttributeType(0, 2, QSGGeometry::FloatType, QSGGeometry::PositionAttribute),
        QSGGeometry::Attribute::createWithAttributeType(1, 2, QSGGeometry::FloatType, QSGGeometry::TexCoordAttribute),
        QSGGeometry::Attribute::createWithAttributeType(
            2, 4, QSGGeometry::UnsignedByteType, QSGGeometry::ColorAttribute),
    };
    static const QSGGeometry::AttributeSet set { 3, sizeof(Vertex), list };
    return set;
}

/// As the shaders declare them.
struct Values {
    float matrix[16];
    float atlasSize[2];
    float opacity;
};

class Shader : public QSGMaterialShader {
public:
    Shader()
    {
        setShaderFileName(VertexStage, u":/shaders/TerminalText.vert.qsb"_s);
        setShaderFileName(FragmentStage, u":/shaders/TerminalText.frag.qsb"_s);
    }

    bool updateUniformData(RenderState& state, QSGMaterial* material, QSGMaterial*) override
    {
        const QSize size = static_cast<TerminalTextMaterial*>(material)->atlas->textureSize();
        auto* const values = reinterpret_cast<Values*>(state.uniformData()->data());
        if (state.isMatrixDirty())
            std::copy_n(state.combinedMatrix().constData(), 16, values->matrix);
        values->atlasSize[0] = float(size.width());
        values->atlasSize[1] = float(size.height());
        values->opacity = state.opacity();
        return true;
    }

    void updateSampledImage(RenderState& state, int, QSGTexture** texture, QSGMaterial* material, QSGMaterial*) override
    {
        QSGTexture* const atlas = static_cast<TerminalTextMaterial*>(material)->atlas.get();
        atlas->commitTextureOperations(state.rhi(), state.resourceUpdateBatch());
        *texture = atlas;
    }
};

}

TerminalTextMaterial::TerminalTextMaterial()
{
    setFlag(Blending);
}

QSGMaterialType* TerminalTextMaterial::type() const
{
    static QSGMaterialType type;
    return &type;
}

QSGMaterialShader* TerminalTextMaterial::createShader(QSGRendererInterface::RenderMode) const
{
    return new Shader;
}

int TerminalTextMaterial::compare(const QSGMaterial* other) const
{
    return this == other ? 0 : this < other ? -1 : 1;
}

TerminalTextNode::TerminalTextNode(TerminalTextMaterial& material, const std::vector<TerminalQuad>& quads, qreal ratio)
    : m_geometry(attributes(), int(quads.size() * 4), int(quads.size() * 6))
{
    m_geometry.setDrawingMode(QSGGeometry::DrawTriangles);
    auto* vertex = static_cast<Vertex*>(m_geometry.vertexData());
    quint16* index = m_geometry.indexDataAsUShort();
    const auto scale = float(1 / ratio);
    quint16 first = 0;
    for (const TerminalQuad& quad : quads) {
        for (const int corner : { 0, 1, 2, 3 }) {
            const int right = corner & 1;
            const int bottom = corner >> 1;
            *vertex++ = { float(quad.area.x() + right * quad.area.width()) * scale,
                float(quad.area.y() + bottom * quad.area.height()) * scale,
                float(quad.source.x() + right * quad.source.width()),
                float(quad.source.y() + bottom * quad.source.height()),
                { uchar(qRed(quad.tint)), uchar(qGreen(quad.tint)), uchar(qBlue(quad.tint)), 255 } };
        }
        for (const int corner : { 0, 1, 2, 2, 1, 3 })
            *index++ = quint16(first + corner);
        first = quint16(first + 4);
    }
    setGeometry(&m_geometry);
    setMaterial(&material);
}

}

#include "UI/Terminals/TerminalPointer.h"

#include "Foundation/Literals.h"

#include <QHash>

namespace corvane {

std::optional<Qt::CursorShape> pointerShape(const QString& name)
{
    static const QHash<QString, Qt::CursorShape> shapes {
        { u"default"_s, Qt::ArrowCursor },
        { u"left_ptr"_s, Qt::ArrowCursor },
        { u"text"_s, Qt::IBeamCursor },
        { u"xterm"_s, Qt::IBeamCursor },
        { u"pointer"_s, Qt::PointingHandCursor },
        { u"hand"_s, Qt::PointingHandCursor },
        { u"hand2"_s, Qt::PointingHandCursor },
        { u"help"_s, Qt::WhatsThisCursor },
        { u"wait"_s, Qt::WaitCursor },
        { u"progress"_s, Qt::BusyCursor },
        { u"crosshair"_s, Qt::CrossCursor },
        { u"cell"_s, Qt::CrossCursor },
        { u"move"_s, Qt::SizeAllCursor },
        { u"all-scroll"_s, Qt::SizeAllCursor },
        { u"grab"_s, Qt::OpenHandCursor },
        { u"grabbing"_s, Qt::ClosedHandCursor },
        { u"copy"_s, Qt::DragCopyCursor },
        { u"alias"_s, Qt::DragLinkCursor },
        { u"not-allowed"_s, Qt::ForbiddenCursor },
        { u"no-drop"_s, Qt::ForbiddenCursor },
        { u"e-resize"_s, Qt::SizeHorCursor },
        { u"w-resize"_s, Qt::SizeHorCursor },
        { u"ew-resize"_s, Qt::SizeHorCursor },
        { u"col-resize"_s, Qt::SplitHCursor },
        { u"n-resize"_s, Qt::SizeVerCursor },
        { u"s-resize"_s, Qt::SizeVerCursor },
        { u"ns-resize"_s, Qt::SizeVerCursor },
        { u"row-resize"_s, Qt::SplitVCursor },
        { u"ne-resize"_s, Qt::SizeBDiagCursor },
        { u"sw-resize"_s, Qt::SizeBDiagCursor },
        { u"nesw-resize"_s, Qt::SizeBDiagCursor },
        { u"nw-resize"_s, Qt::SizeFDiagCursor },
        { u"se-resize"_s, Qt::SizeFDiagCursor },
        { u"nwse-resize"_s, Qt::SizeFDiagCursor },
    };
    const auto known = shapes.constFind(name);
    return known == shapes.constEnd() ? std::nullopt : std::optional(*known);
}

}

import Corvane.Controls
import QtQuick
import QtQuick.Templates as T

/// A list of actions over the window.
T.Menu {
    id: control

    property string sign ///< the icon before its title in a parent menu

    onAboutToShow: ++OpenMenus.count
    onAboutToHide: --OpenMenus.count
    Component.onDestruction: if (visible) --OpenMenus.count

    implicitWidth: Math.max(200, contentItem.implicitWidth + leftPadding + rightPadding)
    implicitHeight: contentItem.implicitHeight + topPadding + bottomPadding
    padding: Theme.tight
    margins: Theme.small
    overlap: 1
    delegate: MenuItem { icon.name: subMenu?.sign ?? "" }

    contentItem: ListView {
        implicitHeight: contentHeight
        implicitWidth: {
            let widest = 0;
            for (let i = 0; i < control.count; ++i)
                widest = Math.max(widest, control.itemAt(i)?.implicitWidth ?? 0);
            return widest;
        }
        model: control.contentModel
        interactive: control.height < implicitHeight
        currentIndex: control.currentIndex
        clip: true
    }
    background: Rectangle {
        radius: Theme.cardRadius
        color: Theme.surface
        border.width: 1
        border.color: Theme.line
        Shadow { radius: Theme.cardRadius }
    }
    enter: Transition { NumberAnimation { property: "opacity"; from: 0; to: 1; duration: Theme.quick } }
}

pragma Singleton

import QtQml

/// How many menus are open. While one is, no tooltip covers it.
QtObject {
    property int count: 0
}

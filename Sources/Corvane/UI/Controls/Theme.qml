pragma Singleton
import QtQuick

/// Every colour, size and duration of the window; no other file defines any.
QtObject {
    property bool dark: false
    property bool reducedMotion: false

    // Grounds
    readonly property color window: dark ? "#141517" : "#F7F7F5"
    readonly property color surface: dark ? "#1B1D20" : "#FFFFFF"
    readonly property color raised: dark ? "#24272B" : "#F1F1EE"
    readonly property color tint: dark ? "#222C47" : "#E9EFFD"
    readonly property color line: dark ? "#30343A" : "#E3E3DF"
    readonly property color none: "transparent"
    readonly property color scrim: Qt.alpha(dark ? "#000000" : "#1A1B1E", dark ? 0.5 : 0.28)
    readonly property color shadow: Qt.alpha("#000000", dark ? 0.06 : 0.018)
    readonly property color paper: "#FFFFFF" ///< the background of QR codes, in both themes
    readonly property color ink: "#000000"

    // Texts
    readonly property color text: dark ? "#ECEDEF" : "#1A1B1E"
    readonly property color soft: dark ? "#AEB3BB" : "#565A61"
    readonly property color faint: dark ? "#949AA3" : "#646970"
    readonly property color accent: dark ? "#86A5FF" : "#2F5FE0"
    readonly property color accentInk: dark ? "#10131A" : "#FFFFFF"
    readonly property color good: dark ? "#5CC492" : "#1C7A4B"
    readonly property color warn: dark ? "#E0A84E" : "#9A5B00"
    readonly property color bad: dark ? "#F08379" : "#BF3328"
    readonly property color secret: dark ? "#C9A2F0" : "#7A3AA8" ///< passwords and tokens

    /// The sixteen colours of a terminal, darkened or lightened until they are readable on the surface.
    readonly property list<color> terminal: dark
        ? ["#24272B", "#F08379", "#5CC492", "#E0A84E", "#86A5FF", "#C9A2F0", "#63C7D8", "#D3D6DB",
            "#7A808A", "#FF9E94", "#7FDCAE", "#F2C275", "#A9BFFF", "#DABDF8", "#8ADBE8", "#FFFFFF"]
        : ["#1A1B1E", "#BF3328", "#1C7A4B", "#9A5B00", "#2F5FE0", "#7A3AA8", "#0B7285", "#D5D6D2",
            "#646970", "#D9483B", "#2B9A63", "#B77400", "#5B82F0", "#9A5BD0", "#1590A8", "#F7F7F5"]

    // Spacing
    readonly property int tight: 4
    readonly property int small: 8
    readonly property int medium: 12
    readonly property int large: 16
    readonly property int wide: 24
    readonly property int huge: 32

    // Corners
    readonly property int controlRadius: 6
    readonly property int cardRadius: 10
    readonly property int bubbleRadius: 14

    // Type, in pixels
    readonly property int meta: 11
    readonly property int body: 13
    readonly property int title: 15
    readonly property int screen: 20
    readonly property int wall: 28
    readonly property int regular: Font.Normal
    readonly property int strong: Font.DemiBold
    readonly property string pictures: "Noto Color Emoji" ///< for emoji alone; Inter draws some of them in black

    // Heights
    readonly property int control: 32
    readonly property int row: 64
    readonly property int bar: 52

    // Motion, in milliseconds
    readonly property int quick: reducedMotion ? 0 : 120
    readonly property int pane: reducedMotion ? 0 : 180

    /// The two colours of an avatar; the hue is given from 0 to 1.
    function avatarGround(hue: real): color {
        return dark ? Qt.hsla(hue, 0.30, 0.27, 1) : Qt.hsla(hue, 0.52, 0.90, 1);
    }
    function avatarText(hue: real): color {
        return dark ? Qt.hsla(hue, 0.62, 0.82, 1) : Qt.hsla(hue, 0.62, 0.27, 1);
    }
}

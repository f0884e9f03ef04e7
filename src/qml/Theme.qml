pragma Singleton
import QtQuick
import Korvel

// Shared sizes and colours of every screen; colours come from ColorManager.
QtObject {
    readonly property color background: ColorManager.backgroundBlack
    readonly property color panel: ColorManager.backgroundDarkGray
    readonly property color headerBar: "#222222"
    readonly property color accent: ColorManager.primaryGreen
    readonly property color text: ColorManager.textWhite
    readonly property color textMuted: ColorManager.textGray
    readonly property color border: ColorManager.borderDarkGray

    readonly property int headerHeight: 44
    readonly property int controlButtonsWidth: 34
    readonly property int controlButtonHeight: 24
    readonly property int radius: 4
    readonly property int fontSmall: 12
    readonly property int fontNormal: 14
    readonly property int fontTitle: 16

    // Phone pictures are drawn at a fixed 16:9 (height over width in portrait).
    readonly property real phoneAspect: 16 / 9

    // The picture's width in a grid cell: the cell less its margins and the button column.
    function cellVideoWidth(cellWidth, showControlButtons) {
        return showControlButtons ? cellWidth - controlButtonsWidth - 15 : cellWidth - 10
    }

    function videoHeight(videoWidth, orientation) {
        return orientation === DeviceGroup.Landscape ? videoWidth / phoneAspect : videoWidth * phoneAspect
    }

    function messageColor(kind) {
        if (kind === MessageKind.Error)
            return ColorManager.error
        if (kind === MessageKind.Success)
            return ColorManager.success
        return ColorManager.info
    }
}

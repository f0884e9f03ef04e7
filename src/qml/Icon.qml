import QtQuick
import Korvel
import "IconPaths.js" as IconPaths

// A line icon drawn from IconPaths in any colour, sharp at any size.
Canvas {
    id: icon
    property string name
    property color color: ColorManager.textWhite
    property real lineWidth: 1.8

    implicitWidth: 16
    implicitHeight: 16
    antialiasing: true

    onNameChanged: requestPaint()
    onColorChanged: requestPaint()
    onWidthChanged: requestPaint()
    onHeightChanged: requestPaint()

    onPaint: {
        const ctx = getContext("2d")
        ctx.reset()
        const shape = IconPaths.shapes[name]
        if (!shape || width <= 0 || height <= 0)
            return
        ctx.scale(width / 24, height / 24)
        ctx.lineWidth = lineWidth
        ctx.lineCap = "round"
        ctx.lineJoin = "round"
        ctx.strokeStyle = color
        ctx.fillStyle = color
        for (const path of shape.stroke || []) {
            ctx.beginPath()
            ctx.path = path
            ctx.stroke()
        }
        for (const path of shape.fill || []) {
            ctx.beginPath()
            ctx.path = path
            ctx.fill()
        }
    }
}

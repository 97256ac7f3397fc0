import QtQuick

// A small ring that fills clockwise from the top with a value from 0 to 1. It paints only when the value moves.
Canvas {
    id: ring
    property real value: 0
    property color color
    property color trackColor
    property real lineWidth: 2

    onValueChanged: requestPaint()
    onColorChanged: requestPaint()
    onPaint: {
        const context = getContext("2d")
        context.reset()
        const radius = Math.min(width, height) / 2 - lineWidth / 2
        context.lineWidth = lineWidth
        context.strokeStyle = trackColor
        context.beginPath()
        context.arc(width / 2, height / 2, radius, 0, 2 * Math.PI)
        context.stroke()
        if (value > 0) {
            context.strokeStyle = color
            context.beginPath()
            context.arc(width / 2, height / 2, radius, -Math.PI / 2, -Math.PI / 2 + 2 * Math.PI * Math.min(value, 1))
            context.stroke()
        }
    }
}

import QtQuick
import QtQuick.Controls
import Korvel

// An entry of the header bar that drops down its MenuItem children.
Item {
    id: root
    property string text
    default property alias entries: menu.contentData
    readonly property alias menu: menu

    Accessible.role: Accessible.ButtonMenu
    Accessible.name: text
    implicitWidth: label.implicitWidth + 28
    implicitHeight: Theme.headerHeight

    Rectangle {
        anchors.fill: parent
        anchors.margins: 6
        radius: Theme.radius
        color: mouse.containsMouse || menu.visible ? ColorManager.backgroundBlackGreen : "transparent"
    }

    Text {
        id: label
        anchors.centerIn: parent
        text: root.text
        color: ColorManager.textWhite
        font.pixelSize: Theme.fontNormal
    }

    MouseArea {
        id: mouse
        anchors.fill: parent
        hoverEnabled: true
        onClicked: menu.visible ? menu.close() : menu.open()
    }

    Menu {
        id: menu
        y: root.height
    }
}

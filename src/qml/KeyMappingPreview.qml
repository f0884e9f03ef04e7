import QtQuick
import Korvel

// A live picture of one of the group's phones with the profile's points on it; while an entry is
// edited, a click places its point.
Rectangle {
    id: picture
    // The dialog whose entry is edited: its profile, its edited point and its place(x, y).
    required property var editor
    objectName: "mappingPicture"
    color: ColorManager.backgroundPureBlack
    border.color: ColorManager.borderDarkGray

    YuvFboItem {
        id: preview
        anchors.fill: parent
        anchors.margins: 1
        source: picture.editor.visible && picture.editor.previewDevice ? picture.editor.previewDevice.videoFrames : null
    }
    Text {
        anchors.centerIn: parent
        width: parent.width - 20
        visible: picture.editor.previewDevice === null
        text: qsTr("Start a phone of the current group to see its screen here.")
        color: ColorManager.textGray
        font.pixelSize: Theme.fontSmall
        wrapMode: Text.Wrap
        horizontalAlignment: Text.AlignHCenter
    }
    MouseArea {
        anchors.fill: parent
        enabled: picture.editor.editing
        cursorShape: picture.editor.editing ? Qt.CrossCursor : Qt.ArrowCursor
        onClicked: mouse => picture.editor.place(mouse.x / width, mouse.y / height)
    }

    // The profile's points while browsing; the edited entry's while editing.
    Repeater {
        model: picture.editor.editing || !picture.editor.profile ? [] : picture.editor.profile.mappings
        delegate: CustomCircleCursor {
            required property var modelData
            fractionX: modelData.type === KeyMappingType.Tap ? modelData.data.x : modelData.data.startX
            fractionY: modelData.type === KeyMappingType.Tap ? modelData.data.y : modelData.data.startY
            label: modelData.keyDisplay
        }
    }
    CustomCircleCursor {
        objectName: "pointCursor"
        visible: picture.editor.editing
        fractionX: picture.editor.type === KeyMappingType.Tap ? picture.editor.pointX : picture.editor.startX
        fractionY: picture.editor.type === KeyMappingType.Tap ? picture.editor.pointY : picture.editor.startY
        label: picture.editor.type === KeyMappingType.Tap ? picture.editor.keyDisplay : qsTr("Start")
    }
    CustomCircleCursor {
        objectName: "endCursor"
        visible: picture.editor.editing && picture.editor.type === KeyMappingType.Swipe
        fractionX: picture.editor.endX
        fractionY: picture.editor.endY
        color: ColorManager.textYellow
        label: qsTr("End")
    }
}

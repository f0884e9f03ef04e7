import QtQuick
import QtTest

// What the QML tests share: any QML warning fails the test, and clicks wait for layouts to settle.
TestCase {
    id: base
    when: windowShown
    visible: true

    function init() {
        failOnWarning(/.*/)
    }

    // Layouts place their items at the next polish: a click before it lands where the item was.
    function click(item, x, y) {
        for (let ancestor = item; ancestor; ancestor = ancestor.parent)
            tryVerify(() => !isPolishScheduled(ancestor))
        mouseClick(item, x, y)
    }

    function openDialog(component, properties) {
        const dialog = createTemporaryObject(component, base, properties || {})
        dialog.open()
        tryVerify(() => dialog.opened)
        return dialog
    }

    // The visible item showing exactly this text under root, popups' content included.
    function itemWithText(root, text) {
        const children = root.contentItem ? [root.contentItem] : []
        for (const child of children.concat(Array.from(root.children || []))) {
            if (child.text === text && child.visible)
                return child
            const found = itemWithText(child, text)
            if (found)
                return found
        }
        return null
    }
}

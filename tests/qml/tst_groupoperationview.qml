import QtQuick
import QtTest
import Korvel

// The live table with rows in several states: the summary, a row's whole answer on a click, and
// Cancel / Retry failed enabled only when they can do something.
KorvelTestCase {
    id: testCase
    name: "GroupOperationView"
    width: 800
    height: 600

    GroupOperationView {
        id: view
        anchors.fill: parent
    }

    function test_rowsInSeveralStates() {
        const summary = findChild(view, "operationSummary")
        const cancel = findChild(view, "operationCancel")
        const retry = findChild(view, "operationRetry")
        view.operation = operationRig.start(3)
        tryCompare(summary, "text", "3 running")
        verify(cancel.enabled && !retry.enabled)

        operationRig.answer(0, true, "first line\nsecond line\nthird line")
        operationRig.answer(1, false, "Not Connected")
        tryCompare(summary, "text", "1 done, 1 failed, 1 running")
        verify(cancel.enabled && !retry.enabled)

        const output = findChild(view, "operationOutput0")
        compare(output.lineCount, 1)
        click(findChild(view, "operationRow0"))
        tryCompare(output, "lineCount", 3)

        operationRig.answer(2, true, "Saved")
        tryCompare(summary, "text", "2 done, 1 failed")
        verify(!cancel.enabled && retry.enabled)

        click(retry)
        tryCompare(summary, "text", "2 done, 1 running")
        verify(cancel.enabled && !retry.enabled)
        click(cancel)
        tryCompare(summary, "text", "2 done, 1 cancelled")
        verify(!cancel.enabled && !retry.enabled)
    }
}

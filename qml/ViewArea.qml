import QtQuick 2.13
import QtQuick.Controls 2.13
import QtQml.Models 2.13

// Where the views of the streams stand: a grid with equal room for all (mode 0), or one big view with a strip of small
// ones beside it (mode 1). The views live as long as the area and move between three models.
Item {
    id: area

    /// The views, in the order in which the grid shows them.
    default property alias views: unusedViews.children
    property int mode: -1
    property bool landscape: width > height

    readonly property alias unusedModel: unusedViews
    readonly property alias uniqueModel: uniqueViews
    readonly property alias sideModel: sideViews
    readonly property alias gridView: grid
    readonly property alias uniqueView: bigGrid
    readonly property alias sideView: strip

    /// Rebuilds the layout a moment later; several requests in that moment make one rebuild.
    function requestUpdateGrid() {
        t1.start()
    }

    function updateGrid() {
        releaseAll(uniqueViews)
        releaseAll(sideViews)
        settle()
        t2.start()
    }

    function updateUniqueAndSideModel() {
        if (mode === 0)
            fillGrid()
        else if (mode === 1)
            fillBigAndStrip()
    }

    /// What the maximize button of a view asks for.
    function toggleMaximized(item) {
        if (mode === 0 || item.minimized) {
            t3.item = item
            mode = 1
            t3.start()
        } else if (mode === 1) {
            mode = 0
        }
    }

    /// What a double click on a view asks for; it changes nothing but small views.
    function maximizeSmall(item) {
        if (item.minimized)
            maximize(item)
    }

    /// Gives the big place to a view of the strip; the one that had it goes where the other came from.
    function maximize(item) {
        // With full-size cells two of them would stand in the big place for a moment.
        bigGrid.cellWidth = 1
        bigGrid.cellHeight = 1
        const i = item ? item.modelIndex : -1
        const tmp = i >= 0 && i < sideViews.count ? sideViews.get(i) : null
        if (item && tmp && item.objectName === tmp.objectName)
            swapIn(item, i)
        bigGrid.cellWidth = Qt.binding(function() { return bigGrid.width })
        bigGrid.cellHeight = Qt.binding(function() { return bigGrid.height })
    }

    function swapIn(item, i) {
        take(sideViews, i)
        settle()
        item.modelIndex = -1
        item.minimized = false
        put(uniqueViews, uniqueViews.count, item)
        if (uniqueViews.count > 1) {
            const former = take(uniqueViews, 0)
            settle()
            former.modelIndex = i
            former.minimized = true
            put(sideViews, i, former)
        }
    }

    function fillGrid() {
        for (let i = unusedViews.count - 1; i >= 0; --i) {
            if (unusedViews.get(i).active)
                put(sideViews, 0, take(unusedViews, i), false)
        }
    }

    function fillBigAndStrip() {
        for (let i = unusedViews.count - 1; i >= 0; --i) {
            if (!unusedViews.get(i).active)
                continue
            const item = take(unusedViews, i)
            if (item.objectName === "slamView")
                put(uniqueViews, uniqueViews.count, item, false)
            else
                put(sideViews, 0, item, true)
        }
        if (uniqueViews.count === 0 && sideViews.count > 0) {
            const first = take(sideViews, 0)
            settle()
            put(uniqueViews, 0, first, false)
        }
        for (let j = 0; j < sideViews.count; ++j)
            sideViews.get(j).modelIndex = j
    }

    // A view that has left its grid keeps its size and the attached grid, so the size is bound only while it is placed.
    function put(model, index, item, minimized) {
        if (minimized !== undefined)
            item.minimized = minimized
        const big = model === uniqueViews
        item.width = Qt.binding(function() { return big ? bigGrid.cellWidth : smallGrid().cellWidth })
        item.height = Qt.binding(function() { return big ? bigGrid.cellHeight : smallGrid().cellHeight })
        model.insert(index, item)
    }

    function take(model, index) {
        const item = model.get(index)
        model.remove(index)
        item.width = 0
        item.height = 0
        return item
    }

    function releaseAll(model) {
        while (model.count > 0)
            unusedViews.append(take(model, 0))
    }

    function smallGrid() {
        return mode === 1 ? strip : grid
    }

    // A grid lets go of its views at the next frame; a view that another grid has taken by then would vanish.
    function settle() {
        grid.forceLayout()
        bigGrid.forceLayout()
        strip.forceLayout()
    }

    function columnsFor(count) {
        if (count < 2)
            return 1
        if (count === 2)
            return landscape ? 2 : 1
        if (count < 5)
            return 2
        return landscape ? 3 : 2
    }

    onModeChanged: updateGrid()

    Component.onCompleted: {
        for (let i = 0; i < unusedViews.count; ++i) {
            const item = unusedViews.get(i)
            item.maximize.connect(function() { toggleMaximized(item) })
            item.doubleClicked.connect(function() { maximizeSmall(item) })
        }
    }

    Timer {
        id: t1

        interval: 10
        onTriggered: area.updateGrid()
    }

    Timer {
        id: t2

        interval: 10
        onTriggered: area.updateUniqueAndSideModel()
    }

    Timer {
        id: t3

        property var item: null

        interval: 50
        onTriggered: area.maximize(t3.item)
    }

    ObjectModel {
        id: unusedViews
    }

    ObjectModel {
        id: uniqueViews
    }

    ObjectModel {
        id: sideViews
    }

    GridView {
        id: grid

        readonly property int columns: area.columnsFor(sideViews.count)
        readonly property int rows: Math.ceil(sideViews.count / columns)

        anchors.fill: parent
        visible: area.mode === 0
        interactive: false
        cellWidth: width / Math.max(1, columns)
        cellHeight: height / Math.max(1, rows)
        model: area.mode === 0 ? sideViews : null
    }

    SplitView {
        anchors.fill: parent
        orientation: Qt.Horizontal
        visible: area.mode === 1
        enabled: area.mode === 1

        Item {
            id: bigContent

            SplitView.fillHeight: true
            SplitView.preferredWidth: area.width * 0.8
            // A narrow window leaves the strip its least width and the handle between them, but never more than half.
            SplitView.maximumWidth: Math.max(0.5 * area.width, area.width - 150 - 6)

            GridView {
                id: bigGrid

                anchors.fill: parent
                interactive: false
                cellWidth: width
                cellHeight: height
                model: uniqueViews
            }
        }

        GridView {
            id: strip

            SplitView.fillHeight: true
            SplitView.minimumWidth: 150
            clip: true
            interactive: contentHeight > height
            cellWidth: width
            cellHeight: cellWidth * 480 / 640
            model: area.mode === 1 ? sideViews : null
        }
    }
}
